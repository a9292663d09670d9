#pragma once

#include "orncommon/core/isettings.h"

#include <QSharedPointer>

class QSettings;

namespace Orn::Core {

/// Opens a group for its own lifetime, and keeps the store alive meanwhile.
class ScopedSettingsBeginGroup
{
public:
    ScopedSettingsBeginGroup(const QSharedPointer<ISettings>& settings, const QString& group);
    /// The store must outlive this object.
    ScopedSettingsBeginGroup(QSettings& settings, const QString& group);
    ~ScopedSettingsBeginGroup();
    ScopedSettingsBeginGroup(const ScopedSettingsBeginGroup&) = delete;
    ScopedSettingsBeginGroup& operator=(const ScopedSettingsBeginGroup&) = delete;

private:
    QSharedPointer<ISettings> m_settings;
    QSettings* m_qtSettings = nullptr;
};

/// Writes an array for its own lifetime; its size is what the highest index written says.
class ScopedSettingsBeginWriteArray
{
public:
    ScopedSettingsBeginWriteArray(const QSharedPointer<ISettings>& settings, const QString& array);
    /// The store must outlive this object.
    ScopedSettingsBeginWriteArray(QSettings& settings, const QString& array);
    ~ScopedSettingsBeginWriteArray();
    ScopedSettingsBeginWriteArray(const ScopedSettingsBeginWriteArray&) = delete;
    ScopedSettingsBeginWriteArray& operator=(const ScopedSettingsBeginWriteArray&) = delete;

private:
    QSharedPointer<ISettings> m_settings;
    QSettings* m_qtSettings = nullptr;
};

} // namespace Orn::Core
