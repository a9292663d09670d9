#pragma once

#include "platform/cooker/package.h"

#include <memory>

namespace vellor::cooker {

/// Reads one authoring file of sources. What is wrong goes to diagnostics; what could be read is there all
/// the same, so that the later stages find the rest of the errors. Null when the file is no authoring file at
/// all.
std::unique_ptr<PackageSource> readPackage(const Sources& sources, std::int32_t file,
                                           Diagnostics& diagnostics);

} // namespace vellor::cooker
