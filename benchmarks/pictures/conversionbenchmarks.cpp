// Surfaces from format to format, beside a copy that moves as many bytes.

#include "benchmarks/pictures/testpicture.h"
#include "orncommon/surfaces/operations.h"

#include <cstring>
#include <memory>
#include <vector>

using namespace Orn::Surfaces;

namespace {

struct Way
{
    const char* name;
    PixelFormat from, to;
};

constexpr Way kWays[] = {
    {"RGBA8 to BGRA8", RGBA8, BGRA8},
    {"RGBA8 to BGR8", RGBA8, BGR8},
    {"RGB8 to BGR8", RGB8, BGR8},
    {"BGR8 to RGBA8", BGR8, RGBA8},
    {"L8 to RGBA8", L8, RGBA8},
    {"RGBA16 to RGBA8", RGBA16, RGBA8},
    {"RGBA8 to RGBA16", RGBA8, RGBA16},
    {"RGB16 to RGBA16", RGB16, RGBA16},
    {"L16 to L8", L16, L8},
    {"RGBA16F to RGBA32F", RGBA16F, RGBA32F},
    {"RGBA32F to RGBA16F", RGBA32F, RGBA16F},
    {"RGBA32F to RGBA16", RGBA32F, RGBA16},
    {"RGBA16 to RGBA32F", RGBA16, RGBA32F},
    {"RGBA16F to RGBA8", RGBA16F, RGBA8},
};

Pair converting(const Way& way)
{
    const auto source = testPicture(way.from);
    const auto target = std::make_shared<Surface>(SurfaceDescription(kSide, kSide, way.to));
    const std::size_t bytes = (source->lineSize() + target->lineSize()) * kSide / 2;
    const auto from = std::make_shared<std::vector<char>>(bytes, 1),
               to = std::make_shared<std::vector<char>>(bytes);
    return {[=] { convertTo(*source, *target, ConversionParameters{255}); },
            [=] { std::memcpy(to->data(), from->data(), bytes); }};
}

const bool registered = [] {
    for (const Way& way : kWays)
        registerPair(std::string("convert ") + way.name, "memcpy of as many bytes", 1.5,
                     [way] { return converting(way); });
    return true;
}();

} // namespace
