#include "orncommon/module/structdesc.h"

#include <algorithm>

namespace Orn::Module {

StructDesc::StructDesc(std::string name, const std::vector<Member>& members) : CompoundDesc(std::move(name))
{
    for (const Member& member : members)
        m_members.push_back(std::make_shared<const Member>(member));
}

bool operator==(const StructDesc& a, const StructDesc& b)
{
    return a.name() == b.name() && std::equal(a.members().begin(), a.members().end(), b.members().begin(),
                                              b.members().end(), [](const auto& left, const auto& right) {
                                                  return left->name == right->name &&
                                                         left->type == right->type;
                                              });
}

} // namespace Orn::Module
