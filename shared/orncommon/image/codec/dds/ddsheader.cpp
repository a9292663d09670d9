#include "orncommon/image/codec/dds/ddsheader.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <optional>

namespace Orn::Image::Codec {

namespace {

enum Offset
{
    SizeAt = 4,
    FlagsAt = 8,
    HeightAt = 12,
    WidthAt = 16,
    PitchAt = 20,
    MipCountAt = 28,
    FormatSizeAt = 76,
    FormatFlagsAt = 80,
    CodeAt = 84,
    BitCountAt = 88,
    RedMaskAt = 92,
    GreenMaskAt = 96,
    BlueMaskAt = 100,
    AlphaMaskAt = 104,
    CapsAt = 108,
};

enum HeaderFlag : std::uint32_t
{
    HasCaps = 0x1,
    HasHeight = 0x2,
    HasWidth = 0x4,
    HasPitch = 0x8,
    HasPixelFormat = 0x1000,
    HasMipCount = 0x20000,
};
constexpr std::uint32_t neededFlags = HasPixelFormat | HasWidth | HasHeight;

enum FormatFlag : std::uint32_t
{
    AlphaPixels = 0x1,
    FourCC = 0x4,
    Rgb = 0x40,
    Luminance = 0x20000,
};
constexpr std::uint32_t unknownFormatFlags = 0xFFFD7FBE; // all but alpha, RGB, bit 15 and luminance

struct Code
{
    std::uint32_t code;
    DDSPixelType type;
};

constexpr std::uint32_t fourCharacters(char const (&text)[5])
{
    return std::uint32_t(text[0]) | std::uint32_t(text[1]) << 8 | std::uint32_t(text[2]) << 16 |
           std::uint32_t(text[3]) << 24;
}

constexpr Code codes[] = {
    {0x24, DDSRgba16},
    {0x6F, DDSL16F},
    {0x71, DDSRgba16F},
    {0x72, DDSL32F},
    {0x74, DDSRgba32F},
    {fourCharacters("DXT1"), DDSDxt1},
    {fourCharacters("DXT2"), DDSDxt2},
    {fourCharacters("DXT3"), DDSDxt3},
    {fourCharacters("DXT4"), DDSDxt4},
    {fourCharacters("DXT5"), DDSDxt5},
    {fourCharacters("ATI1"), DDSAti1},
    {fourCharacters("ATI2"), DDSAti2},
};

struct Masks
{
    std::uint32_t red, green, blue;

