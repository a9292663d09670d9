#include "samples/tests/samplepackage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <set>

namespace vellor::samples {
namespace {

constexpr int kLog2Side = 6;

const char* const kSamples[] = {"bricks",          "cobblestones",   "herringbone_parquet", "knitted_wool",
                                "leather",         "marble",         "rusted_metal",        "sand_dunes",
                                "scratched_paint", "stylised_photo", "tileable_photo",      "water",
                                "woven_fabric"};

std::string fileOf(const std::string& sample)
{
    return std::string(VELLOR_SAMPLES_FOLDER "/") + sample + ".vlr";
}

/// Where a picture's pixels change the most across columns (or rows): mean differences, the seam's and the
/// others'.
struct Seam
{
    double across = 0.0, inside = 0.0; // inside: the largest mean among the other columns
};

Seam seamOf(const Picture& picture, bool vertical)
{
    const int length = vertical ? picture.width : picture.height,
              breadth = vertical ? picture.height : picture.width;
    Seam seam;
    for (int i = 0; i < length; ++i) {
        double sum = 0.0;
        for (int j = 0; j < breadth; ++j) {
            for (int c = 0; c < std::min(picture.channels, 3); ++c) {
                const float here = vertical ? picture.at(i, j, c) : picture.at(j, i, c);
                const float next = vertical ? picture.at(i + 1, j, c) : picture.at(j, i + 1, c);
                sum += std::abs(here - next);
            }
        }
        (i + 1 == length ? seam.across : seam.inside) = i + 1 == length ? sum : std::max(seam.inside, sum);
    }
    return seam;
}

double meanDifference(const Picture& a, const Picture& b)
{
    EXPECT_EQ(a.values.size(), b.values.size());
    double sum = 0.0;
    for (std::size_t i = 0; i < std::min(a.values.size(), b.values.size()); ++i)
        sum += std::abs(a.values[i] - b.values[i]);
    return sum / static_cast<double>(a.values.size());
}

class EverySample : public testing::TestWithParam<const char*>
{
protected:
    EverySample() : m_package(fileOf(GetParam()), VELLOR_ENGINE_FILE) { m_package.setSize(kLog2Side); }

