#include "orncommon/core/applicationsettingsdefaultdelegate.h"
#include "orncommon/core/applicationversion.h"
#include "orncommon/core/defaultsettings.h"
#include "orncommon/core/scopedsettings.h"
#include "orncommon/core/settingsversion.h"
#include "orncommon/core/tests/capturedlog.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>
#include <QUrl>

using namespace Orn::Core;

namespace {

QSharedPointer<DefaultSettings> iniIn(const QTemporaryDir& folder, const QString& name = "store.ini")
{
    return QSharedPointer<DefaultSettings>::create(folder.filePath(name), DefaultSettings::Ini);
}

} // namespace

TEST(DefaultSettings, FormatsAndFileNames)
{
    const struct
    {
        DefaultSettings::Format format;
        const char* extension;
    } rows[] = {{DefaultSettings::Native, ""},
                {DefaultSettings::Ini, "ini"},
                {DefaultSettings::Xml, "xml"},
                {DefaultSettings::Unknown, ""}};
    for (const auto& row : rows)
        EXPECT_EQ(DefaultSettings::sGetSettingsFileExtension(row.format), row.extension) << row.format;

    EXPECT_EQ(DefaultSettings("O", "A").getFormat(), DefaultSettings::Native);
    const QTemporaryDir folder;
    const QString path = folder.filePath("a b.ini");
    const DefaultSettings byUrl(QUrl::fromLocalFile(path).toString(), DefaultSettings::Ini);
    EXPECT_EQ(byUrl.getFileName(), path);
    EXPECT_EQ(byUrl.getCaseSensitivity(), Qt::CaseSensitive);
    EXPECT_EQ(DefaultSettings("", DefaultSettings::Xml).getCaseSensitivity(), Qt::CaseInsensitive);
}

TEST(DefaultSettings, SurvivesItsParentObject)
{
    auto parent = std::make_unique<QObject>();
    const DefaultSettings settings("O", "A", parent.get());
    parent.reset(); // the destructor must not delete the store a second time
}

TEST(ISettings, MovesWhatIsInTheCurrentGroup)
{
    const QTemporaryDir folder;
    const auto source = iniIn(folder, "source.ini");
    const auto target = iniIn(folder, "target.ini");
    source->setValues({{"g/a", 1}, {"g/sub/b", 2}, {"outside", 3}});
    {
        const ScopedSettingsBeginGroup group(source, "g");
        source->moveKeysTo(*target);
    }
    EXPECT_EQ(source->group(), "");
    EXPECT_EQ(source->allKeys(), QStringList({"outside"}));
    EXPECT_EQ(target->getValues(), (QMap<QString, QVariant>{{"a", 1}, {"sub/b", 2}}));
}

TEST(ScopedSettings, ArrayTakesItsSizeFromTheHighestIndex)
{
    const QTemporaryDir folder;
    {
        const auto store = iniIn(folder);
        const ScopedSettingsBeginWriteArray array(store, "list");
        store->setArrayIndex(2);
        store->setValue("v", "x");
    }
    QSettings written(folder.filePath("store.ini"), QSettings::IniFormat);
    EXPECT_EQ(written.value("list/size").toInt(), 3);
    EXPECT_EQ(written.value("list/3/v").toString(), "x");
}

TEST(SettingsVersion, AStoreOfAnotherVersionIsEmptied)
{
    const struct
    {
        QMap<QString, QVariant> before;
        bool wiped;
    } rows[] = {{{{"version", "10.1.1"}, {"session/a", 1}}, false},
                {{{"version", "10.1.0"}, {"session/a", 1}, {"top", 2}}, true},
                {{{"session/a", 1}}, true},
                {{}, true}};
    for (const auto& row : rows) {
        const QTemporaryDir folder;
        const auto store = iniIn(folder);
        store->setValues(row.before);
        EXPECT_EQ(wipeIfOtherVersion(*store), row.wiped);
        EXPECT_EQ(store->getValues(),
                  row.wiped ? (QMap<QString, QVariant>{{"version", "10.1.1"}}) : row.before);
    }
}

TEST(SettingKey, ReadsWhatFitsTheTypeAndElseTheDefault)
{
    const QTemporaryDir folder;
    const auto store = iniIn(folder);
    store->setValues({{"number", "12"}, {"word", "twelve"}, {"bytes", QByteArray("\x00\x01", 2)}});
    EXPECT_EQ((SettingKey<int>{"number", 5}.read(*store)), 12);
    EXPECT_EQ((SettingKey<int>{"word", 5}.read(*store)), 5);
    EXPECT_EQ((SettingKey<int>{"missing", 5}.read(*store)), 5);
    EXPECT_EQ((SettingKey<QByteArray>{"bytes", {}}.read(*store)), QByteArray("\x00\x01", 2));

    const SettingKey<bool> bypassed = SettingKey<bool>{"session/dialogs/%1/bypassed", true}.arg("welcome");
    bypassed.write(false);
    EXPECT_FALSE(bypassed.read());
    EXPECT_TRUE(ApplicationSettings::getInstance().getSettingsSessions()->contains(
        "session/dialogs/welcome/bypassed"));
    bypassed.remove();
    EXPECT_TRUE(!bypassed.isStored() && bypassed.read());
}

