#include "orncommon/core/translations.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTranslator>

using namespace Orn::Core;

namespace {

constexpr const char* variable = "ORN_TEST_LOCALE";

// The magic number of compiled translations, then one message: its hash and offset, and its end mark.
const QByteArray oneMessage = QByteArray::fromHex("3cb86418caef9c95cd211cbf60a1bddd"
                                                  "42000000080000000100000000"
                                                  "690000000101");

void writeTranslation(const QString& path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(oneMessage);
}

} // namespace

TEST(Translations, ChoosesTheLocale)
{
    const struct
    {
        const char* environment;
        const char* stored;
        const char* expected; // null for the system's
    } rows[] = {{"fr", "de", "fr_FR"}, {"", "de", "de_DE"}, {"", "", nullptr}};
    const Translations translations(variable, languageSetting, {});
    for (const auto& row : rows) {
        qputenv(variable, row.environment);
        languageSetting.write(row.stored);
        EXPECT_EQ(translations.chooseLocale().name(),
                  row.expected ? QString(row.expected) : QLocale::system().name());
    }
    languageSetting.write("de");
    EXPECT_EQ(Translations("", {}, {}).chooseLocale(), QLocale::system());
    languageSetting.remove();
    qunsetenv(variable);
}

TEST(Translations, TheInstallersLanguageCountsUntilOneIsChosen)
{
    installLanguageSetting.write(1036);
    adoptInstallLanguage();
    EXPECT_FALSE(languageSetting.isStored());
    installLanguageSetting.write(2052);
    adoptInstallLanguage();
    EXPECT_EQ(languageSetting.read(), "zh");
    languageSetting.write("de");
    adoptInstallLanguage();
    EXPECT_EQ(languageSetting.read(), "de");
    languageSetting.write(QString()); // the system's, chosen
    adoptInstallLanguage();
    EXPECT_EQ(languageSetting.read(), "");
    languageSetting.remove();
    installLanguageSetting.remove();
}

TEST(Translations, ListsAndLoadsWhatTheFoldersHold)
{
    const QTemporaryDir first;
    const QTemporaryDir second;
    for (const QString& path :
         {first.filePath("app_de.qm"), first.filePath("app_de.txt"), first.filePath("other_it.qm"),
          second.filePath("app_de.qm"), second.filePath("app_zh_CN.qm"), second.filePath("app_fr.qm")})
        writeTranslation(path);
    const Translations translations(variable, {}, {first.path(), second.path()});
    QStringList names;
    for (const QLocale& locale : translations.availableLocales("app", "_"))
        names << locale.name();
    EXPECT_EQ(names, QStringList({"de_DE", "fr_FR", "zh_CN"}));

    const struct
    {
        const char* language;
        bool loaded;
    } rows[] = {{"de", true}, {"fr", true}, {"it", false}};
    for (const auto& row : rows) {
        qputenv(variable, row.language);
        QTranslator translator;
        EXPECT_EQ(translations.load(translator, "app", "_"), row.loaded) << row.language;
    }
    qunsetenv(variable);
}
