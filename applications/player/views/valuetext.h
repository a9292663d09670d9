#pragma once

#include "orncommon/module/value.h"

#include <QString>

namespace Zph::Applications::Player {

/// A number of an output as text: one line for each component, six significant digits. With `isBoolean` each
/// component reads 0 or 1. Empty for a type that no output has.
QString valueText(const Orn::Module::Value::Data& value, bool isBoolean);

} // namespace Zph::Applications::Player
