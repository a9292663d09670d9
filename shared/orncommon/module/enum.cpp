#include "orncommon/module/enum.h"

namespace Orn::Module {

Enum::Enum(std::shared_ptr<const EnumDesc> desc)
    : m_desc(std::move(desc)), m_value(m_desc->items().empty() ? 0 : m_desc->items().front().value)
{
}

bool operator==(const Enum& a, const Enum& b)
{
    return a.value() == b.value() && *a.desc() == *b.desc();
}

} // namespace Orn::Module
