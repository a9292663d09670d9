#pragma once

#include "orncommon/surfaces/pixelformat.h"

#include <QByteArray>

#include <cstdint>

namespace Orn::Image::Codec {

/// Bytes of a DirectDraw Surface header, magic included.
constexpr int ddsHeaderSize = 128;

/// Bits of a DDS pixel type.
enum DDSPixelTypeBits : std::uint32_t
{
    DDSAlpha = 1,
    DDSRedInThirdByte = 2,
    DDSLuminance = 4,
    DDSBlockCompressed = 8,
    DDS16BitsPerChannel = 16,
    DDSFloat = 64,
    DDS24BitColour = 128,
    DDS16ByteBlocks = 256,
};

/// What pixels a DDS file holds.
enum DDSPixelType : std::uint32_t
{
    DDSRgbx8 = 0,
    DDSRgba8 = 1,
    DDSBgrx8 = 2,
    DDSBgra8 = 3,
    DDSL8 = 4,
    DDSDxt1 = 8,
    DDSRgba16 = 17,
    DDSL16 = 20,
    DDSRgba16F = 81,
    DDSL16F = 84,
    DDSRgba32F = 97,
    DDSL32F = 100,
    DDSRgb24 = 128,
    DDSBgr24 = 130,
    DDSDxt2 = 264,
    DDSDxt4 = 776,
    DDSDxt3 = 1288,
    DDSDxt5 = 1800,
    DDSAti1 = 2056,
    DDSAti2 = 2312,
};

struct DDSHeader
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint64_t pitch = 0; ///< bytes per row, or of the whole top level; 0 when the file doesn't say
    std::uint32_t mipCount = 1;
    std::uint32_t pixelType = 0; ///< a DDSPixelType
};

/// Reads a header. False, and `header` unchanged, unless `bytes` holds a whole one that names pixels of a
/// DDSPixelType. Its sizes are the file's word, and checked by nobody yet.
/// Layout: the DirectDraw Surface format as documented for Direct3D 9.
bool ornDDSHeaderRead(QByteArray const& bytes, DDSHeader& header);

/// The header of a file of one level with these pixels, which are none of the block-compressed.
QByteArray ornDDSHeaderWrite(std::uint32_t width, std::uint32_t height, std::uint64_t lineSize,
                             DDSPixelType pixelType);

/// The surface format of a pixel type that the reader takes; `PixelFormat_Invalid` for the others.
Surfaces::PixelFormat surfaceFormatOf(std::uint32_t pixelType);

} // namespace Orn::Image::Codec
