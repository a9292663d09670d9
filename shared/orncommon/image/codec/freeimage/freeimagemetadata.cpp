#include "orncommon/image/codec/freeimage/freeimagemetadata.h"

#include "orncommon/image/codec/surfacecodecoptions.h"

#include <FreeImage.h>

#include <QByteArray>
#include <QSizeF>

#include <algorithm>
#include <limits>

namespace Orn::Image::Codec {

namespace {

constexpr char descriptionKey[] = "Description";
constexpr char profileKey[] = "ICCProfile";
constexpr double centimetresPerInch = 2.54;

struct Resolution
{
    int dotsPerInchX = 72;
    int dotsPerInchY = 72;
    unsigned int dotsPerMetreX = 2834;
    unsigned int dotsPerMetreY = 2834;
};

/// Truncated; what no int holds is the greatest one.
int whole(double value)
{
    return int(std::min(value, double(std::numeric_limits<int>::max())));
}

Resolution resolutionOf(FIBITMAP* bitmap, QSizeF const& centimetres)
{
    Resolution resolution;
    if (!(centimetres.width() > 0 && centimetres.height() > 0))
        return resolution;
    double const width = FreeImage_GetWidth(bitmap);
    double const height = FreeImage_GetHeight(bitmap);
    resolution.dotsPerInchX = whole(width * centimetresPerInch / centimetres.width() + 0.5);
    resolution.dotsPerInchY = whole(height * centimetresPerInch / centimetres.height() + 0.5);
    resolution.dotsPerMetreX = unsigned(whole(width * 100 / centimetres.width()));
    resolution.dotsPerMetreY = unsigned(whole(height * 100 / centimetres.height()));
    return resolution;
}

QByteArray xmpPacket(FIBITMAP* bitmap, Resolution const& resolution)
{
    static QString const packet = QStringLiteral(
        "<?xpacket begin=\"\uFEFF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>"
        "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\" x:xmptk=\"Kestrane XMP Core 5.4-c002 1.000000, "
        "0000/00/00-00:00:00        \">"
        "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
        "<rdf:Description rdf:about=\"\" xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\" "
        "xmlns:exif=\"http://ns.adobe.com/exif/1.0/\" xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\">"
        "<xmp:CreatorTool>Vellor Studio</xmp:CreatorTool>"
        "<exif:ExifVersion>0220</exif:ExifVersion>"
        "<exif:PixelXDimension>%1</exif:PixelXDimension><exif:PixelYDimension>%2</exif:PixelYDimension>"
        "<tiff:ImageWidth>%1</tiff:ImageWidth><tiff:ImageLength>%2</tiff:ImageLength>"
        "<tiff:XResolution>%3</tiff:XResolution><tiff:YResolution>%4</tiff:YResolution>"
        "<tiff:ResolutionUnit>2</tiff:ResolutionUnit>"
        "</rdf:Description></rdf:RDF></x:xmpmeta><?xpacket end=\"w\"?>");
    return packet.arg(FreeImage_GetWidth(bitmap))
        .arg(FreeImage_GetHeight(bitmap))
        .arg(resolution.dotsPerInchX)
        .arg(resolution.dotsPerInchY)
        .toUtf8();
}

void setText(FIBITMAP* bitmap, FREE_IMAGE_MDMODEL model, char const* key, QByteArray const& text)
{
    FITAG* const tag = FreeImage_CreateTag();
    if (tag == nullptr)
        return;
    unsigned int const length = unsigned(text.size()) + 1;
    FreeImage_SetTagKey(tag, key);
    FreeImage_SetTagType(tag, FIDT_ASCII);
    FreeImage_SetTagLength(tag, length);
    FreeImage_SetTagCount(tag, length);
    FreeImage_SetTagValue(tag, text.constData());
    FreeImage_SetMetadata(model, bitmap, key, tag);
    FreeImage_DeleteTag(tag);
}

} // namespace

void readMetadata(FIBITMAP* bitmap, SurfaceCodecOptions& options)
{
    FIICCPROFILE const* const profile = FreeImage_GetICCProfile(bitmap);
    if (profile != nullptr && profile->data != nullptr && profile->size > 0)
        options.setValue(profileKey, QByteArray(static_cast<char const*>(profile->data), int(profile->size)));
    FITAG* tag = nullptr;
    if (!FreeImage_GetMetadata(FIMD_COMMENTS, bitmap, descriptionKey, &tag) || tag == nullptr)
        return;
    auto const* const text = static_cast<char const*>(FreeImage_GetTagValue(tag));
    int const length = int(qstrnlen(text, FreeImage_GetTagLength(tag)));
    if (length > 0)
        options.setValue(descriptionKey, QString::fromUtf8(text, length));
}

void writeMetadata(FIBITMAP* bitmap, SurfaceCodecOptions const& options)
{
    Resolution const resolution =
        resolutionOf(bitmap, options.value(QStringLiteral("physical_size")).toSizeF());
    FreeImage_SetDotsPerMeterX(bitmap, resolution.dotsPerMetreX);
    FreeImage_SetDotsPerMeterY(bitmap, resolution.dotsPerMetreY);
    setText(bitmap, FIMD_XMP, "XMLPacket", xmpPacket(bitmap, resolution));
    QByteArray const description = options.value(descriptionKey).toString().toUtf8();
    if (!description.isEmpty())
        setText(bitmap, FIMD_COMMENTS, descriptionKey, description);
    QByteArray profile = options.getEmbeddedICCProfileData();
    if (!profile.isEmpty())
        FreeImage_CreateICCProfile(bitmap, profile.data(), profile.size());
}

} // namespace Orn::Image::Codec
