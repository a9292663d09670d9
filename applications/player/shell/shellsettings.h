#pragma once

#include "orncommon/core/settingkey.h"

#include <QByteArray>
#include <QPoint>
#include <QSize>

/// The settings of the window.
namespace Zph::Applications::Player::ShellSettings {

inline const Orn::Core::SettingKey<QPoint> position{"session/mainWindow/position", {}};
/// With the window manager's frame.
inline const Orn::Core::SettingKey<QSize> size{"session/mainWindow/size", {}};
/// What the frame adds to the window.
inline const Orn::Core::SettingKey<QSize> frame{"session/mainWindow/frame", {0, 0}};
/// Qt::WindowStates.
inline const Orn::Core::SettingKey<int> state{"session/mainWindow/state", 2};
inline const Orn::Core::SettingKey<QByteArray> layout{"session/mainWindow/layout", {}};
inline const Orn::Core::SettingKey<QByteArray> defaultLayout{"session/mainWindow/defaultlayout", {}};

} // namespace Zph::Applications::Player::ShellSettings
