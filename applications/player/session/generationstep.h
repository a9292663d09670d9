#pragma once

#include "applications/player/session/valueorsurfaceplayer.h"

#include <vector>

namespace Zph::Applications::Player {

class Cache;
class Engine;
class GenerationHost;

/// One turn of the program's heart: finds out which outputs somebody wants that the cache doesn't hold, tells
/// the engine what changed, and starts it. An output asked for holds a placeholder in the cache until its
/// result comes, so that it is not asked for twice. Main thread; when the engine is not asynchronous, the
/// results have come when run() returns.
class GenerationStep
{
public:
    struct Report
    {
        /// The outputs that were pushed, in ascending order; empty if there was nothing to do.
        std::vector<quint32> uids;
        bool outputsPushed = true;
        bool hintsPushed = true;
    };

    GenerationStep();

    /// What the cache holds for an output that is being computed: always this one surface.
    const ValueOrSurfacePlayer& placeholder() const { return m_placeholder; }

    /// Does nothing without an engine or its handle. What the engine refuses is logged, and the step goes on.
    Report run(Engine* engine, Cache& cache, GenerationHost& host);

private:
    static std::vector<quint32> missingOutputs(const Cache& cache, GenerationHost& host);
    static bool pushHints(Engine& engine, const std::vector<quint32>& uids, GenerationHost& host);

    ValueOrSurfacePlayer m_placeholder;
};

} // namespace Zph::Applications::Player
