#pragma once

// Puts the graphs of a package into one program: graphs within graphs are laid out where they are used, names
// become indexes, and everything is looked at for errors.

#include "platform/cooker/nodecompiler.h"

namespace vellor::cooker {

struct FlatPackage
{
    struct Graph
    {
        const GraphSource* source = nullptr;
        std::string url;                                                 // "pkg://identifier"
        std::vector<std::pair<const InputSource*, std::int32_t>> inputs; // with their indexes in the program
        std::vector<std::pair<const OutputSource*, std::int32_t>> outputs;
    };
    program::Program program;
    std::vector<Graph> graphs;
};

/// The program of a package. When diagnostics has errors afterwards, the result is good for nothing.
FlatPackage flatten(const Sources& sources, const PackageSource& package, const NodeTable& table,
                    const CookOptions& options, Diagnostics& diagnostics);

} // namespace vellor::cooker
