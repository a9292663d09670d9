#include "platform/nodes/kinds.h"

namespace vellor::nodes {

const std::vector<const NodeDeclaration*>& allNodes()
{
    static const std::vector<const NodeDeclaration*> nodes{
        &ambientocclusionNode,
        &blendNode,
        &brickNode,
        &cellularNode,
        &channelmergeNode,
        &channelsplitNode,
        &checkerNode,
        &colourconversionNode,
        &contrastNode,
        &curvatureNode,
        &curveNode,
        &directionalblurNode,
        &distanceNode,
        &gaussianblurNode,
        &gradientmapNode,
        &greyconversionNode,
        &heightblendNode,
        &histogramrangeNode,
        &hslNode,
        &imageinputNode,
        &invertNode,
        &levelsNode,
        &lineargradientNode,
        &normalNode,
        &perlinNode,
        &pixelprogramNode,
        &posteriseNode,
        &radialgradientNode,
        &shapeNode,
        &switchNode,
        &textNode,
        &thresholdNode,
        &tileNode,
        &transformNode,
        &uniformNode,
        &vectorwarpNode,
        &warpNode,
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
