#pragma once

#include <QtGlobal>

#include <list>
#include <set>

namespace Zph::Applications::Player {

class InputSink;

/// What the generation step asks of the window, or of the command line, that runs it. Called on the main
/// thread, in the order of the declarations.
class GenerationHost
{
public:
    virtual ~GenerationHost() = default;

    /// Adds the uids that the unfrozen viewers show. Those in the cache cost nothing.
    virtual void wantedOutputs(std::set<quint32>& uids) = 0;
    /// Adds the uids that must be computed whether or not the cache has them, for an export.
    virtual void requiredOutputs(std::set<quint32>& uids) = 0;
    /// Enables or stops the timeline by whether an input depends on time. Comes with every step, work or
    /// none.
    virtual void updateTimeline() = 0;
    /// Each input that changed pushes itself, and is unchanged from then on.
    virtual void pushInputs(InputSink& engine) = 0;
    /// Adds the indexes of the inputs that the user pinned as cache hints.
    virtual void pinnedInputs(std::list<std::size_t>& indexes) = 0;
    /// The engine is about to start on so many outputs.
    virtual void generationStarts(std::size_t outputs) = 0;
};

} // namespace Zph::Applications::Player
