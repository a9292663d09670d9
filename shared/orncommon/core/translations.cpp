#include "orncommon/core/translations.h"

#include "orncommon/core/channellogger.h"

#include <QDir>
#include <QRegExp>
#include <QTranslator>

namespace Orn::Core {

namespace {

const Log::ChannelLogger logger("Translations");

// Windows' language identifier.
constexpr uint chinesePrc = 0x804;

} // namespace

void adoptInstallLanguage()
{
    if (!languageSetting.isStored() && installLanguageSetting.read() == chinesePrc)
        languageSetting.write(QStringLiteral("zh"));
}

Translations::Translations(const QString& environmentVariable, const SettingKey<QString>& setting,
                           const QStringList& searchPaths)
    : m_environmentVariable(environmentVariable), m_setting(setting), m_searchPaths(searchPaths)
{
    logger.info(QStringLiteral("Search Paths:"));
    for (const QString& path : m_searchPaths)
        logger.info(QStringLiteral("  ") + path);
}

QLocale Translations::chooseLocale() const
{
    if (!m_environmentVariable.isEmpty()) {
        const QString value = qEnvironmentVariable(m_environmentVariable.toLocal8Bit().constData());
        if (!value.isEmpty()) {
            logger.info(QStringLiteral("Use Local specified by environment variable: ") + value);
            return QLocale(value);
        }
    }
    if (!m_setting.key.isEmpty()) {
        const QString value = m_setting.read();
        if (!value.isEmpty()) {
            logger.info(QStringLiteral("Use Local found in settings: ") + value);
            return QLocale(value);
        }
    }
    logger.info(QStringLiteral("Use system locale"));
    return QLocale::system();
}

bool Translations::load(QTranslator& translator, const QString& base, const QString& separator) const
{
    const QLocale locale = chooseLocale();
    logger.info(QStringLiteral("Locale Found: %1").arg(locale.name()));
    logger.info(
        QStringLiteral("Locale uiLanguages: %1").arg(locale.uiLanguages().join(QStringLiteral(", "))));
    for (const QString& folder : m_searchPaths) {
        const bool loaded = translator.load(locale, base, separator, folder);
        logger.info(QStringLiteral("Loading translation (%1, %2, %3) %4")
                        .arg(locale.name(), base, folder,
                             loaded ? QStringLiteral("Succeed") : QStringLiteral("Failed")));
        if (loaded)
            return true;
    }
    return false;
}

QList<QLocale> Translations::availableLocales(const QString& base, const QString& separator) const
{
    const QString start = base + separator;
    QRegExp pattern(QStringLiteral("(%1)(.+)(\\.qm)").arg(QRegExp::escape(start)));
    QStringList names;
    QList<QLocale> locales;
    for (const QString& folder : m_searchPaths) {
        for (const QString& file : QDir(folder).entryList({start + QStringLiteral("*.qm")}, QDir::Files)) {
            if (!pattern.exactMatch(file) || names.contains(pattern.cap(2)))
                continue;
            names.append(pattern.cap(2));
            locales.append(QLocale(pattern.cap(2)));
        }
    }
    return locales;
}

} // namespace Orn::Core
