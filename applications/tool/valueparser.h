#pragma once

#include "applications/player/description/inputdetails.h"

namespace vellor::tool {

/// Reads the value of a numeric input from text and checks it against the input's type, its choices and,
/// where the range binds, its range. Throws UsageError that says what was expected.
Zph::Applications::Player::InputValue
parseValue(quint32 type, const Zph::Applications::Player::InputDetails& details, const QString& text);

/// The base-2 logarithms of a size: "1024" or "1024x512". Throws UsageError.
Zph::Applications::Player::InputValue parseSize(const QString& text);

} // namespace vellor::tool
