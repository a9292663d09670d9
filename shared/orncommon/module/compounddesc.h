#pragma once

#include <string>
#include <utility>

namespace Orn::Module {

/// What the description of an enumeration, a structure and a matrix have in common. Shared, immutable.
class CompoundDesc
{
public:
    explicit CompoundDesc(std::string name) : m_name(std::move(name)) {}
    virtual ~CompoundDesc() = default;

    const std::string& name() const { return m_name; }

private:
    std::string m_name;
};

} // namespace Orn::Module
