#pragma once

#include "orncommon/gui3d/valueconverter.h"

#include <memory>
#include <vector>

namespace Orn::Gui3D {

/// The converters of a 3D context, asked in the order of their registration. Set up once, then only read.
class ValueConverterMgr
{
public:
    void addConverter(std::unique_ptr<const ValueConverter> converter);

    /// The first valid result; invalid if no converter has one.
    Module::Value convert(const Module::Value& value, const Module::Type& wanted) const;

private:
    std::vector<std::unique_ptr<const ValueConverter>> m_converters;
};

} // namespace Orn::Gui3D
