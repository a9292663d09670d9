#include "orncommon/image/codec/freeimage/freeimagesurfacecodecfactory.h"

#include "orncommon/image/codec/freeimage/freeimagemgr.h"
#include "orncommon/image/codec/freeimage/freeimageoptions.h"
#include "orncommon/image/codec/freeimage/freeimagesurfacecodec.h"

#include <FreeImage.h>

#include <algorithm>

namespace Orn::Image::Codec {

namespace {

/// Plug-ins whose files are read and never written, though FreeImage could write some of them.
constexpr FREE_IMAGE_FORMAT readOnlyPlugins[] = {FIF_ICO, FIF_JNG,    FIF_GIF, FIF_PBM,    FIF_PBMRAW,
                                                 FIF_PGM, FIF_PGMRAW, FIF_PPM, FIF_PPMRAW, FIF_XBM,
                                                 FIF_XPM, FIF_J2K,    FIF_JP2, FIF_PFM,    FIF_JXR};

struct OptionId
{
    FREE_IMAGE_FORMAT plugin;
    char const* id;
};

constexpr OptionId optionIds[] = {{FIF_BMP, "bmp"},  {FIF_JPEG, "jpg"}, {FIF_PNG, "png"},  {FIF_TARGA, "tga"},
                                  {FIF_TIFF, "tif"}, {FIF_EXR, "exr"},  {FIF_WEBP, "webp"}};

bool canRead(FREE_IMAGE_FORMAT plugin)
{
    return FreeImage_FIFSupportsReading(plugin);
}

bool canWrite(FREE_IMAGE_FORMAT plugin)
{
    bool const isReadOnly = std::find(std::begin(readOnlyPlugins), std::end(readOnlyPlugins), plugin) !=
                            std::end(readOnlyPlugins);
    return !isReadOnly && FreeImage_FIFSupportsWriting(plugin);
}

} // namespace

FreeimageSurfaceCodecFactory::FreeimageSurfaceCodecFactory(std::map<QString, QString> const& names)
    : m_names(names), m_mgr(std::make_shared<FreeImageMgr>())
{
    for (FormatOptions const& format : freeimageWriteOptions())
        setOptionsDesc(Action::Write, format.optionId, format.options);
}

FreeimageSurfaceCodecFactory::~FreeimageSurfaceCodecFactory() = default;

int FreeimageSurfaceCodecFactory::capabilities(QIODevice& device, QByteArray const& format)
{
    auto const plugin =
        FREE_IMAGE_FORMAT(device.isReadable() ? FreeimageSurfaceCodec::pluginOfContent(device, format)
                                              : FreeimageSurfaceCodec::pluginOfName(format));
    if (plugin == FIF_UNKNOWN)
        return 0;
    return (canRead(plugin) ? CanRead : 0) | (canWrite(plugin) ? CanWrite : 0);
}

QSharedPointer<SurfaceCodec> FreeimageSurfaceCodecFactory::create(QIODevice& device, QByteArray const& format)
{
    return QSharedPointer<FreeimageSurfaceCodec>::create(m_mgr, device, format);
}

QList<ImageFormat> FreeimageSurfaceCodecFactory::formatsOf(int plugin) const
{
    auto const id = FREE_IMAGE_FORMAT(plugin);
    QString description = QString::fromUtf8(FreeImage_GetFIFDescription(id));
    auto const renamed = m_names.find(description);
    if (renamed != m_names.end())
        description = renamed->second;
    QList<ImageFormat> formats;
    QString const extensions = QString::fromUtf8(FreeImage_GetFIFExtensionList(id));
    for (QString const& extension : extensions.split(',', Qt::SkipEmptyParts))
        formats.append({description, extension.trimmed()});
    return formats;
}

QList<ImageFormat> FreeimageSurfaceCodecFactory::readFormats() const
{
    QList<ImageFormat> formats;
    for (int plugin = 0; plugin < FreeImage_GetFIFCount(); ++plugin)
        if (canRead(FREE_IMAGE_FORMAT(plugin)))
            formats += formatsOf(plugin);
    return formats;
}

QList<ImageFormat> FreeimageSurfaceCodecFactory::writeFormats() const
{
    QList<ImageFormat> formats;
    for (int plugin = 0; plugin < FreeImage_GetFIFCount(); ++plugin)
        if (canWrite(FREE_IMAGE_FORMAT(plugin)))
            formats += formatsOf(plugin);
    return formats;
}

QByteArray FreeimageSurfaceCodecFactory::getFormatOptionIdFromFormat(QByteArray const& format) const
{
    FreeImageFormat const plugin = FreeimageSurfaceCodec::pluginOfName(format);
    for (OptionId const& candidate : optionIds)
        if (candidate.plugin == plugin)
            return candidate.id;
    return {};
}

QList<ImageFormat> FreeimageSurfaceCodecFactory::getImageFormats(QByteArray const& optionId) const
{
    for (OptionId const& candidate : optionIds)
        if (optionId == candidate.id)
            return formatsOf(candidate.plugin);
    return {};
}

} // namespace Orn::Image::Codec
