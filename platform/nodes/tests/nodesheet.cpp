// Draws kinds into portable pictures, for people to look at: nodesheet FOLDER [SIZE [PATTERN]]. Each picture
// is shown twice across and twice down, so that seams show. With "time" for a folder, prints how long each
// takes on one thread.

#include "platform/nodes/tests/noderunner.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

using namespace vellor::nodes;
using namespace vellor::nodes::test;

namespace {

struct Sheet
{
    std::string name;
    std::function<Picture(int size)> draw;
};

Picture heightOf(int size)
{
    return Evaluation("brick", size, size).set("bricks", {4, 8})();
}

/// Regions between the borders of cells.
Picture regionsOf(int size)
{
    const Picture edges = Evaluation("cellular", size, size).set("scale", {6, 0}).set("output", {4})();
    return Evaluation("floodfill", size, size).set("threshold", {0.12}).operand(edges)();
}

Picture reliefOf(int size)
{
    return Evaluation("perlin", size, size).set("scale", {5, 0}).seed(3)();
}

/// Part of a picture with light from one side: what does not tile.
Picture photoOf(int size)
{
    Picture rubble = Evaluation("cellular", size, size).set("octaves", {4}).seed(5)();
    rubble = Evaluation("crop", size, size).set("rectangle", {0.07, 0.11, 0.61, 0.71}).operand(rubble)();
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x)
            rubble.at(x, y) =
                rubble.at(x, y) * 0.8f + 0.25f * static_cast<float>(x) / static_cast<float>(size);
    return rubble;
}

void write(const std::string& path, const Picture& picture)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        return;
    const int w = picture.width(), h = picture.height();
    std::fprintf(file, "P6\n%d %d\n255\n", 2 * w, 2 * h);
    for (int y = 0; y < 2 * h; ++y) {
        for (int x = 0; x < 2 * w; ++x) {
            for (int c = 0; c < 3; ++c) {
                const float value = picture.at(x, y, picture.channels() > 1 ? c : 0);
                std::fputc(static_cast<int>(std::fmin(std::fmax(value, 0.0f), 1.0f) * 255.0f + 0.5f), file);
            }
        }
    }
    std::fclose(file);
}

void measure(const Sheet& sheet, int size)
{
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
        const auto start = std::chrono::steady_clock::now();
        sheet.draw(size);
        best =
            std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    std::printf("%-24s %8.2f ms per megapixel\n", sheet.name.c_str(), best * 1e9 / (double(size) * size));
}

