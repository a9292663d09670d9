// Preparing the picture of an image input for the engine, beside a copy of as many bytes as the engine gets
// into memory that is as new as the canvas.

#include "applications/player/images/imageinput.h"
#include "benchmarks/pictures/testpicture.h"
#include "orncommon/image/surfaceoperations.h"

#include <QRect>

#include <cstring>
#include <memory>
#include <vector>

using namespace Orn::Surfaces;
using namespace Zph::Applications::Player;

namespace {

struct Way
{
    const char* name;
    PixelFormat format;
    QSize source;
    quint32 flags;
    int crop; // pixels at each side
};

constexpr int kWhole = int(kSide);
const Way kWays[] = {
    {"stretched", RGBA8, {kWhole, kWhole}, ImageOptions::Stretch, 0},
    {"stretched, without alpha", RGB8, {kWhole, kWhole}, ImageOptions::Stretch, 0},
    {"cropped", RGBA8, {kWhole, kWhole}, ImageOptions::Stretch, 64},
    {"padded", RGBA8, {kWhole * 3 / 4, kWhole * 3 / 4}, ImageOptions::Exact, 0},
    {"cut", RGBA8, {kWhole * 2, kWhole}, ImageOptions::Exact, 0},
    {"proportions kept", RGBA8, {kWhole, kWhole / 2}, ImageOptions::KeepAspect, 0},
    {"mosaic of 256", RGBA8, {256, 256}, ImageOptions::Exact | ImageOptions::Mosaic, 0},
    {"mosaic of 3", RGBA8, {3, 3}, ImageOptions::Exact | ImageOptions::Mosaic, 0},
};

Pair preparing(const Way& way)
{
    auto source = QSharedPointer<Surface>::create(
        SurfaceDescription(unsigned(way.source.width()), unsigned(way.source.height()), way.format));
    Orn::Image::Core::clear(*source, 0.3f, 0.5f, 0.7f, 1.0f);
    ImageOptions options;
    options.flags = way.flags;
    options.paddingColor = QColor(40, 80, 120);
    if (way.crop > 0)
        options.cropLeft = options.cropTop = options.cropRight = options.cropBottom = way.crop;
    const auto input = std::make_shared<ImageInput>();
    input->setOptions(options);
    input->setSource(source);
    const VellorTexture* texture = input->prepare(kSide, kSide);
    const std::size_t bytes = std::size_t(texture->width) * texture->height * 4;
    const auto from = std::make_shared<std::vector<char>>(bytes, 1);
    return {[=] {
                input->setSource(source); // as after every change
                input->prepare(kSide, kSide);
            },
            [=] {
                const std::unique_ptr<char[]> to(new char[bytes]);
                std::memcpy(to.get(), from->data(), bytes);
                benchmark::DoNotOptimize(to[bytes - 1]);
            }};
}

const bool registered = [] {
    for (const Way& way : kWays)
        registerPair(std::string("image input ") + way.name, "memcpy of as many bytes into new memory", 1.5,
                     [way] { return preparing(way); });
    return true;
}();

} // namespace
