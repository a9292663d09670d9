#pragma once

#include <QString>

namespace Orn::Image::Codec {

/// A file format as a dialog lists it: one extension, lower case and without the dot.
struct ImageFormat
{
    QString description;
    QString extension;

    friend bool operator==(ImageFormat const& a, ImageFormat const& b)
    {
        return a.description == b.description && a.extension == b.extension;
    }
};

} // namespace Orn::Image::Codec
