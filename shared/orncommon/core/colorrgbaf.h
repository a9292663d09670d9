#pragma once

#include <QMetaType>

namespace Orn::Core {

/// A colour of four floats, alpha not multiplied in. Colours on a screen lie in 0 to 1; values beyond that
/// are legal and kept.
struct ColorRGBAf
{
    float r = 0.0F;
    float g = 0.0F;
    float b = 0.0F;
    float a = 1.0F;

    friend bool operator==(const ColorRGBAf& x, const ColorRGBAf& y)
    {
        return x.r == y.r && x.g == y.g && x.b == y.b && x.a == y.a;
    }
    friend bool operator!=(const ColorRGBAf& x, const ColorRGBAf& y) { return !(x == y); }
};

} // namespace Orn::Core

Q_DECLARE_METATYPE(Orn::Core::ColorRGBAf)
