#pragma once

#include "platform/engines/cpu/hash.h"
#include "platform/engines/cpu/hostimage.h"
#include "platform/engines/cpu/image.h"
#include "platform/nodes/node.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace vellor::cpu {

constexpr int kNoNode = -1;

/// One picture of a generation: a node of the package with everything settled, or one of the engine's own in
/// between (resampleKind, pictureKind, packKind).
struct PlanNode
{
    const nodes::NodeDeclaration* kind = nullptr;
    int origin = kNoNode;                    // node of the package; kNoNode for one of the engine's own.
                                             // Of packKind: the one whose result is packed
    int width = 1, height = 1, channels = 1; // of the result
    std::int32_t seed = 0;
    std::vector<nodes::ParameterValue> parameters; // by the kind's declaration
    std::vector<int> operands; // earlier nodes of the plan or kNoNode, by the kind's declaration;
                               // of this node's size, but for resampleKind
    int picture = kNoNode;     // node of the plan that unpacks the image input
    std::shared_ptr<const HostImage> source; // pictureKind, pictureRowKind
    bool packs = false;                      // packKind: the result is its operand's pixels in this format
    std::uint8_t format = 0;
    Key key;              // names the result
    bool compute = false; // wanted, and not kept from before
    bool keep = false;    // worth a whole picture of its own, for generations to come

    bool isPoint() const { return kind->row || packs; }
    ImageShape shape() const { return {width, height, channels, packs, format}; }
};

/// What one generation computes. Nodes come in dependency order; those that nobody wants computed have
/// `compute` unset. Refers to the package that it was made from.
struct Plan
{
    std::vector<PlanNode> nodes;
    std::vector<int> roots; // nodes of the wanted image outputs, as they were asked for
    std::vector<std::uint32_t> inputWords;
    std::deque<std::u32string> texts; // what ParameterValue::text refers to
    std::vector<std::shared_ptr<const std::u32string>> inputTexts;
};

} // namespace vellor::cpu
