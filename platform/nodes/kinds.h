#pragma once

// The declarations of this folder, one for each file of a kind. allnodes.cpp puts them into one list.

#include "platform/nodes/node.h"

namespace vellor::nodes {

extern const NodeDeclaration blendNode;
extern const NodeDeclaration brickNode;
extern const NodeDeclaration colourconversionNode;
extern const NodeDeclaration gaussianblurNode;
extern const NodeDeclaration greyconversionNode;
extern const NodeDeclaration invertNode;
extern const NodeDeclaration levelsNode;
extern const NodeDeclaration normalNode;
extern const NodeDeclaration perlinNode;
extern const NodeDeclaration uniformNode;

} // namespace vellor::nodes