    SamplePackage m_package;
};

TEST_P(EverySample, EveryOutputArrives)
{
    const Results results = m_package.generate();
    for (const PackageOutput& output : m_package.outputs()) {
        const std::string name = output.graph + "/" + output.identifier;
        if (output.type != VELLOR_TYPE_IMAGE) {
            EXPECT_EQ(results.numbers.count(name), 1u) << name;
            continue;
        }
        ASSERT_EQ(results.pictures.count(name), 1u) << name;
        const Picture& picture = results.pictures.at(name);
        EXPECT_EQ(picture.width, 1 << kLog2Side) << name;
        EXPECT_EQ(picture.height, 1 << kLog2Side) << name;
        const bool finite = std::all_of(picture.values.begin(), picture.values.end(),
                                        [](float v) { return std::isfinite(v); });
        EXPECT_TRUE(finite) << name;
    }
}

/// Settings that a pattern could come apart at, the standard ones first: each row is set beside the ones
/// before it.
const std::map<std::string, std::vector<std::pair<const char*, std::vector<double>>>> kSettings = {
    {"bricks", {{"depth", {1.8}}, {"bond", {1}}, {"bricks", {3, 7}}, {"bond", {3}}, {"painted", {1}}}},
    {"cobblestones", {{"depth", {5}}, {"stones", {5}}, {"laying", {1}}, {"laying", {2}}, {"puddles", {0.5}}}},
    {"herringbone_parquet",
     {{"zigzags", {2}}, {"zigzags", {3}}, {"orientation", {1}}, {"stained", {1}}, {"finish", {1}}}},
    {"knitted_wool",
     {{"stitches", {16}}, {"pattern", {1}}, {"structure", {1}}, {"structure", {2}}, {"pattern", {2}}}},
    {"leather", {{"depth", {1.6}}, {"pebbles", {17}}, {"stitches", {13}}, {"seam", {0}}}},
    // Slabs end at the edge, so the stone is looked at in one piece.
    {"marble", {{"laying", {0}}, {"direction", {0}}, {"direction", {1}}, {"direction", {4}}, {"scale", {3}}}},
    {"rusted_metal", {{"depth", {1.4}}, {"plates", {3}}, {"plated", {0}}, {"fall", {0.4}}, {"brush", {31}}}},
    {"sand_dunes", {{"tracks", {0}}, {"tracks", {3}}, {"wind", {0}}, {"wind", {200}}, {"ripples", {9}}}},
    // Joints end at the edge too.
    {"scratched_paint", {{"panelled", {0}}, {"harm", {1}}, {"direction", {45}}, {"stripes", {5}}}},
    {"tileable_photo", {{"depth", {3}}, {"seam", {0.04}}, {"forms", {0}}, {"zoom", {2}}, {"softness", {1}}}},
    {"woven_fabric",
     {{"depth", {1.6}}, {"threads", {17}}, {"pattern", {0}}, {"pattern", {3}}, {"checked", {1}}}},
    {"water", {{"$time", {0}}, {"$time", {3.21}}, {"wind", {0.33}}, {"weather", {1}}}},
    {"stylised_photo",
     {{"style", {0}}, {"style", {1}}, {"style", {2}}, {"style", {3}}, {"screen", {37}}, {"style", {4}}}},
};

TEST_P(EverySample, PicturesGoAroundWithoutASeam)
{
    for (const auto& [input, value] : kSettings.at(GetParam())) {
        m_package.set(input, value);
        for (const auto& [name, picture] : m_package.generate().pictures) {
            for (const bool vertical : {true, false}) {
                // A joint or a plate's groove may well lie at the edge, as deep as any other and a little
                // deeper.
                const Seam seam = seamOf(picture, vertical);
                EXPECT_LE(seam.across, 1.15 * seam.inside)
                    << name << (vertical ? ", left to right" : ", top to bottom") << " with " << input << ' '
                    << value[0];
            }
        }
    }
}

/// Lightness from 30 to 240 in sRGB where the surface is no metal, 180 and more where it is one.
TEST_P(EverySample, BaseColoursArePhysical)
{
    const Results results = m_package.generate();
    int checked = 0;
    for (const PackageOutput& output : m_package.outputs()) {
        const std::string prefix = output.graph + "/";
        if (output.usage != "basecolor")
            continue;
        const Picture& colour = results.pictures.at(prefix + output.identifier);
        const auto metal = results.pictures.find(prefix + "metallic");
        for (int y = 0; y < colour.height; ++y) {
            for (int x = 0; x < colour.width; ++x) {
                const float metallic = metal == results.pictures.end() ? 0.0f : metal->second.at(x, y, 0);
                const float light = 255.0f * (0.2126f * colour.at(x, y, 0) + 0.7152f * colour.at(x, y, 1) +
                                              0.0722f * colour.at(x, y, 2));
                ASSERT_LE(light, metallic > 0.05f ? 255.0f : 240.5f)
                    << output.graph << " at " << x << ", " << y;
                ASSERT_GE(light, metallic > 0.95f ? 179.5f : 29.5f)
                    << output.graph << " at " << x << ", " << y;
                ++checked;
            }
        }
    }
    EXPECT_GT(checked, 0);
}

/// The pictures of another seed are others, and those of the first come back with it.
TEST_P(EverySample, TheSeedRulesChance)
{
    const Results first = m_package.generate();
    m_package.set("$randomseed", {12345});
    const Results other = m_package.generate();
    m_package.set("$randomseed", {0});
    const Results again = m_package.generate();
    for (const PackageOutput& output : m_package.outputs()) {
        const std::string name = output.graph + "/" + output.identifier;
        if (output.type != VELLOR_TYPE_IMAGE)
            continue;
        if (output.usage == "basecolor") {
            EXPECT_GT(meanDifference(first.pictures.at(name), other.pictures.at(name)), 0.002) << name;
        }
        EXPECT_EQ(first.pictures.at(name).values, again.pictures.at(name).values) << name;
    }
}

/// OpenGL's normals are Direct3D's with green the other way round.
TEST_P(EverySample, NormalsObeyTheFormat)
{
    const Results direct = m_package.generate();
    m_package.set("$normalformat", {2});
    const Results inverted = m_package.generate();
    for (const PackageOutput& output : m_package.outputs()) {
        if (output.usage != "normal")
            continue;
        const Picture& a = direct.pictures.at(output.graph + "/" + output.identifier);
        const Picture& b = inverted.pictures.at(output.graph + "/" + output.identifier);
        double slope = 0.0;
        for (std::size_t i = 0; i < a.values.size(); i += 4) {
            ASSERT_NEAR(a.values[i], b.values[i], 0.006f);
            ASSERT_NEAR(a.values[i + 1] + b.values[i + 1], 1.0f, 0.006f);
            slope += std::abs(a.values[i + 1] - 0.5f);
        }
        EXPECT_GT(slope / (static_cast<double>(a.values.size()) / 4), 0.002) << output.graph << " is flat";
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, EverySample, testing::ValuesIn(kSamples),
                         [](const auto& sample) { return std::string(sample.param); });

TEST(Water, ComesBackAfterALoop)
{
    SamplePackage package(fileOf("water"), VELLOR_ENGINE_FILE);
    package.setSize(kLog2Side);
    const double loop = 8.0;
    package.set("loop", {loop});
    const auto at = [&](double time) {
        package.set("$time", {time});
        return package.generate("water").pictures;
    };
    const auto start = at(0.0), end = at(loop), middle = at(loop * 0.5), next = at(loop * 0.01),
               last = at(loop * 0.99);
    for (const auto& [name, picture] : start) {
        EXPECT_LT(meanDifference(picture, end.at(name)), 0.5 / 255.0) << name;
    }
    const std::string height = "water/height";
    const double moved = meanDifference(start.at(height), middle.at(height));
    EXPECT_GT(moved, 0.01);
    // It goes through the end as smoothly as through any other moment.
    EXPECT_LT(meanDifference(start.at(height), next.at(height)), 0.6 * moved);
    EXPECT_LT(meanDifference(start.at(height), last.at(height)), 0.6 * moved);
}

TEST(Bricks, GiveNumbers)
{
    SamplePackage package(fileOf("bricks"), VELLOR_ENGINE_FILE);
    package.setSize(kLog2Side);
    const auto boolean = std::find_if(package.outputs().begin(), package.outputs().end(),
                                      [](const PackageOutput& output) { return output.isBoolean; });
    ASSERT_NE(boolean, package.outputs().end());
    EXPECT_EQ(boolean->identifier, "ispainted");
    struct Row
    {
        std::vector<double> bricks;
        double painted;
        std::uint32_t count;
    };
    for (const Row& row :
         {Row{{4, 12}, 0, 48}, Row{{3, 7}, 1, 24}, Row{{12, 35}, 0, 432}}) { // odd courses: one more
        package.set("bricks", row.bricks);
        package.set("painted", {row.painted});
        const Results results = package.generate();
        EXPECT_EQ(results.numbers.at("bricks/brickcount")[0], row.count);
        EXPECT_EQ(results.numbers.at("bricks/ispainted")[0], static_cast<std::uint32_t>(row.painted));
    }
}

TEST(Fabric, CountsWholeRepeatsOfItsPattern)
{
    SamplePackage package(fileOf("woven_fabric"), VELLOR_ENGINE_FILE);
    package.setSize(kLog2Side);
    package.set("threads", {38});
    for (const auto& [pattern, threads] : {std::pair<int, std::uint32_t>{1, 40}, {3, 40}, {2, 40}}) {
        package.set("pattern", {static_cast<double>(pattern)});
        EXPECT_EQ(package.generate().numbers.at("woven_fabric/threadcount")[0], threads) << pattern;
    }
}

TEST(Seams, AreSeenWhereTheyAre)
{
    SamplePackage package(fileOf("stylised_photo"), VELLOR_ENGINE_FILE);
    package.setSize(kLog2Side);
    package.set("margins", {0.0}); // the sky then meets the lake
    const Seam seam = seamOf(package.generate().pictures.at("stylised_photo/basecolor"), false);
    EXPECT_GT(seam.across, 1.5 * seam.inside);
}

TEST(StylisedPhoto, ShowsThePictureThatItIsGiven)
{
    SamplePackage package(fileOf("stylised_photo"), VELLOR_ENGINE_FILE);
    package.setSize(kLog2Side);
    const std::string name = "stylised_photo/basecolor";
    const Picture standIn = package.generate().pictures.at(name);
    Picture photo{8, 8, 4, {}};
    for (int i = 0; i < 64; ++i)
        photo.values.insert(photo.values.end(), {0.1f, 0.7f, 0.1f, 1.0f});
    package.setImage("photo", &photo);
    const Picture green = package.generate().pictures.at(name);
    const int middle = 1 << (kLog2Side - 1);
    EXPECT_GT(green.at(middle, middle, 1), green.at(middle, middle, 0) + 0.1f);
    EXPECT_GT(green.at(middle, middle, 1), green.at(middle, middle, 2) + 0.1f);
    EXPECT_LT(std::abs(green.at(1, 1, 0) - standIn.at(1, 1, 0)), 0.02f) << "the margin is paper either way";
    package.setImage("photo", nullptr);
    EXPECT_EQ(package.generate().pictures.at(name).values, standIn.values);
}

TEST(Samples, UseEveryKindOfWidgetBetweenThem)
{
    std::set<std::string> kinds;
    bool deepGroup = false, condition = false, twoGraphs = false, presets = false;
    for (const char* sample : kSamples) {
        const SamplePackage package(fileOf(sample), VELLOR_ENGINE_FILE);
        for (const PackageInput& input : package.inputs()) {
            if (input.identifier[0] == '$') {
                kinds.insert(input.identifier);
                continue;
            }
            const std::string type = std::to_string(input.type);
            kinds.insert(input.widget + (input.widget == "angle" ? " " + input.unit : " " + type));
            deepGroup = deepGroup || input.group.find('/') != std::string::npos;
            condition = condition || !input.visibleIf.empty();
        }
        std::set<std::string> graphs;
        for (const PackageOutput& output : package.outputs())
            graphs.insert(output.graph);
        twoGraphs = twoGraphs || graphs.size() > 1;
        presets = presets || package.description().find("<vlrpreset ") != std::string::npos;
    }
    EXPECT_TRUE(deepGroup && condition && twoGraphs && presets);
    // A widget and the type's number; no widget is a plain field.
    for (const char* kind : {"slider 0",
                             "slider 1",
                             "slider 2",
                             "slider 3",
                             "slider 4",
                             "slider 8",
                             "angle turns",
                             "angle degrees",
                             "angle radians",
                             "togglebutton 4",
                             "checkbox 4",
                             "color 2",
                             "color 3",
                             "combobox 4",
                             " 5",
                             " 6",
                             " 0",
                             " 1",
                             " 4",
                             "$time",
                             "$randomseed",
                             "$normalformat",
                             "$outputsize"})
        EXPECT_EQ(kinds.count(kind), 1u) << kind;
}

} // namespace
} // namespace vellor::samples
