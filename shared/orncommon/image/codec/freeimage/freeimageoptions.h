#pragma once

#include "orncommon/image/codec/surfacecodecoptions.h"

#include <QByteArray>
#include <QVector>

namespace Orn::Image::Codec {

/// The options of one format on writing, under its option id.
struct FormatOptions
{
    QByteArray optionId;
    SurfaceCodecOptions options;
};

/// All that the library's formats offer, with labels and tooltips in the language of the moment.
QVector<FormatOptions> freeimageWriteOptions();

} // namespace Orn::Image::Codec
