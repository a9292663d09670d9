#pragma once

#include "applications/player/description/inputvalue.h"
#include "applications/player/session/valueorsurfaceplayer.h"

#include <vellor/engine.h>

namespace Zph::Applications::Player {

/// Fetches a finished output, a number or a picture by its type, from inside the output-complete callback.
/// The result is VELLOR_OK, the engine's code, or VELLOR_ERROR_TYPE for a type that can't be fetched; then
/// `result` stays.
quint32 fetchOutput(VellorHandle* handle, quint32 index, ValueOrSurfacePlayer& result);

/// The components of a fetched number, in as many words as its type has; the others are 0.
InputValue componentsOf(const ValueOrSurfacePlayer::ValueData& number);

} // namespace Zph::Applications::Player
