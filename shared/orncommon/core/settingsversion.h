#pragma once

#include "orncommon/core/settingkey.h"

namespace Orn::Core {

/// The version of the program that wrote the store.
inline const SettingKey<QString> settingsVersion{"version", {}};

/// Empties a store that another version wrote (patches count) or that says no version, and writes the current
/// one into it. This is all the migration there is. True if the store was emptied.
bool wipeIfOtherVersion(ISettings& settings);

} // namespace Orn::Core
