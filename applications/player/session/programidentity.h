#pragma once

namespace Zph::Applications::Player {

/// Organisation, name and version, which settings and the user's folders depend on: the same for the window
/// and the command line. Ahead of the first use of the settings. Main thread.
void setProgramIdentity();

} // namespace Zph::Applications::Player
