#pragma once

#include "platform/nodes/node.h"

#include <map>
#include <string>
#include <vector>

namespace vellor::cooker {

using NodeTable = std::vector<const nodes::NodeDeclaration*>;

struct CookOptions
{
    /// Folders that includes may name by alias: "noise" for noise://file.vlr.
    std::map<std::string, std::string> aliases;
    /// What stays an input where a graph declares it; otherwise it is fixed at its default.
    bool dynamicOutputSize = true, dynamicRandomSeed = true, dynamicPixelSize = true;
    /// Base-2 logarithm of the largest width and height of a picture.
    int sizeLimit = 14;
};

} // namespace vellor::cooker
