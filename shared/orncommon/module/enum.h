#pragma once

#include "orncommon/module/enumdesc.h"

#include <memory>

namespace Orn::Module {

/// The current item of an enumeration.
class Enum
{
public:
    /// The first item; 0 if there is none. The descriptor must not be null.
    explicit Enum(std::shared_ptr<const EnumDesc> desc);
    Enum(std::shared_ptr<const EnumDesc> desc, int value) : m_desc(std::move(desc)), m_value(value) {}

    const std::shared_ptr<const EnumDesc>& desc() const { return m_desc; }
    int value() const { return m_value; }

private:
    std::shared_ptr<const EnumDesc> m_desc;
    int m_value;
};

bool operator==(const Enum& a, const Enum& b);

} // namespace Orn::Module
