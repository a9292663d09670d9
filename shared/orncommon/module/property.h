#pragma once

#include "orncommon/module/value.h"

namespace Orn::Module {

/// A named slot that holds a value.
class Property
{
public:
    virtual ~Property() = default;

    virtual const std::string& name() const = 0;

    const Value& value() const { return m_value; }
    void setValue(const Value& value) { m_value = value; }

protected:
    Property() = default;
    explicit Property(Value value) : m_value(std::move(value)) {}

private:
    Value m_value;
};

} // namespace Orn::Module
