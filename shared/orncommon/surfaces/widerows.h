#pragma once

#include "orncommon/surfaces/pixelrows.h"

namespace Orn::Surfaces {

/// The direct way between two formats by vector instructions that this processor has and compilers don't find
/// by themselves; null where there is none. The values are those of the plain way, to the last bit.
DirectRow wideRow(PixelFormat from, PixelFormat to);

} // namespace Orn::Surfaces
