#include "platform/nodes/kinds.h"

namespace vellor::nodes {

const std::vector<const NodeDeclaration*>& allNodes()
{
    static const std::vector<const NodeDeclaration*> nodes{
        &blendNode,  &brickNode,  &colourconversionNode, &gaussianblurNode, &greyconversionNode,
        &invertNode, &levelsNode, &normalNode,           &perlinNode,       &uniformNode,
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
