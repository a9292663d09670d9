#pragma once

#include "orncommon/module/value.h"

namespace Orn::Gui3D {

/// One way of turning values of some types into values of others. Immutable; any thread.
class ValueConverter
{
public:
    virtual ~ValueConverter() = default;

    /// The invalid value where this converter has no way to the wanted type.
    virtual Module::Value convert(const Module::Value& value, const Module::Type& wanted) const = 0;
};

} // namespace Orn::Gui3D
