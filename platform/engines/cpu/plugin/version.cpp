#include "platform/engines/cpu/entrypoints.h"
#include "platform/program/program.h"

#include <vellor/engine.h>

namespace {

/// Equals the entry for this engine in the linker's list: programs of another form don't reach it.
constexpr std::uint32_t kLinkerCompatibility = 1;

} // namespace

extern "C" void vellorGetCurrentVersionImpl(VellorVersion* version, uint32_t apiVersion)
{
    if (!version)
        return;
    *version = VellorVersion();
    version->engineId = VELLOR_ENGINE_SSE2;
    version->name = "Vellor CPU Engine";
    version->versionMajor = VELLOR_ENGINE_MAJOR;
    version->versionMinor = VELLOR_ENGINE_MINOR;
    version->versionPatch = VELLOR_ENGINE_PATCH;
    version->label = "";
    version->build = VELLOR_ENGINE_BUILD;
    version->buildHash = vellor::program::stableId(VELLOR_ENGINE_BUILD);
    version->status = vellor::cpu::serves(apiVersion) ? 0 : VELLOR_ERROR_API_VERSION;
    version->interfaceRevision = VELLOR_API_VERSION;
    version->linkerCompatibility = kLinkerCompatibility;
}