    friend bool operator==(Masks const& a, Masks const& b)
    {
        return a.red == b.red && a.green == b.green && a.blue == b.blue;
    }
};
constexpr Masks redFirst{0xFF, 0xFF00, 0xFF0000};
constexpr Masks redThird{0xFF0000, 0xFF00, 0xFF};

std::uint32_t field(QByteArray const& bytes, Offset offset)
{
    return qFromLittleEndian<quint32>(bytes.constData() + offset);
}

std::optional<std::uint32_t> typeOfCode(std::uint32_t code)
{
    auto const* known =
        std::find_if(std::begin(codes), std::end(codes), [code](Code const& c) { return c.code == code; });
    return known == std::end(codes) ? std::nullopt : std::optional<std::uint32_t>(known->type);
}

std::optional<std::uint32_t> typeOfColour(QByteArray const& bytes, std::uint32_t flags)
{
    std::uint32_t const bits = field(bytes, BitCountAt);
    if (bits != 24 && bits != 32)
        return {};
    Masks const masks{field(bytes, RedMaskAt), field(bytes, GreenMaskAt), field(bytes, BlueMaskAt)};
    if (!(masks == redFirst) && !(masks == redThird))
        return {};
    return (flags & AlphaPixels) | (bits == 24 ? DDS24BitColour : 0u) |
           (masks == redThird ? DDSRedInThirdByte : 0u);
}

std::optional<std::uint32_t> pixelTypeOf(QByteArray const& bytes)
{
    std::uint32_t const flags = field(bytes, FormatFlagsAt);
    if ((flags & FourCC) != 0)
        return typeOfCode(field(bytes, CodeAt));
    if ((flags & unknownFormatFlags) != 0)
        return {};
    if ((flags & Luminance) == 0)
        return typeOfColour(bytes, flags);
    std::uint32_t const bits = field(bytes, BitCountAt);
    return bits == 8    ? std::optional<std::uint32_t>(DDSL8)
           : bits == 16 ? std::optional<std::uint32_t>(DDSL16)
                        : std::nullopt;
}

} // namespace

bool ornDDSHeaderRead(QByteArray const& bytes, DDSHeader& header)
{
    if (bytes.size() < ddsHeaderSize || !bytes.startsWith("DDS "))
        return false;
    std::uint32_t const flags = field(bytes, FlagsAt);
    auto const type = pixelTypeOf(bytes);
    if ((flags & neededFlags) != neededFlags || !type)
        return false;
    header.width = field(bytes, WidthAt);
    header.height = field(bytes, HeightAt);
    header.pitch = (flags & HasPitch) != 0 ? field(bytes, PitchAt) : 0;
    header.mipCount = (flags & HasMipCount) != 0 ? std::max(field(bytes, MipCountAt), 1u) : 1;
    header.pixelType = *type;
    return true;
}

QByteArray ornDDSHeaderWrite(std::uint32_t width, std::uint32_t height, std::uint64_t lineSize,
                             DDSPixelType pixelType)
{
    QByteArray bytes(ddsHeaderSize, '\0');
    auto const put = [&bytes](Offset offset, std::uint32_t value) {
        qToLittleEndian(value, bytes.data() + offset);
    };
    // The float types say that there is a pitch, and give none; the others the other way around. Readers of
    // these files go by width and format.
    bool const isFloat = (pixelType & DDSFloat) != 0;
    std::memcpy(bytes.data(), "DDS ", 4);
    put(SizeAt, 124);
    put(FlagsAt, HasCaps | neededFlags | (isFloat ? HasPitch : 0u));
    put(HeightAt, height);
    put(WidthAt, width);
    put(PitchAt, isFloat ? 0 : std::uint32_t(lineSize));
    put(FormatSizeAt, 32);
    put(CapsAt, 0x1000);

    if (pixelType == DDSL8 || pixelType == DDSL16) {
        put(FormatFlagsAt, Luminance);
        put(BitCountAt, pixelType == DDSL8 ? 8 : 16);
        put(RedMaskAt, pixelType == DDSL8 ? 0xFF : 0xFFFF);
        return bytes;
    }
    bool const is24Bit = (pixelType & DDS24BitColour) != 0;
    bool const is32Bit = pixelType == DDSRgba8 || pixelType == DDSBgra8;
    put(FormatFlagsAt, is32Bit ? Rgb | AlphaPixels : is24Bit ? std::uint32_t(Rgb) : std::uint32_t(FourCC));
    for (Code const& known : codes) {
        if (known.type == pixelType)
            put(CodeAt, known.code);
    }
    put(BitCountAt, is32Bit ? 32 : is24Bit ? 24 : 0);
    if ((pixelType & DDSLuminance) == 0) {
        Masks const masks = (pixelType & DDSRedInThirdByte) != 0 ? redThird : redFirst;
        put(RedMaskAt, masks.red);
        put(GreenMaskAt, masks.green);
        put(BlueMaskAt, masks.blue);
    }
    put(AlphaMaskAt, is32Bit ? 0xFF000000 : 0);
    return bytes;
}

Surfaces::PixelFormat surfaceFormatOf(std::uint32_t pixelType)
{
    switch (pixelType) {
    case DDSRgbx8:
    case DDSRgba8:
        return Surfaces::RGBA8;
    case DDSBgrx8:
    case DDSBgra8:
        return Surfaces::BGRA8;
    case DDSL8:
        return Surfaces::L8;
    case DDSRgba16:
        return Surfaces::RGBA16;
    case DDSL16:
        return Surfaces::L16;
    case DDSRgba16F:
        return Surfaces::RGBA16F;
    case DDSL16F:
        return Surfaces::L16F;
    case DDSRgba32F:
        return Surfaces::RGBA32F;
    case DDSL32F:
        return Surfaces::L32F;
    default:
        return Surfaces::PixelFormat_Invalid;
    }
}

} // namespace Orn::Image::Codec
