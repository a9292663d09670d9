#pragma once

#include "orncommon/core/settingkey.h"

/// The settings of the views.
namespace Zph::Applications::Player::ViewSettings {

inline const Orn::Core::SettingKey<QString> saveImagePath{"session/view2d/saveImagePath", {}};
inline const Orn::Core::SettingKey<QString> saveImageFilter{
    "session/view2d/saveImageFilter", QStringLiteral("Truevision Targa (*.tga *.targa)")};

} // namespace Zph::Applications::Player::ViewSettings
