#pragma once

#include "applications/player/description/packagemodel.h"

namespace vellor::tool {

/// What command lines call an input or an output: its identifier, or "uid:7" where nothing describes it.
QString idOf(const Zph::Applications::Player::PackageInput& input);
QString idOf(const Zph::Applications::Player::PackageOutput& output);

/// "bricks/basecolor".
QString pathOf(const Zph::Applications::Player::PackageOutput& output);
/// The same for anything else of a graph.
QString pathOf(const QString& graphKey, const QString& name);

} // namespace vellor::tool
