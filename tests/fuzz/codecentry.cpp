// Pictures in files of all formats, as the codec manager reads them.

#include "orncommon/image/codec/dds/blockcompressedddscodecfactory.h"
#include "orncommon/image/codec/dds/ddssurfacecodecfactory.h"
#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"
#include "tests/fuzz/entries.h"

#include <QBuffer>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>

namespace vellor::fuzz {

namespace {

using namespace Orn::Image::Codec;
using Orn::Surfaces::Surface;

void require(bool kept, const char* promise)
{
    if (kept)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

QSharedPointer<Surface> readFrom(const SurfaceCodecManager& manager, QByteArray bytes, const char* format)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QSharedPointer<Surface> surface;
    SurfaceCodecOptions options;
    if (const auto reader = manager.createReader(buffer, format))
        require(reader->read(surface, &options) == !surface.isNull(), "a picture is read, or none is there");
    return surface;
}

/// Looks at every byte.
unsigned sumOf(const Surface& surface)
{
    unsigned sum = 0;
    for (unsigned y = 0; y < surface.height(); ++y)
        sum = std::accumulate(surface.row(y), surface.row(y) + surface.lineSize(), sum);
    return sum;
}

/// What was read is written and read once more.
void writeAndReadBack(const SurfaceCodecManager& manager, const QSharedPointer<Surface>& surface)
{
    QByteArray written;
    QBuffer buffer(&written);
    buffer.open(QIODevice::WriteOnly);
    require(manager.createWriter(buffer, "dds")->write(surface, nullptr), "what was read can be written");
    const auto again = readFrom(manager, written, "dds");
    require(again && again->format() == surface->format() && again->width() == surface->width() &&
                again->height() == surface->height() && sumOf(*again) == sumOf(*surface),
            "what was written reads back");
}

void ignore(QtMsgType, const QMessageLogContext&, const QString&)
{
}

template<class Register> const SurfaceCodecManager& managerOf(Register registerCodecs)
{
    static const auto* const manager = [&] {
        qInstallMessageHandler(ignore);
        auto* made = new SurfaceCodecManager;
        registerCodecs(*made);
        return made;
    }();
    return *manager;
}

QByteArray bytesOf(const std::uint8_t* data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), int(size));
}

} // namespace

void dds(const std::uint8_t* data, std::size_t size)
{
    const SurfaceCodecManager& manager = managerOf([](SurfaceCodecManager& made) {
        made.registerFactory(QSharedPointer<DDSSurfaceCodecFactory>::create());
        made.registerFactory(QSharedPointer<BlockCompressedDdsCodecFactory>::create());
    });
    if (const auto surface = readFrom(manager, bytesOf(data, size), "dds"))
        writeAndReadBack(manager, surface);
}

void imagefile(const std::uint8_t* data, std::size_t size)
{
    static const char* const formats[] = {
        "",    "bmp", "dds", "exr", "gif",  "hdr",  "iff", "j2k", "jp2",  "jpg", "pcx", "pfm", "png", "ppm",
        "psd", "sgi", "tga", "tif", "wbmp", "webp", "xbm", "xpm", "pict", "ras", "ico", "cut", "mng", "jng"};
    if (size == 0)
        return;
    const SurfaceCodecManager& manager =
        managerOf([](SurfaceCodecManager& made) { registerDefaultCodecs(made); });
    const char* const format = formats[data[0] % (sizeof formats / sizeof *formats)];
    if (const auto surface = readFrom(manager, bytesOf(data + 1, size - 1), format))
        sumOf(*surface);
}

} // namespace vellor::fuzz