TEST(ApplicationVersion, TextsAndDates)
{
    ApplicationVersion version;
    EXPECT_FALSE(version.isDefined());
    version.setBuildDate(ApplicationVersion::createBuildDate(" Apr  1   2020"));
    EXPECT_EQ(version.getBuildDate(), QDate(2020, 4, 1));
    version.setVersionNumber(10, 1, 2, 7, "ab<");
    EXPECT_TRUE(version.isDefined());
    EXPECT_EQ(version.buildVersionStr(), "10.1.2");
    version.setTag("beta");
    EXPECT_EQ(version.buildVersionStr(), "10.1.2-beta");
    EXPECT_EQ(version.createVersionLabel(), "<strong>10.1.2</strong><strong>-beta</strong> build 7 commit "
                                            "0xab&lt; (2020-04-01)");
    EXPECT_FALSE(ApplicationVersion::createBuildDate("yesterday").isValid());
    version.setVersionNumber(3, 0, 0, 0, "");
    version.setTag("");
    version.setBuildDate(QDate());
    EXPECT_EQ(version.createVersionLabel(), "<strong>3.0.0</strong>");
}

TEST(ApplicationSettings, KeysOfOldMajorVersionsStandInAGroup)
{
    const ApplicationVersion saved = ApplicationVersion::getCurrent();
    const struct
    {
        int major;
        const char* group;
        const char* documents;
    } rows[] = {{6, "6_x", "/Org/App/6"}, {7, "", "/Org/App"}, {10, "", "/Org/App"}};
    for (const auto& row : rows) {
        ApplicationVersion::getCurrent().setVersionNumber(row.major, 0, 0, 0, "");
        ApplicationSettingsDefaultDelegate delegate;
        EXPECT_EQ(delegate.getSettings("any")->group(), row.group);
        EXPECT_TRUE(ApplicationSettingsDefaultDelegate::sGetApplicationDocumentsDir("Org", "App", row.major)
                        .endsWith(row.documents));
    }
    ApplicationVersion::getCurrent() = ApplicationVersion();
    EXPECT_EQ(ApplicationSettingsDefaultDelegate().getSettings("")->group(), "0_x");
    ApplicationVersion::getCurrent() = saved;
}

TEST(ApplicationSettings, OneStoreUntilDestroyed)
{
    ApplicationSettings settings;
    const auto store = settings.getSettingsUserPreferences();
    ASSERT_TRUE(store);
    EXPECT_EQ(store, settings.getSettingsSessions());
    EXPECT_EQ(store, settings.getConfigurationSettings());
    EXPECT_EQ(store, settings.getProjectSettings("p"));
    EXPECT_TRUE(store->getFileName().startsWith(qEnvironmentVariable("HOME")));
    EXPECT_EQ(settings.getAllProjectsSettingsReversed().size(), 1);
    settings.destroy();
    EXPECT_FALSE(settings.getSettingsSessions());
    EXPECT_EQ(settings.getApplicationInstallDir(), "");
}

TEST(ApplicationSettings, UniqueTempDirsCountUp)
{
    const ApplicationSettings settings;
    for (const char* expected : {"job0", "job1"}) {
        const QDir created(settings.getApplicationUniqueTempDir("job"));
        EXPECT_EQ(created.dirName(), expected);
        EXPECT_TRUE(created.exists());
    }
    EXPECT_EQ(QDir(settings.getApplicationUniqueTempDir("")).dirName(), "tmp0");
}

TEST(ApplicationSettings, FindsFilesInTheInstallDirAndWarnsOfOthers)
{
    const ApplicationSettings settings;
    const QString own = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    const CapturedLog log;
    EXPECT_EQ(settings.findExecutableInInstallDir("./" + own),
              QDir(settings.getApplicationInstallDir()).filePath(own));
    EXPECT_EQ(settings.searchInInstallDir("no such thing"), "");
    EXPECT_EQ(log.lines(), QStringList());
    EXPECT_EQ(settings.getApplicationResourceDir(), "");
    EXPECT_EQ(log.lines(), QStringList({"1 ApplicationSettings: File not found: resources",
                                        "1 ApplicationSettings: Resources Path not found"}));
}

TEST(ApplicationSettings, LogNamesSkippedPrefixesOnce)
{
    const QTemporaryDir folder;
    const auto store = iniIn(folder);
    store->setValues({{"6_x/a", 1}, {"6_x/b", 2}, {"6_xy", 3}, {"session/none", QVariant()}});
    const CapturedLog log;
    logSettings(*store, Log::ChannelLogger("L"), {"5_x/", "6_x/"});
    EXPECT_EQ(log.lines(), QStringList({"0 L: Settings:", "0 L:    Skip all data under '6_x/'",
                                        "0 L:    6_xy=3", "0 L:    session/none=INVALID"}));
}
