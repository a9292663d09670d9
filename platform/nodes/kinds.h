#pragma once

// The declarations of this folder, one for each file of a kind. allnodes.cpp puts them into one list.

#include "platform/nodes/node.h"

namespace vellor::nodes {

extern const NodeDeclaration ambientocclusionNode;
extern const NodeDeclaration blendNode;
extern const NodeDeclaration brickNode;
extern const NodeDeclaration cellularNode;
extern const NodeDeclaration channelmergeNode;
extern const NodeDeclaration channelsplitNode;
extern const NodeDeclaration checkerNode;
extern const NodeDeclaration colourconversionNode;
extern const NodeDeclaration contrastNode;
extern const NodeDeclaration curvatureNode;
extern const NodeDeclaration curveNode;
extern const NodeDeclaration directionalblurNode;
extern const NodeDeclaration distanceNode;
extern const NodeDeclaration gaussianblurNode;
extern const NodeDeclaration gradientmapNode;
extern const NodeDeclaration greyconversionNode;
extern const NodeDeclaration heightblendNode;
extern const NodeDeclaration histogramrangeNode;
extern const NodeDeclaration hslNode;
extern const NodeDeclaration imageinputNode;
extern const NodeDeclaration invertNode;
extern const NodeDeclaration levelsNode;
extern const NodeDeclaration lineargradientNode;
extern const NodeDeclaration normalNode;
extern const NodeDeclaration perlinNode;
extern const NodeDeclaration pixelprogramNode;
extern const NodeDeclaration posteriseNode;
extern const NodeDeclaration radialgradientNode;
extern const NodeDeclaration shapeNode;
extern const NodeDeclaration switchNode;
extern const NodeDeclaration textNode;
extern const NodeDeclaration thresholdNode;
extern const NodeDeclaration tileNode;
extern const NodeDeclaration transformNode;
extern const NodeDeclaration uniformNode;
extern const NodeDeclaration vectorwarpNode;
extern const NodeDeclaration warpNode;
extern const NodeDeclaration weaveNode;
extern const NodeDeclaration whitenoiseNode;

} // namespace vellor::nodes
