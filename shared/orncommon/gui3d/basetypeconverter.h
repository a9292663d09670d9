#pragma once

#include "orncommon/gui3d/valueconverter.h"

namespace Orn::Gui3D {

/// Converts among booleans, ints, floats, doubles, their arrays, and colours; unsigned integers take no part.
///
/// A scalar goes into every component of an array. A longer array is filled up with zeros, a shorter one
/// drops what is too much, a scalar takes the first component, but for arrays of booleans, whose scalar
/// boolean is true when any of them is. Colours count as arrays of floats, where an alpha that is gained is
/// 1. Everything but zero is true, a NaN too. A number that fits no int becomes the nearest that does, a NaN
/// 0. A value that has the wanted type already is copied, whatever that is.
class BaseTypeConverter : public ValueConverter
{
public:
    Module::Value convert(const Module::Value& value, const Module::Type& wanted) const override;
};

} // namespace Orn::Gui3D
