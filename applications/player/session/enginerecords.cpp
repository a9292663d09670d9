#include "enginerecords.h"

#include "common/engine/backend.h"

namespace Zph::Applications::Player {

EngineRecords readEngineRecords(VellorHandle* handle)
{
    EngineRecords records;
    VellorDataDesc desc = {};
    if (!handle || Zph::Engine::handleGetDesc(handle, &desc) != 0)
        return records;
    VellorInputDesc input = {};
    for (uint32_t i = 0; i < desc.inputsCount && Zph::Engine::handleGetInputDesc(handle, i, &input) == 0; ++i)
        records.inputs.push_back(input);
    VellorOutputDesc output = {};
    for (uint32_t i = 0; i < desc.outputsCount && Zph::Engine::handleGetOutputDesc(handle, i, &output) == 0;
         ++i)
        records.outputs.push_back(output);
    return records;
}

} // namespace Zph::Applications::Player
