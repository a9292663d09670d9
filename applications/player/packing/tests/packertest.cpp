#include "applications/player/packing/packingcollector.h"
#include "orncommon/surfaces/operations.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace Zph::Applications::Player;
using namespace Orn::Surfaces;
using SurfacePtr = QSharedPointer<Surface>;

namespace {

// Two graphs; what $normalformat (uid 1) alters is output 2 alone.
PackageModel package()
{
    QDomDocument document;
    EXPECT_TRUE(document.setContent(QString(R"(<p>
        <inputs><input index='0' uid='1' alteroutputs='1'/></inputs>
        <outputs><output index='0' uid='1'/><output index='1' uid='2'/></outputs>
        <graphs><graph pkgurl='pkg://a'>
            <inputs><input uid='1' identifier='$normalformat' type='4'/></inputs>
            <outputs>
                <output uid='1' identifier='color'><channels><channel components='rgb' names='baseColor'/>
                    <channel components='a' names='opacity'/></channels></output>
                <output uid='2' identifier='bumps' usage='normal'/>
                <output uid='3' identifier='rough' usage='roughness'/>
                <output uid='4' identifier='rough2' usage='roughness'/>
                <output uid='5' identifier='coat' usage='coatNormal' usertag='OpenGL'/>
                <output uid='6' identifier='flat' usage='detailNormal'/>
                <output uid='7' identifier='count' usage='metallic'/>
            </outputs></graph>
            <graph pkgurl='pkg://b'><outputs><output uid='8' usage='height'/></outputs></graph></graphs></p>)")));
    std::vector<VellorOutputDesc> outputs(8);
    for (quint32 i = 0; i < outputs.size(); ++i) {
        outputs[i].uid = i + 1;
        outputs[i].type = i == 6 ? VELLOR_TYPE_INTEGER : VELLOR_TYPE_IMAGE;
    }
    outputs[5].pixelFormat = VELLOR_FORMAT_RGBX;
    const int format = 0;
    return PackageModel({{1, VELLOR_TYPE_INTEGER, &format}}, outputs, document);
}

PackingPlan planned(const PackingTemplate& content, int format = 0)
{
    const PackageModel model = package();
    return planPacking(content, model, model.outputs(),
                       [format](const PackageInput&) { return InputValue::fromInts(format); });
}

PackingSource usage(const char* name, bool isInverted = false, SourceChannel channel = SourceChannel::Own)
{
    return {name, {}, channel, isInverted};
}

template<typename T>
SurfacePtr picture(unsigned width, unsigned height, PixelFormat format, const std::vector<T>& values)
{
    const auto surface = SurfacePtr::create(SurfaceDescription(width, height, format));
    EXPECT_EQ(values.size() * sizeof(T), surface->lineSize() * height);
    std::memcpy(surface->data(), values.data(), values.size() * sizeof(T));
    return surface;
}

template<typename T> std::vector<T> valuesOf(const SurfacePtr& surface)
{
    std::vector<T> values(surface->lineSize() / sizeof(T) * surface->height());
    for (unsigned y = 0; y < surface->height(); ++y)
        std::memcpy(reinterpret_cast<char*>(values.data()) + y * surface->lineSize(), surface->row(y),
                    surface->lineSize());
    return values;
}

using Bytes = std::vector<quint8>;

} // namespace

TEST(PackingPlan, FindsOutputsGraphByGraph)
{
    const PackingTemplate content{
        {},
        {},
        "T_%O",
        {},
        {{"Colour",
          {},
          {},
          {{PackingTarget::Rgb, {usage("basecolor")}, {}}, {PackingTarget::Alpha, {usage("opacity")}, {}}}},
         {"Mask",
          {},
          {},
          {{PackingTarget::Red, {usage("ambientocclusion")}, 1.0},
           {PackingTarget::Green, {usage("glossiness"), usage("roughness", true)}, 0.5},
           {PackingTarget::Blue, {usage("metallic"), {{}, "rough2", {}, false}}, {}},
           {PackingTarget::Alpha, {usage("scattering")}, {}}}},
         {"Height", {}, {}, {{PackingTarget::Grey, {usage("height")}, {}}}},
         {"Emissive", {}, {}, {{PackingTarget::Rgb, {usage("emissive")}, 0.0}}}}};
    const PackingPlan plan = planned(content);
    EXPECT_EQ(plan.pattern, "T_%O");
    ASSERT_EQ(plan.files.size(), 3) << "no file of outputs that aren't there";
    EXPECT_EQ(plan.files[2].graphKey, "pkg://b");
    const PlannedFile& colour = plan.files[0];
    ASSERT_EQ(colour.channels.size(), 4);
    ASSERT_EQ(colour.sources.size(), 1) << "both usages are of one output";
    EXPECT_EQ(colour.channels[2].channel, SourceChannel::Blue);
    EXPECT_EQ(colour.channels[3].channel, SourceChannel::Alpha) << "the description says where opacity is";
    const PlannedFile& mask = plan.files[1];
    ASSERT_EQ(mask.channels.size(), 3) << "alpha has neither output nor number";
    EXPECT_EQ(mask.channels[0].source, -1);
    EXPECT_EQ(mask.channels[0].constant, 1.0f);
    EXPECT_TRUE(mask.channels[1].isInverted);
    EXPECT_EQ(mask.mainOutput().identifier, "rough") << "the first of a usage";
    EXPECT_EQ(mask.sources[1].output.identifier, "rough2") << "a number is no picture";
    ASSERT_EQ(plan.notes.size(), 1);
    EXPECT_EQ(plan.notes[0].toStdString(),
              "pkg://a has no output ambientocclusion, so r of Mask is 1 everywhere");
    QStringList needed;
    for (const PackageOutput& output : plan.outputs())
        needed.append(QString::number(output.uid));
    EXPECT_EQ(needed.join(' '), "1 3 4 8");
}

TEST(PackingPlan, NormalsLieAsThePackageSays)
{
    const PackingTemplate content{{},
                                  {},
                                  {},
                                  NormalDirection::OpenGl,
                                  {{"A",
                                    {},
                                    {},
                                    {{PackingTarget::Red, {usage("normal")}, {}},
                                     {PackingTarget::Green, {usage("coatnormal")}, {}},
                                     {PackingTarget::Blue, {usage("detailnormal")}, {}},
                                     {PackingTarget::Alpha, {usage("roughness")}, {}}}}}};
    const PlannedFile file = planned(content, 6).files.at(0);
    EXPECT_EQ(file.sources[0].normalFormat, 6) << "by $normalformat, which alters it";
    EXPECT_EQ(file.sources[1].normalFormat, 2) << "by its tag";
    EXPECT_EQ(file.sources[2].normalFormat, 0);
    EXPECT_EQ(file.sources[3].normalFormat, -1);
}

TEST(Packer, CopiesToTheBitAndConvertsToTheNearest)
{
    PlannedFile file;
    file.sources = {{{}, -1}, {{}, -1}};
    file.sources[0].output.uid = 1;
    file.sources[1].output.uid = 2;
    const auto channel = [](int source, SourceChannel taken, bool isInverted = false) {
        return PlannedChannel{source, taken, isInverted, 0.2f};
    };
    file.channels = {channel(0, SourceChannel::Blue), channel(1, SourceChannel::Luminance, true),
                     channel(0, SourceChannel::Alpha), channel(-1, SourceChannel::Luminance)};
    const PackingPictures bytes{{1, picture<quint8>(2, 1, BGRA8, {10, 20, 30, 40, 50, 60, 70, 80})},
                                {2, picture<quint8>(2, 1, L8, {1, 255})}};
    const SurfacePtr packed = packPicture(file, bytes, PictureDepth::OfPicture);
    ASSERT_TRUE(packed);
    EXPECT_EQ(packed->format(), RGBA8);
    EXPECT_EQ(valuesOf<quint8>(packed), (Bytes{10, 254, 40, 51, 50, 0, 80, 51}));
    EXPECT_FALSE(packPicture(file, {{1, bytes[1]}}, PictureDepth::OfPicture)) << "one is missing";

    // 257 = 65535 / 255; 300 / 257 = 1.17; white is (30 * 0.2126 + 20 * 0.7152 + 10 * 0.0722) = 21.404 of
    // 255.
    file.channels = {channel(0, SourceChannel::Luminance), channel(1, SourceChannel::Luminance),
                     channel(1, SourceChannel::Alpha)};
    const PackingPictures mixed{{1, bytes[1]}, {2, picture<quint16>(2, 1, L16, {300, 65535})}};
    const SurfacePtr deep = packPicture(file, mixed, PictureDepth::OfPicture);
    ASSERT_TRUE(deep);
    EXPECT_EQ(deep->format(), RGB16) << "the deepest";
    EXPECT_EQ(valuesOf<quint16>(deep), (std::vector<quint16>{5501, 300, 65535, 15781, 65535, 65535}))
        << "there is no alpha in a grey picture";
    EXPECT_EQ(valuesOf<quint8>(packPicture(file, mixed, PictureDepth::Bits8)),
              (Bytes{21, 1, 255, 61, 255, 255}));

    file.sources[0].output.pixelFormat = VELLOR_FORMAT_RGBX;
    file.channels = {channel(0, SourceChannel::Alpha)};
    file.sources.removeLast();
    EXPECT_EQ(valuesOf<quint8>(packPicture(file, bytes, PictureDepth::Bits8)), (Bytes{255, 255}))
        << "the fourth channel has no meaning";
    const PackingPictures floats{{1, picture<float>(1, 1, L32F, {0.1f})}};
    file.channels = {channel(0, SourceChannel::Luminance)};
    EXPECT_EQ(valuesOf<float>(packPicture(file, floats, PictureDepth::OfPicture)), std::vector<float>{0.1f});
}

TEST(Packer, HalvesBesideIntegersAndOtherSizes)
{
    PlannedFile file;
    file.sources = {{{}, -1}, {{}, -1}};
    file.sources[1].output.uid = 1;
    const PlannedChannel first{0, SourceChannel::Luminance, false, 0};
    file.channels = {first, {1, SourceChannel::Luminance, false, 0}, first};
    const PackingPictures pictures{{0, picture<quint16>(2, 2, L16, {65535, 65535, 65535, 65535})},
                                   {1, picture<quint16>(1, 1, L16F, {0x3800})}}; // 0.5
    const SurfacePtr packed = packPicture(file, pictures, PictureDepth::OfPicture);
    ASSERT_TRUE(packed);
    EXPECT_EQ(packed->format(), RGB32F);
    ASSERT_EQ(packed->width(), 2u);
    for (unsigned i = 0; i < 12; ++i)
        EXPECT_EQ(valuesOf<float>(packed)[i], i % 3 == 1 ? 0.5f : 1.0f);
}

TEST(Packer, TurnsNormals)
{
    struct Row
    {
        int format;
        NormalDirection direction;
        Bytes pixel; // blue, green, red, alpha
        Bytes expected;
    };
    const Row rows[] = {
        {0, NormalDirection::OpenGl, {200, 64, 100, 9}, {100, 191, 200}},
        {3, NormalDirection::OpenGl, {200, 64, 100, 9}, {155, 64, 200}},
        {2, NormalDirection::Direct3d, {200, 64, 100, 9}, {100, 191, 200}},
        {2, NormalDirection::OfPackage, {200, 64, 100, 9}, {100, 64, 200}},
        {12, NormalDirection::OpenGl, {0, 0, 128, 128}, {128, 127, 255}}, // 1 - 2 (1 / 255)^2 rounds to white
        {-1, NormalDirection::OpenGl, {200, 64, 100, 9}, {100, 64, 200}},
    };
    for (const Row& row : rows) {
        PlannedFile file;
        file.normals = row.direction;
        file.sources = {{{}, row.format}};
        for (const auto channel : {SourceChannel::Red, SourceChannel::Green, SourceChannel::Blue})
            file.channels.append({0, channel, false, 0});
        const SurfacePtr packed =
            packPicture(file, {{0, picture<quint8>(1, 1, BGRA8, row.pixel)}}, PictureDepth::OfPicture);
        EXPECT_EQ(valuesOf<quint8>(packed), row.expected) << row.format;
    }
}

// The unit vector (2/7, -3/7, 6/7), y down the picture, written in each format.
TEST(NormalFormat, EveryFormatBecomesThePlainOne)
{
    const float x = 2.0f / 7, y = -3.0f / 7, z = 6.0f / 7;
    for (int format = 0; format < 16; ++format) {
        const float red = 0.5f + ((format & 1) ? -x : x) / 2, green = 0.5f + ((format & 2) ? -y : y) / 2;
        float pixel[4] = {red, green, 0.5f + z / 2, 0.25f};
        if ((format & 12) == 4)
            pixel[2] = z;
        if (format & 8)
            pixel[2] = 0;
        if ((format & 12) == 12) {
            pixel[1] = 0;
            pixel[3] = green;
        }
        for (const auto direction : {NormalDirection::OpenGl, NormalDirection::Direct3d}) {
            float turned[4] = {pixel[0], pixel[1], pixel[2], pixel[3]};
            turnNormals(turned, 4, 1, format, direction);
            EXPECT_NEAR(turned[0], 0.5f + x / 2, 1e-6f) << format;
            EXPECT_NEAR(turned[1], 0.5f + (direction == NormalDirection::OpenGl ? -y : y) / 2, 1e-6f)
                << format;
            EXPECT_NEAR(turned[2], 0.5f + z / 2, 1e-6f) << format;
            EXPECT_EQ(turned[3], (format & 12) == 12 ? 1.0f : 0.25f) << format;
        }
        float left[4] = {pixel[0], pixel[1], pixel[2], pixel[3]};
        turnNormals(left, 4, 1, format, NormalDirection::OfPackage);
        EXPECT_EQ(std::memcmp(left, pixel, sizeof left), 0) << format;
    }
}

TEST(PackingCollector, KeepsNothingThatNobodyWaitsFor)
{
    QVector<PlannedFile> files(3);
    const auto source = [](quint32 uid) {
        PlannedSource made;
        made.output.uid = uid;
        return made;
    };
    files[0].sources = {source(1), source(2)};
    files[1].sources = {source(2)};
    files[2].sources = {source(3), source(1)};
    PackingCollector collector(files);
    QVector<int> complete;
    const auto note = [&](int file, const PackingPictures& pictures) {
        complete.append(file);
        EXPECT_EQ(pictures.size(), files[file].sources.size());
    };
    for (int generation = 0; generation < 2; ++generation) {
        complete.clear();
        collector.reset();
        std::vector<QWeakPointer<Surface>> kept(5);
        for (const quint32 uid : {2u, 4u, 1u, 3u}) {
            const auto made = SurfacePtr::create(SurfaceDescription(1, 1, L8));
            kept[uid] = made;
            collector.add(uid, made, note);
        }
        EXPECT_EQ(complete, (QVector<int>{1, 0, 2}));
        for (const auto& surface : kept)
            EXPECT_FALSE(surface);
    }
}
