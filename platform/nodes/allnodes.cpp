#include "platform/nodes/kinds.h"

namespace vellor::nodes {

const std::vector<const NodeDeclaration*>& allNodes()
{
    static const std::vector<const NodeDeclaration*> nodes{
#define VELLOR_KIND(kind) &kind##Node,
#include "platform/nodes/kindlist.inc"
#undef VELLOR_KIND
    };
    return nodes;
}

const NodeDeclaration* findNode(std::string_view name)
{
    for (const NodeDeclaration* node : allNodes())
        if (name == node->name)
            return node;
    return nullptr;
}

const NodeDeclaration* findNode(std::uint32_t id)
{
    for (const NodeDeclaration* node : allNodes())
        if (id == node->id())
            return node;
    return nullptr;
}

} // namespace vellor::nodes
