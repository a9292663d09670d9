// Shows what a package makes, for people to look at:
//
//   samplesheet ENGINE FILE.vlr FOLDER [SIZE=9] [TILES=1] [input=1,2,3 ...]
//
// Writes each picture, and for each graph that has a surface a lit view and a ball of the material, as PNG
// files into FOLDER. SIZE is the side as a power of two; TILES repeats the pictures, so that seams show. An
// input named "time" stands for $time.

#include "samples/tests/samplepackage.h"
#include "samples/tools/pngwriter.h"
#include "samples/tools/surfacemaps.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <sstream>

using namespace vellor::samples;

namespace {

// How far white stands above black: shares of a picture's width, and of the ball's radius with four pictures
// around it.
constexpr float kFlatRelief = 0.03f, kBallRelief = 0.045f;

void apply(SamplePackage& package, const std::string& assignment)
{
    const std::size_t equals = assignment.find('=');
    std::string name = assignment.substr(0, equals);
    if (name == "time")
        name = "$time";
    std::vector<double> numbers;
    std::istringstream list(equals == std::string::npos ? "0" : assignment.substr(equals + 1));
    for (std::string part; std::getline(list, part, ',');)
        numbers.push_back(std::atof(part.c_str()));
    package.set(name, numbers);
}

void show(const std::vector<std::string>& arguments)
{
    SamplePackage package(arguments[1], arguments[0]);
    package.setSize(arguments.size() > 3 ? std::atoi(arguments[3].c_str()) : 9);
    const int tiles = arguments.size() > 4 ? std::atoi(arguments[4].c_str()) : 1;
    for (std::size_t i = 5; i < arguments.size(); ++i)
        apply(package, arguments[i]);
    const auto start = std::chrono::steady_clock::now();
    const Results results = package.generate();
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
    std::printf("%zu pictures in %.1f ms\n", results.pictures.size(), taken.count());
    std::map<std::string, int> graphs;
    for (const auto& [name, picture] : results.pictures) {
        const std::string graph = name.substr(0, name.find('/'));
        graphs[graph] = 1;
        PngWriter(arguments[2] + "/" + graph + "_" + name.substr(graph.size() + 1) + ".png")
            .write(picture, tiles);
    }
    for (const auto& [graph, unused] : graphs) {
        const SurfaceMaps maps(results, graph, package);
        if (!maps.complete())
            continue;
        PngWriter(arguments[2] + "/" + graph + "_lit.png")
            .write(drawFlatLit(maps, maps.width(), kFlatRelief, tiles), 1);
        PngWriter(arguments[2] + "/" + graph + "_ball.png")
            .write(drawMaterialBall(maps, 640, kBallRelief), 1);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 4) {
        std::fprintf(stderr, "usage: samplesheet ENGINE FILE.vlr FOLDER [SIZE [TILES [input=value ...]]]\n");
        return 2;
    }
    try {
        show({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
