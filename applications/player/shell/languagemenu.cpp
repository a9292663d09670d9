#include "languagemenu.h"

#include "orncommon/core/translations.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QDir>
#include <QMenu>
#include <QTranslator>

namespace Zph::Applications::Player {

namespace {

const QString kBase = QStringLiteral("vellor");
const QString kSeparator = QStringLiteral("_");

/// The folders are looked for and logged once.
const Orn::Core::Translations& translations()
{
    static const Orn::Core::Translations found = [] {
        const QString folder = QCoreApplication::applicationDirPath();
        return Orn::Core::Translations(
            "ORN_VELLOR_LOCALE", Orn::Core::languageSetting,
            {folder + "/translations", QDir::cleanPath(folder + "/../translations")});
    }();
    return found;
}

void install(const QString& base)
{
    auto* translator = new QTranslator(qApp);
    if (translations().load(*translator, base, kSeparator))
        QCoreApplication::installTranslator(translator);
    else
        delete translator;
}

} // namespace

void installTranslators()
{
    Orn::Core::adoptInstallLanguage();
    install(kBase);
    install("qt");
}

void fillLanguageMenu(QMenu& menu)
{
    auto* group = new QActionGroup(&menu);
    // What an installer or a person wrote may be short: "zh" stands for the locale "zh_CN".
    const QString stored = Orn::Core::languageSetting.read();
    const QString chosen = stored.isEmpty() ? QString() : QLocale(stored).name();
    const auto add = [&](const QString& text, const QString& name) {
        QAction* action = menu.addAction(text);
        action->setData(name);
        action->setCheckable(true);
        action->setChecked(name == chosen);
        group->addAction(action);
    };
    add(QObject::tr("System"), {});
    for (const QLocale& locale : translations().availableLocales(kBase, kSeparator))
        add(QLocale::languageToString(locale.language()), locale.name());
}

} // namespace Zph::Applications::Player
