#pragma once

#include "orncommon/core/settingkey.h"

#include <QString>

/// The settings of documents and of cooking.
namespace Zph::Applications::Player::SessionSettings {

using Orn::Core::SettingKey;

/// Folder of the last file that was opened.
inline const SettingKey<QString> openFilePath{"session/openFilePath", {}};
/// Absolute paths, the latest first, with "?" between them.
inline const SettingKey<QString> recentFiles{"session/openFileMRU", {}};
/// Base-2 logarithm of the largest width and height that cooking makes; 0 for no limit.
inline const SettingKey<int> sizeLimit{"session/sizeLimit", 0};
/// What stays an input of a cooked package: bit 0 output size, bit 1 pixel size, bit 2 random seed.
inline const SettingKey<int> dynCommonState{"session/dynCommonState", 5};
/// Folder of the authoring application.
inline const SettingKey<QString> studioPath{"preferences/studioPath", {}};

} // namespace Zph::Applications::Player::SessionSettings
