#pragma once

#include "orncommon/module/structdesc.h"
#include "orncommon/module/value.h"

namespace Orn::Module {

/// One value for each member of a structure. Copying clones the values.
class Struct
{
public:
    /// All members at the defaults of their types. The descriptor must not be null.
    explicit Struct(std::shared_ptr<const StructDesc> desc);
    Struct(const Struct& other);
    Struct(Struct&& other) noexcept = default;
    Struct& operator=(Struct other) noexcept;
    ~Struct() = default;

    const std::shared_ptr<const StructDesc>& desc() const { return m_desc; }
    /// Null if there is no such member.
    const Value* member(const std::string& name) const;
    /// False, and nothing changes, if there is no such member or it has another type.
    bool setMember(const std::string& name, const Value& value);

    friend bool operator==(const Struct& a, const Struct& b);

private:
    using Member = std::pair<std::shared_ptr<const StructDesc::Member>, std::shared_ptr<Value>>;

    std::shared_ptr<const StructDesc> m_desc;
    std::vector<Member> m_members;
};

} // namespace Orn::Module
