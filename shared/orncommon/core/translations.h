#pragma once

#include "orncommon/core/settingkey.h"

#include <QList>
#include <QLocale>
#include <QStringList>

class QTranslator;

namespace Orn::Core {

/// The language the user chose, as a locale name; empty means the system's.
inline const SettingKey<QString> languageSetting{"preferences/general/language", {}};
/// What the installer wrote: a Windows language identifier.
inline const SettingKey<uint> installLanguageSetting{"install/language", 0};

/// If the user has chosen no language yet and the installer ran in Chinese (PRC), makes that the choice.
void adoptInstallLanguage();

/// Decides the language of the program, finds its translations and lists those that there are. Messages go to
/// the channel "Translations".
class Translations
{
public:
    /// An empty name of a variable, or a setting with an empty key, is never asked.
    Translations(const QString& environmentVariable, const SettingKey<QString>& setting,
                 const QStringList& searchPaths);

    /// By the environment variable, else the setting, else the system.
    QLocale chooseLocale() const;

    /// Loads the first translation of the chosen locale called `base` + `separator` + locale + ".qm" that a
    /// search path holds. False if there is none; then the program stays in its source language.
    bool load(QTranslator& translator, const QString& base, const QString& separator) const;

    /// The locales that the search paths hold such files for, each once.
    QList<QLocale> availableLocales(const QString& base, const QString& separator) const;

private:
    QString m_environmentVariable;
    SettingKey<QString> m_setting;
    QStringList m_searchPaths;
};

} // namespace Orn::Core
