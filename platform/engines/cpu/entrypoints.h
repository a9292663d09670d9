#pragma once

#include "platform/engines/cpu/context.h"
#include "platform/engines/cpu/resources.h"

namespace vellor::cpu {

/// Whether the engine works with a host of this API version.
bool serves(std::uint32_t apiVersion);

/// What vellorHandleInit does once it has a checked program. Throws std::bad_alloc.
std::uint32_t makeHandle(VellorHandle** handle, VellorContext& context, program::Program program,
                         const Resources& resources);

} // namespace vellor::cpu
