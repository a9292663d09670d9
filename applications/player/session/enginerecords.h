#pragma once

#include <vellor/engine.h>

#include <vector>

namespace Zph::Applications::Player {

/// What an engine says of a package: one record for each input and each output, by index.
struct EngineRecords
{
    std::vector<VellorInputDesc> inputs; ///< default pointers live as long as the handle
    std::vector<VellorOutputDesc> outputs;
};

/// Asks the engine. A record that it doesn't give ends its list. Main thread.
EngineRecords readEngineRecords(VellorHandle* handle);

} // namespace Zph::Applications::Player
