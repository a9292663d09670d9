#include "orncommon/image/codec/dds/blockcompressedddscodec.h"

#include "orncommon/image/codec/dds/blockdecoder.h"
#include "orncommon/image/surfaceoperations.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace Orn::Image::Codec {

using Surfaces::Surface;
using Surfaces::SurfaceDescription;

namespace {

constexpr int headerSize = 128;
constexpr int codeOffset = 84;
constexpr unsigned int longestSide = 65536;

struct Code
{
    char const* name;
    BlockFormat format;
};

constexpr Code codes[] = {
    {"DXT1", BlockFormat::Bc1}, {"DXT2", BlockFormat::Bc2}, {"DXT3", BlockFormat::Bc2},
    {"DXT4", BlockFormat::Bc3}, {"DXT5", BlockFormat::Bc3}, {"ATI1", BlockFormat::Bc4},
    {"ATI2", BlockFormat::Bc5},
};

struct Header
{
    unsigned int width = 0;
    unsigned int height = 0;
    BlockFormat format = BlockFormat::Bc1;

    std::size_t columns() const { return (width + 3) / 4; }
    std::size_t rows() const { return (height + 3) / 4; }
    std::size_t dataSize() const { return columns() * rows() * blockSize(format); }
};

/// The block format that a header's code names.
std::optional<BlockFormat> formatOf(QByteArray const& header)
{
    if (header.size() < codeOffset + 4 || !header.startsWith("DDS "))
        return {};
    char const* const code = header.constData() + codeOffset;
    auto const* known = std::find_if(std::begin(codes), std::end(codes), [code](Code const& candidate) {
        return std::memcmp(candidate.name, code, 4) == 0;
    });
    return known == std::end(codes) ? std::nullopt : std::make_optional(known->format);
}

std::optional<Header> parseHeader(QByteArray const& bytes)
{
    auto const format = formatOf(bytes);
    if (!format || bytes.size() < headerSize)
        return {};
    Header header;
    header.height = qFromLittleEndian<quint32>(bytes.constData() + 12);
    header.width = qFromLittleEndian<quint32>(bytes.constData() + 16);
    header.format = *format;
    bool const isSized = header.width > 0 && header.height > 0;
    bool const isBounded = header.width <= longestSide && header.height <= longestSide;
    return isSized && isBounded ? std::make_optional(header) : std::nullopt;
}

void decodeAll(Header const& header, std::uint8_t const* block, Surface& surface)
{
    std::size_t const pixelSize = decodedPixelSize(header.format);
    std::uint8_t pixels[16 * 4];
    for (std::size_t row = 0; row < header.rows(); ++row) {
        unsigned int const top = unsigned(row) * 4;
        unsigned int const lines = std::min(4u, header.height - top);
        for (std::size_t column = 0; column < header.columns(); ++column, block += blockSize(header.format)) {
            decodeBlock(header.format, block, pixels);
            std::size_t const bytes = std::min<std::size_t>(4, header.width - column * 4) * pixelSize;
            for (unsigned int y = 0; y < lines; ++y)
                std::memcpy(surface.row(top + y) + column * 4 * pixelSize, pixels + y * 4 * pixelSize, bytes);
        }
    }
}

} // namespace

bool BlockCompressedDdsCodec::canRead(QIODevice& device)
{
    return formatOf(device.peek(headerSize)).has_value();
}

bool BlockCompressedDdsCodec::doRead(QSharedPointer<Surface>& surface, SurfaceCodecOptions*)
{
    auto const header = parseHeader(m_device.read(headerSize));
    if (!header || m_device.bytesAvailable() < qint64(header->dataSize()))
        return false;
    QByteArray const data = m_device.read(qint64(header->dataSize()));
    if (std::size_t(data.size()) != header->dataSize())
        return false;
    Surface decoded(SurfaceDescription(header->width, header->height,
                                       header->format == BlockFormat::Bc4 ? Surfaces::L8 : Surfaces::RGBA8));
    if (decoded.isEmpty())
        return false;
    decodeAll(*header, reinterpret_cast<std::uint8_t const*>(data.constData()), decoded);
    decoded.setAlphaUse(Core::hasPixelWithAlpha(decoded) ? SurfaceDescription::AlphaCarried
                                                         : SurfaceDescription::AlphaAbsent);
    surface = Core::makeShared(std::move(decoded));
    return true;
}

bool BlockCompressedDdsCodec::doWrite(QSharedPointer<Surface> const&, SurfaceCodecOptions const*)
{
    return false;
}

} // namespace Orn::Image::Codec
