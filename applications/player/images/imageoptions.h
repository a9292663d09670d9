#pragma once

#include <QColor>

namespace Zph::Applications::Player {

// How a picture fits the place where an engine wants it.
struct ImageOptions
{
    // Bits 0 and 1 of `flags`. Nothing here interpolates: the engine scales what it gets.
    enum Mode : quint32
    {
        Stretch = 0,   // the picture as it is
        Exact = 1,     // a canvas of exactly the wanted size
        KeepAspect = 2 // the picture's size grown to the wanted proportions
    };
    enum : quint32
    {
        ModeMask = 3,
        Mosaic = 4 // the canvas is tiled with the picture, rather than padded
    };

    int cropLeft = -1; // in pixels of the picture; below 0: not set, and then nothing is cut off
    int cropTop = -1;
    int cropRight = -1;
    int cropBottom = -1;
    quint32 flags = Stretch;
    QColor paddingColor = QColor(0, 0, 0, 0);
};

inline bool operator==(const ImageOptions& a, const ImageOptions& b)
{
    return a.cropLeft == b.cropLeft && a.cropTop == b.cropTop && a.cropRight == b.cropRight &&
           a.cropBottom == b.cropBottom && a.flags == b.flags && a.paddingColor == b.paddingColor;
}
inline bool operator!=(const ImageOptions& a, const ImageOptions& b)
{
    return !(a == b);
}

} // namespace Zph::Applications::Player
