#pragma once

#include "orncommon/module/compounddesc.h"
#include "orncommon/module/type.h"

#include <vector>

namespace Orn::Module {

/// The members of a structure, in order.
class StructDesc : public CompoundDesc
{
public:
    struct Member
    {
        std::string name;
        Type type;
    };

    StructDesc(std::string name, const std::vector<Member>& members);

    /// Never null; shared with the structures made from this.
    const std::vector<std::shared_ptr<const Member>>& members() const { return m_members; }

private:
    std::vector<std::shared_ptr<const Member>> m_members;
};

bool operator==(const StructDesc& a, const StructDesc& b);

} // namespace Orn::Module
