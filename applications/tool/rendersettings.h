#pragma once

#include "applications/player/metadata/exportplan.h"
#include "applications/tool/options.h"

namespace vellor::tool {

/// What `vellor render` does with the pictures.
struct RenderSettings
{
    Zph::Applications::Player::ExportChoices files;
    bool wantsHashes = false;
    // Threads that encode files while the next outputs are generated; 0: the engine's, between them.
    std::size_t encoders = 1;
};

/// The options that readRenderSettings() reads.
const std::vector<Option>& renderOptions();

/// The codecs are registered before. Throws UsageError.
RenderSettings readRenderSettings(const Arguments& arguments);

} // namespace vellor::tool
