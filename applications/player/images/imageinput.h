#pragma once

#include "applications/player/description/inputsink.h"
#include "applications/player/images/imageoptions.h"
#include "orncommon/surfaces/surface.h"

#include <QSharedPointer>
#include <QSize>

#include <vellor/engine.h>

namespace Zph::Applications::Player {

// The picture of an image input in the form that the engine gets: cropped, and laid on a canvas as the
// options say. The work is done when the engine asks, and kept until the wanted size, the picture or the
// options change. Without a picture the engine gets the program's own, tiled, which is transparent.
class ImageInput : public ImageSource
{
public:
    using SharedSurface = QSharedPointer<Orn::Surfaces::Surface>;

    // Null: no picture.
    void setSource(const SharedSurface& source);
    void setOptions(const ImageOptions& options);

    // Uncropped.
    const SharedSurface& source() const { return m_source; }
    const ImageOptions& options() const { return m_options; }

    const VellorTexture* prepare(quint32 width, quint32 height) override;

private:
    void drop();

    SharedSurface m_source;
    ImageOptions m_options;
    SharedSurface m_prepared;
    SharedSurface m_holder; // of the texture's pixels
    VellorTexture m_texture = {};
    QSize m_preparedFor; // invalid: nothing is prepared
};

// The size of the canvas for a picture and a wanted size. Where it would be beyond what an engine takes, the
// picture's own.
QSize canvasSize(const QSize& source, const QSize& wanted, quint32 flags);

// What the cropping leaves of a picture: itself when left or top is not set; null when nothing is left.
QSharedPointer<Orn::Surfaces::Surface> croppedImage(const QSharedPointer<Orn::Surfaces::Surface>& source,
                                                    const ImageOptions& options);

} // namespace Zph::Applications::Player
