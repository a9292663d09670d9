#include "orncommon/module/struct.h"

#include <algorithm>

namespace Orn::Module {

Struct::Struct(std::shared_ptr<const StructDesc> desc) : m_desc(std::move(desc))
{
    for (const auto& member : m_desc->members())
        m_members.emplace_back(member, std::make_shared<Value>(Value::createData(member->type)));
}

Struct::Struct(const Struct& other) : m_desc(other.m_desc)
{
    for (const auto& [member, value] : other.m_members)
        m_members.emplace_back(member, std::make_shared<Value>(*value));
}

Struct& Struct::operator=(Struct other) noexcept
{
    m_desc.swap(other.m_desc);
    m_members.swap(other.m_members);
    return *this;
}

const Value* Struct::member(const std::string& name) const
{
    for (const auto& [member, value] : m_members)
        if (member->name == name)
            return value.get();
    return nullptr;
}

bool Struct::setMember(const std::string& name, const Value& value)
{
    for (auto& [member, current] : m_members) {
        if (member->name != name || member->type != value.type())
            continue;
        *current = value;
        return true;
    }
    return false;
}

bool operator==(const Struct& a, const Struct& b)
{
    return *a.m_desc == *b.m_desc &&
           std::equal(a.m_members.begin(), a.m_members.end(), b.m_members.begin(), b.m_members.end(),
                      [](const auto& left, const auto& right) { return *left.second == *right.second; });
}

} // namespace Orn::Module
