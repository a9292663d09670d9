#pragma once

#include "orncommon/colormanagement/thumbnailtransform.h"
#include "orncommon/image/surfaceoperations.h"

#include <QImage>
#include <QSize>

#include <memory>

namespace Orn::Gui {

struct ThumbnailOptions
{
    QSize size;             ///< in pixels, taken as it is; invalid: the surface's own
    bool isFlipped = false; ///< rows from the bottom up
    std::shared_ptr<ColorManagement::ThumbnailTransform const> transform =
        {}; ///< to the display; may be null
};

/// A surface as a small picture: scaled with the bicubic filter, and transformed where the image that comes
/// of it is colour. Null for a null surface, and for formats that can't be shown. Any thread.
QImage thumbnailOf(Image::Core::SharedSurface const& surface, ThumbnailOptions const& options);

} // namespace Orn::Gui
