#include "platform/nodes/kinds.h"

namespace vellor::nodes {

const std::vector<const NodeDeclaration*>& allNodes()
{
    static const std::vector<const NodeDeclaration*> nodes{
        &blendNode,
        &brickNode,
        &cellularNode,
        &channelmergeNode,
        &channelsplitNode,
        &checkerNode,
        &colourconversionNode,
        &contrastNode,
        &curveNode,
        &gaussianblurNode,
        &gradientmapNode,
        &greyconversionNode,
        &heightblendNode,
        &histogramrangeNode,
        &hslNode,
        &invertNode,
        &levelsNode,
        &lineargradientNode,
        &normalNode,
        &perlinNode,
        &posteriseNode,
        &radialgradientNode,
        &shapeNode,
        &switchNode,
        &thresholdNode,
        &tileNode,
        &uniformNode,
        &weaveNode,
        &whitenoiseNode,
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
