#pragma once

#include <QIODevice>

namespace Orn::Image::Codec {

/// Whether the chunks of an MNG or JNG file are all there, up to the one called `last`. FreeImage's reader
/// allocates what a chunk states, and goes on for ever where the last one is missing. Moves the device.
bool areMngChunksWhole(QIODevice& device, char const* last);

} // namespace Orn::Image::Codec
