#include "orncommon/image/codec/surfacecodecfactory.h"

namespace Orn::Image::Codec {

QByteArray SurfaceCodecFactory::getFormatOptionIdFromFormat(QByteArray const&) const
{
    return {};
}

QList<ImageFormat> SurfaceCodecFactory::getImageFormats(QByteArray const&) const
{
    return {};
}

void SurfaceCodecFactory::setOptions(Action action, QByteArray const& optionId,
                                     SurfaceCodecOptions const& options)
{
    auto const found = optionsOf(action).find(optionId);
    if (found != optionsOf(action).end())
        found->options.mergeValues(options);
}

bool SurfaceCodecFactory::getOptions(SurfaceCodecOptions& options, Action action,
                                     QByteArray const& optionId) const
{
    auto const found = optionsOf(action).constFind(optionId);
    if (found == optionsOf(action).cend())
        return false;
    options.mergeValues(found->options);
    return true;
}

void SurfaceCodecFactory::setOptionsDesc(Action action, QByteArray const& optionId,
                                         SurfaceCodecOptions const& options)
{
    optionsOf(action).insert(optionId, {options});
}

bool SurfaceCodecFactory::getOptionsDescs(SurfaceCodecOptions& options, Action action,
                                          QByteArray const& optionId) const
{
    auto const found = optionsOf(action).constFind(optionId);
    if (found == optionsOf(action).cend())
        return false;
    options.setOptionDescs(found->options.optionDescs());
    return true;
}

} // namespace Orn::Image::Codec
