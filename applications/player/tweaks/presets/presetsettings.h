#pragma once

#include "orncommon/core/settingkey.h"

#include <QString>

// The settings of presets.
namespace Zph::Applications::Player::PresetSettings {

// Folders of the last preset file and of the last attribute preset.
inline const Orn::Core::SettingKey<QString> presetsPath{"session/presetsPath", {}};
inline const Orn::Core::SettingKey<QString> mayaExportPath{"session/mayaExportPath", {}};

} // namespace Zph::Applications::Player::PresetSettings
