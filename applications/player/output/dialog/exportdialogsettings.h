#pragma once

#include "orncommon/core/settingkey.h"

/// The settings of the export dialog.
namespace Zph::Applications::Player::ExportDialogSettings {

/// Where the last export went.
inline const Orn::Core::SettingKey<QString> rendersPath{"session/rendersPath", {}};

} // namespace Zph::Applications::Player::ExportDialogSettings