std::vector<Sheet> sheets()
{
    std::vector<Sheet> all;
    const auto add = [&](std::string name, std::function<Picture(int)> draw) {
        all.push_back({std::move(name), std::move(draw)});
    };
    // One sheet for each choice of a parameter.
    const auto addChoices = [&](const char* kind, const char* parameter,
                                const std::function<void(Evaluation&, int)>& more) {
        for (const ParameterDeclaration& declared : findNode(std::string_view(kind))->parameters)
            for (std::size_t i = 0; std::strcmp(declared.name, parameter) == 0 && i < declared.choices.size();
                 ++i)
                add(std::string(kind) + "-" + declared.choices[i], [=](int size) {
                    Evaluation run(kind, size, size);
                    run.set(parameter, {double(i)});
                    more(run, size);
                    return run();
                });
    };
    for (const char* kind : {"perlin", "simplex", "valuenoise"}) {
        addChoices(kind, "mode", [](Evaluation&, int) {});
        add(std::string(kind) + "-one",
            [=](int size) { return Evaluation(kind, size, size).set("octaves", {1})(); });
        add(std::string(kind) + "-warped", [=](int size) {
            return Evaluation(kind, size, size).set("scale", {4, 0}).set("warp", {0.7})();
        });
    }
    addChoices("brick", "output", [](Evaluation&, int) {});
    addChoices("hexagons", "output", [](Evaluation& run, int) { run.set("tiles", {6, 0}); });
    add("hexagons-side", [](int size) {
        return Evaluation("hexagons", size, size)
            .set("tiles", {5, 0})
            .set("orientation", {1})
            .set("rounding", {0.2})();
    });
    addChoices("herringbone", "output", [](Evaluation&, int) {});
    add("herringbone-straight", [](int size) {
        return Evaluation("herringbone", size, size).set("orientation", {1}).set("length", {3})();
    });
    addChoices("basketweave", "output", [](Evaluation&, int) {});
    addChoices("cellular", "output", [](Evaluation&, int) {});
    addChoices("cellular", "metric", [](Evaluation& run, int) { run.set("output", {2}); });
    add("cellular-fractal",
        [](int size) { return Evaluation("cellular", size, size).set("octaves", {5})(); });
    addChoices("shape", "shape", [](Evaluation& run, int) { run.set("tiles", {3, 0}).set("sides", {5}); });
    add("shape-turned", [](int size) {
        return Evaluation("shape", size, size)
            .set("shape", {1})
            .set("tiles", {5, 0})
            .set("rotation", {0.06})();
    });
    add("tile-boxes", [](int size) {
        return Evaluation("tile", size, size)
            .set("rotationvariation", {0.1})
            .set("positionvariation", {0.2})();
    });
    add("tile-scales", [](int size) {
        return Evaluation("tile", size, size)
            .set("shape", {7})
            .set("size", {1.2, 1.8})
            .set("offset", {0.5})
            .set("layering", {2})();
    });
    add("tile-stars", [](int size) {
        return Evaluation("tile", size, size)
            .set("shape", {3})
            .set("sides", {5})
            .set("ratio", {0.4})
            .set("size", {1.5, 1.5})
            .set("rotationvariation", {1})
            .set("positionvariation", {1})
            .set("sizevariation", {0.7})();
    });
    addChoices("scatter", "output", [](Evaluation& run, int size) {
        run.set("positionvariation", {0.5})
            .set("rotationvariation", {1})
            .set("sizevariation", {0.5})
            .set("size", {1.4, 1.1})
            .set("opaque", {0.1})
            .skip()
            .operand(Evaluation("shape", size, size).set("shape", {7}).set("size", {0.95, 0.7})());
    });
    add("scatter-colour", [](int size) {
        return Evaluation("scatter", size, size)
            .set("tiles", {12, 0})
            .set("positionvariation", {1})
            .set("rotationvariation", {1})
            .set("stretchvariation", {0.5})
            .set("size", {1.2, 1.2})
            .set("blend", {2})
            .set("order", {1})
            .set("colourvariation", {0.2, 0.3, 0.3})
            .set("backgroundcolour", {0.2, 0.25, 0.15, 1})
            .skip()
            .operand(Evaluation("channelmerge", size, size)
                         .operand(drawn(size, size, [](float, float) { return 0.8f; }))
                         .operand(drawn(size, size, [](float, float y) { return 0.6f * y; }))
                         .operand(drawn(size, size, [](float, float) { return 0.1f; }))
                         .operand(Evaluation("shape", size, size)
                                      .set("shape", {3})
                                      .set("sides", {5})
                                      .set("size", {0.9, 0.9})())())();
    });
    add("scatter-scales", [](int size) {
        return Evaluation("scatter", size, size)
            .set("tiles", {7, 9})
            .set("shape", {7})
            .set("size", {1.2, 1.8})
            .set("offset", {0.5})
            .set("valuevariation", {0.3})
            .set("blend", {2})();
    });
    addChoices("scatter", "shape", [](Evaluation& run, int) {
        run.set("size", {0.9, 0.4}).set("rotationvariation", {1}).set("sides", {5});
    });
    add("freescatter", [](int size) {
        return Evaluation("freescatter", size, size)
            .set("number", {3000})
            .set("size", {0.012, 0.012})
            .set("spacing", {1})();
    });
    add("freescatter-density", [](int size) {
        Evaluation run("freescatter", size, size);
        run.set("number", {6000}).set("size", {0.03, 0.006}).set("rotationvariation", {1}).set("shape", {5});
        for (int i = 0; i < 10; ++i)
            run.skip();
        return run.operand(reliefOf(size))();
    });
    add("freescatter-thin", [](int size) {
        return Evaluation("freescatter", size, size)
            .set("number", {400})
            .set("size", {0.3, 0.0014})
            .set("rotationvariation", {1})
            .set("sizevariation", {0.8})
            .set("ratio", {1})
            .set("softness", {1})
            .set("shape", {5})();
    });
    addChoices("cracks", "output", [](Evaluation&, int) {});
    addChoices("dots", "profile", [](Evaluation& run, int) { run.set("arrangement", {1}); });
    add("stripes", [](int size) { return Evaluation("stripes", size, size).set("repeats", {5, 3})(); });
    addChoices("reflectedgradient", "profile", [](Evaluation& run, int) { run.set("repeats", {2, 1}); });
    addChoices("angulargradient", "profile", [](Evaluation& run, int) { run.set("repeats", {2}); });
    addChoices("knit", "output", [](Evaluation& run, int) { run.set("stitches", {6, 0}); });
    addChoices("knit", "stitch", [](Evaluation& run, int) { run.set("stitches", {8, 0}); });
    addChoices("weave", "pattern", [](Evaluation& run, int) { run.set("threads", {10, 0}); });
    addChoices("weave", "output", [](Evaluation& run, int) {
        run.set("threads", {8, 0}).set("pattern", {4});
    });
    add("checker", [](int size) { return Evaluation("checker", size, size).set("tiles", {3, 0})(); });
    add("checker-diagonal", [](int size) {
        return Evaluation("checker", size, size).set("tiles", {3, 0}).set("diagonal", {1})();
    });
    addChoices("lineargradient", "profile", [](Evaluation& run, int) { run.set("repeats", {2, 1}); });
    addChoices("radialgradient", "profile", [](Evaluation&, int) {});
    add("whitenoise", [](int size) { return Evaluation("whitenoise", size, size)(); });
    add("gaussianblur",
        [](int size) { return Evaluation("gaussianblur", size, size).operand(heightOf(size))(); });
    add("normal", [](int size) { return Evaluation("normal", size, size).operand(heightOf(size))(); });
    add("normal-perlin", [](int size) { return Evaluation("normal", size, size).operand(reliefOf(size))(); });
    add("gradientmap", [](int size) {
        return Evaluation("gradientmap", size, size)
            .setBlob("gradient", {0, 0.1f, 0.05f, 0.2f, 1, 0.5f, 0.8f, 0.3f, 0.1f, 1, 1, 1, 0.95f, 0.7f, 1})
            .operand(reliefOf(size))();
    });
    add("text", [](int size) {
        return Evaluation("text", size, size)
            .setText("text", U"Quick fox 0123\njumps @ {42%}\nVELLOR &$?")
            .set("size", {0.1})();
    });
    add("text-all", [](int size) {
        std::u32string ascii;
        for (char32_t c = 33; c < 127; ++c)
            ascii += (c % 12 == 0 ? U"\n" : U"") + std::u32string(1, c);
        return Evaluation("text", size, size).setText("text", ascii).set("size", {0.06})();
    });
    add("transform-turned", [](int size) {
        return Evaluation("transform", size, size).set("rotation", {0.125}).operand(heightOf(size))();
    });
    add("transform-tiled", [](int size) {
        return Evaluation("transform", size, size).set("tiling", {3, 8}).operand(heightOf(size))();
    });
    add("transform-once", [](int size) {
        return Evaluation("transform", size, size)
            .set("scale", {0.6, 0.6})
            .set("rotation", {0.05})
            .set("wrap", {0})
            .operand(heightOf(size))();
    });
    add("warp", [](int size) {
        return Evaluation("warp", size, size).operand(heightOf(size)).operand(reliefOf(size))();
    });
    add("warp-direction", [](int size) {
        return Evaluation("warp", size, size)
            .set("mode", {1})
            .set("intensity", {10})
            .operand(heightOf(size))
            .operand(reliefOf(size))();
    });
    add("vectorwarp", [](int size) {
        return Evaluation("vectorwarp", size, size)
            .operand(heightOf(size))
            .operand(Evaluation("normal", size, size).set("intensity", {10}).operand(reliefOf(size))())();
    });
    add("directionalblur", [](int size) {
        return Evaluation("directionalblur", size, size)
            .set("angle", {0.1})
            .set("length", {200})
            .operand(heightOf(size))();
    });
    add("ambientocclusion",
        [](int size) { return Evaluation("ambientocclusion", size, size).operand(heightOf(size))(); });
    add("ambientocclusion-far", [](int size) {
        return Evaluation("ambientocclusion", size, size)
            .set("radius", {0.4})
            .set("depth", {20})
            .operand(Evaluation("tile", size, size).set("share", {0.2})())();
    });
    add("ambientocclusion-perlin", [](int size) {
        return Evaluation("ambientocclusion", size, size).set("depth", {15}).operand(reliefOf(size))();
    });
    add("curvature", [](int size) { return Evaluation("curvature", size, size).operand(heightOf(size))(); });
    add("distance", [](int size) {
        return Evaluation("distance", size, size)
            .operand(Evaluation("shape", size, size)
                         .set("shape", {3})
                         .set("sides", {5})
                         .set("size", {0.5, 0.5})())();
    });
    add("distance-inside", [](int size) {
        return Evaluation("distance", size, size)
            .set("side", {1})
            .operand(Evaluation("brick", size, size).set("output", {1}).set("rounding", {0.3})())();
    });
    for (const char* kind : {"regiongrey", "regioncolour", "regiongradient", "regionsize", "regionposition"})
        add(kind, [=](int size) {
            return Evaluation(kind, size, size, kind[6] == 'p' ? 4 : 1).operand(regionsOf(size))();
        });
    add("floodfill", [](int size) { return regionsOf(size); });
    add("regiongradient-any", [](int size) {
        return Evaluation("regiongradient", size, size)
            .set("anglevariation", {1})
            .set("strengthvariation", {0.7})
            .operand(regionsOf(size))();
    });
    addChoices("bevel", "profile", [](Evaluation& run, int size) {
        run.set("width", {0.1})
            .operand(Evaluation("shape", size, size).set("shape", {3}).set("sides", {5})());
    });
    add("slope", [](int size) {
        return Evaluation("slope", size, size).set("intensity", {30}).operand(reliefOf(size))();
    });
    add("slope-direction", [](int size) {
        return Evaluation("slope", size, size).set("output", {1}).operand(reliefOf(size))();
    });
    const auto bricksNormal = [](int size) {
        return Evaluation("normal", size, size).operand(heightOf(size))();
    };
    add("light", [=](int size) {
        return Evaluation("light", size, size).set("specular", {0.3}).operand(bricksNormal(size))();
    });
    add("shadow", [](int size) { return Evaluation("shadow", size, size).operand(heightOf(size))(); });
    add("shadow-perlin", [](int size) {
        return Evaluation("shadow", size, size).set("depth", {20}).operand(reliefOf(size))();
    });
    add("shadow-shapes", [](int size) {
        return Evaluation("shadow", size, size)
            .set("angle", {0.57})
            .operand(Evaluation("tile", size, size).set("share", {0.2})())();
    });
    add("heightfromnormal",
        [=](int size) { return Evaluation("heightfromnormal", size, size).operand(bricksNormal(size))(); });
    const auto addGeometry = [&](std::string name, const char* kind,
                                 const std::function<void(Evaluation&)>& more, bool mapped = false) {
        add("geometry-" + name, [=](int size) {
            Evaluation run(kind, size, size);
            run.operand(name.find("photo") == std::string::npos ? heightOf(size) : photoOf(size));
            if (mapped)
                run.operand(reliefOf(size));
            more(run);
            return run();
        });
    };
    addGeometry("mirror", "mirror", [](Evaluation& run) { run.set("mode", {2}); });
    addGeometry("crop", "crop", [](Evaluation& run) { run.set("rectangle", {0.1, 0.1, 0.5, 0.5}); });
    addGeometry("bicubic", "transform", [](Evaluation& run) {
        run.set("scale", {7, 7}).set("filter", {1}).set("rotation", {0.07});
    });
    addGeometry("small", "transform", [](Evaluation& run) {
        run.set("scale", {0.12, 0.3}).set("rotation", {0.07});
    });
    addGeometry(
        "directionalwarp", "directionalwarp", [](Evaluation& run) { run.set("angle", {0.1}); }, true);
    addGeometry(
        "multidirectionalwarp", "multidirectionalwarp",
        [](Evaluation& run) { run.set("mode", {1}).set("intensity", {3}); }, true);
    addGeometry("swirl", "swirl", [](Evaluation&) {});
    addGeometry("spherise", "spherise", [](Evaluation&) {});
    addGeometry("bowl", "spherise", [](Evaluation& run) { run.set("amount", {-1}); });
    addGeometry("cartesiantopolar", "cartesiantopolar", [](Evaluation&) {});
    addGeometry("polartocartesian", "polartocartesian", [](Evaluation&) {});
    addGeometry("photo", "crop", [](Evaluation& run) { run.set("rectangle", {0, 0, 1, 1}); });
    for (const double method : {0.0, 1.0})
        for (const double blend : {0.0, 1.0, 2.0})
            addGeometry("photo-" + std::to_string(int(method)) + std::to_string(int(blend)), "maketileable",
                        [=](Evaluation& run) { run.set("method", {method}).set("blend", {blend}); });
    return all;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return 1;
    const int size = argc > 2 ? std::atoi(argv[2]) : 256;
    const std::string pattern = argc > 3 ? argv[3] : "";
    for (const Sheet& sheet : sheets()) {
        if (sheet.name.find(pattern) == std::string::npos)
            continue;
        if (std::strcmp(argv[1], "time") == 0)
            measure(sheet, size);
        else
            write(std::string(argv[1]) + "/" + sheet.name + ".ppm", sheet.draw(size));
    }
    return 0;
}
