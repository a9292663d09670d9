#pragma once

// A compiled package as the engine sees it: the program, the kind of each node, and what can be known of
// values and blobs ahead of any input. Read-only once it is made; lives as long as its handle.

#include "platform/engines/cpu/hash.h"
#include "platform/nodes/node.h"
#include "platform/program/program.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

namespace vellor::cpu {

/// Finds a node kind by its id; null for one that isn't known.
using KindLookup = std::function<const nodes::NodeDeclaration*(std::uint32_t id)>;

class Package
{
public:
    /// Takes a checked program. Null when it has nodes of unknown kinds, or nodes that don't keep their
    /// declaration: more operands than declared, a required one missing, channels or parameter sources that
    /// don't fit.
    static std::unique_ptr<Package> make(program::Program program, const KindLookup& lookup);

    const program::Program& program() const { return program_; }
    const nodes::NodeDeclaration& kind(int node) const { return *kinds_[node]; }
    /// Inputs that a value program reads, ascending.
    const std::vector<std::uint32_t>& inputsOf(int value) const { return valueInputs_[value]; }
    /// Names of contents.
    const Key& keyOfValue(int value) const { return valueKeys_[value]; }
    const Key& keyOfBlob(int blob) const { return blobKeys_[blob]; }
    /// Index of the output with this uid, or -1.
    int outputWithUid(std::uint32_t uid) const;

private:
    Package() = default;
    bool resolveKinds(const KindLookup& lookup);
    bool fits(const program::Node& node, const nodes::NodeDeclaration& kind) const;
    bool parametersFit(const program::Node& node, const nodes::NodeDeclaration& kind) const;
    void describeContents();

    program::Program program_;
    std::vector<const nodes::NodeDeclaration*> kinds_;
    std::vector<std::vector<std::uint32_t>> valueInputs_;
    std::vector<Key> valueKeys_, blobKeys_;
    std::unordered_map<std::uint32_t, int> outputs_;
};

} // namespace vellor::cpu
