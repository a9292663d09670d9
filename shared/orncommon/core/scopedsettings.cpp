#include "orncommon/core/scopedsettings.h"

#include <QSettings>

namespace Orn::Core {

ScopedSettingsBeginGroup::ScopedSettingsBeginGroup(const QSharedPointer<ISettings>& settings,
                                                   const QString& group)
    : m_settings(settings)
{
    m_settings->beginGroup(group);
}

ScopedSettingsBeginGroup::ScopedSettingsBeginGroup(QSettings& settings, const QString& group)
    : m_qtSettings(&settings)
{
    m_qtSettings->beginGroup(group);
}

ScopedSettingsBeginGroup::~ScopedSettingsBeginGroup()
{
    if (m_settings)
        m_settings->endGroup();
    else
        m_qtSettings->endGroup();
}

ScopedSettingsBeginWriteArray::ScopedSettingsBeginWriteArray(const QSharedPointer<ISettings>& settings,
                                                             const QString& array)
    : m_settings(settings)
{
    m_settings->beginWriteArray(array, -1);
}

ScopedSettingsBeginWriteArray::ScopedSettingsBeginWriteArray(QSettings& settings, const QString& array)
    : m_qtSettings(&settings)
{
    m_qtSettings->beginWriteArray(array, -1);
}

ScopedSettingsBeginWriteArray::~ScopedSettingsBeginWriteArray()
{
    if (m_settings)
        m_settings->endArray();
    else
        m_qtSettings->endArray();
}

} // namespace Orn::Core
