#pragma once

namespace Orn::Resources {

/// Registers the resources that are compiled into the program: icons and pictures. A static library's
/// resources need the call; a second one does nothing.
void initResources();

} // namespace Orn::Resources
