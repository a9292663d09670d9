#include "common/engine/engineswitcher.h"
#include "common/engine/backend.h"
#include "common/engine/tests/testengines.h"
#include "common/engine/tests/testinstallation.h"

#include <QDir>

#include <boost/signals2/connection.hpp>

using namespace Zph::Engine;
using namespace Zph::Engine::Tests;

namespace {

const VellorLinkerEngineDesc served[] = {{12, 0, "", nullptr, 5, 0}, {19, 0, "", nullptr, 1, 0}, {}};

const VellorLinkerEngineDesc* enginesList()
{
    return served;
}

class EngineSwitcher : public testing::Test
{
protected:
    EngineSwitcher()
    {
        QDir(folder.path()).mkpath("elsewhere");
        Switcher::setLinkerEnginesList(enginesList);
        connections[0] = Switcher::aboutToChange().connect(
            [this](const QString& path) { events.append("about " + QFileInfo(path).fileName()); });
        connections[1] = Switcher::changed().connect([this](const QString& path, bool ok) {
            events.append(QString("changed %1 %2").arg(QFileInfo(path).fileName()).arg(ok));
        });
    }

    ~EngineSwitcher() override
    {
        // Gives up the engine: neither the empty path nor a current one that is gone can be loaded.
        QDir(folder.path()).removeRecursively();
        Switcher::load(QString());
        unload();
    }

    QString installed(const QString& name) const { return folder.path("plugins/engines/" + name); }
    QString elsewhere(const QString& name) const { return folder.path("elsewhere/" + name); }

    static QString put(const QString& path, const QString& form = {})
    {
        QFile::remove(path);
        QFile::copy(testEngine(form), path);
        return path;
    }

    static QString stored(const QString& key)
    {
        return TestInstallation::settings()->value("preferences/engines/" + key).toString();
    }
    static void store(const QString& key, const QString& value)
    {
        TestInstallation::settings()->setValue("preferences/engines/" + key, value);
    }

    static uint32_t loadedPatch()
    {
        VellorVersion version = {};
        getCurrentVersion(&version, VELLOR_API_VERSION);
        return version.versionPatch;
    }

    static QStringList listed()
    {
        QStringList list;
        for (const EngineDescPtr& engine : Switcher::listEngines())
            list.append(QFileInfo(engine->path).fileName() + (engine->automatic ? "" : "*"));
        return list;
    }

    TestInstallation folder;
    QStringList events;
    TestEngineLog log;

private:
    boost::signals2::scoped_connection connections[2];
};

} // namespace

TEST_F(EngineSwitcher, ABareNameFindsTheVersionedFileOfTheFolder)
{
    put(installed("libengine.so.1.0"), "_partial");
    put(installed("libengine.so.1.1"));
    store("current", "libengine.so");
    EXPECT_TRUE(Switcher::loadCurrent(""));
    EXPECT_EQ(Switcher::current(), installed("libengine.so.1.1"));
    EXPECT_EQ(stored("current"), installed("libengine.so.1.1"));
    EXPECT_EQ(events, QStringList({"about libengine.so.1.1", "changed libengine.so.1.1 1"}));
    EXPECT_EQ(Switcher::resolve("other.so"), "");
    EXPECT_EQ(Switcher::resolve(""), "");
    EXPECT_EQ(Switcher::resolve("/not/there.so"), "/not/there.so");
}

TEST_F(EngineSwitcher, CompatibleIsWhatTheLinkerServesInARecentRevision)
{
    struct Row
    {
        uint32_t id, revision, linker;
        bool compatible;
    };
    const Row rows[] = {{19, 0x10009, 1, true},  {19, 0x10008, 1, true}, {19, 0x10007, 1, false},
                        {19, 0x10009, 5, false}, {12, 0x10009, 5, true}, {12, 0x10009, 1, false},
                        {7, 0x10009, 1, false},  {0, 0x10009, 0, false}};
    for (const Row& row : rows) {
        EngineDesc engine;
        engine.version.engineId = row.id;
        engine.version.interfaceRevision = row.revision;
        engine.version.linkerCompatibility = row.linker;
        EXPECT_EQ(Switcher::isCompatible(engine), row.compatible) << row.id << ' ' << row.linker;
    }
}

TEST_F(EngineSwitcher, AFailedSwitchBringsTheFormerEngineBack)
{
    const QString good = put(installed("good.so"));
    ASSERT_TRUE(Switcher::load(good));
    events.clear();
    EXPECT_TRUE(Switcher::load(put(elsewhere("bad.so"), "_partial")));
    EXPECT_EQ(Switcher::current(), good);
    EXPECT_TRUE(isLoaded());
    EXPECT_EQ(events, QStringList({"about bad.so", "changed good.so 0"}));

    events.clear();
    QFile::remove(good);
    EXPECT_FALSE(Switcher::load(elsewhere("bad.so")));
    EXPECT_EQ(Switcher::current(), "");
    EXPECT_EQ(stored("current"), "");
    EXPECT_FALSE(isLoaded());
    EXPECT_EQ(events, QStringList({"about bad.so", "changed  0"}));
}

TEST_F(EngineSwitcher, AFileRebuiltOnDiskComesIn)
{
    const QString path = put(installed("engine.so"));
    ASSERT_TRUE(Switcher::load(path));
    EXPECT_EQ(loadedPatch(), 1u);
    put(path, "_next");
    ASSERT_TRUE(Switcher::load(path));
    EXPECT_EQ(loadedPatch(), 2u);
}

TEST_F(EngineSwitcher, ListsTheFolderThenWhatWasAddedAndForgetsTheRest)
{
    put(installed("b.so"));
    put(installed("a.so"));
    put(installed("broken.so"), "_partial");
    store("MRU/0000", put(elsewhere("added.so")));
    store("MRU/0001", elsewhere("deleted.so"));
    store("MRU/0002", put(elsewhere("broken.so"), "_partial"));
    store("MRU/0003", installed("b.so"));
    EXPECT_EQ(listed(), QStringList({"a.so", "b.so", "added.so*"}));
    EXPECT_EQ(stored("MRU/0000"), elsewhere("added.so"));
    for (const char* key : {"MRU/0001", "MRU/0002", "MRU/0003"})
        EXPECT_EQ(stored(key), "") << key;
}

TEST_F(EngineSwitcher, TheCurrentEngineFromElsewhereIsListedAndKept)
{
    put(installed("a.so"));
    ASSERT_TRUE(Switcher::load(put(elsewhere("mine.so"))));
    EXPECT_EQ(listed(), QStringList({"a.so", "mine.so*"}));
    EXPECT_EQ(stored("MRU/0000"), elsewhere("mine.so"));
}

TEST_F(EngineSwitcher, KeysOfAddedEnginesCountUpInHexadecimal)
{
    VellorVersion version = {};
    EXPECT_TRUE(Switcher::addToMRU(put(installed("a.so")), version));
    EXPECT_EQ(stored("MRU/0000"), "");
    EXPECT_FALSE(Switcher::addToMRU(put(elsewhere("bad.so"), "_partial"), version));

    EXPECT_TRUE(Switcher::addToMRU(put(elsewhere("one.so")), version));
    EXPECT_EQ(version.buildHash, 0xc0ffeeu);
    EXPECT_EQ(stored("MRU/0000"), elsewhere("one.so"));
    EXPECT_TRUE(Switcher::addToMRU(elsewhere("one.so"), version));
    EXPECT_EQ(stored("MRU/0001"), "");
    store("MRU/0009", put(elsewhere("nine.so")));
    EXPECT_TRUE(Switcher::addToMRU(put(elsewhere("ten.so")), version));
    EXPECT_EQ(stored("MRU/000a"), elsewhere("ten.so"));

    Switcher::removeFromMRU(elsewhere("nine.so"));
    EXPECT_EQ(stored("MRU/0009"), "");
    EXPECT_EQ(stored("MRU/000a"), elsewhere("ten.so"));
}

TEST_F(EngineSwitcher, WithoutAnEnginesFolderTheCurrentDirectoryIsTaken)
{
    QDir(folder.path("plugins")).removeRecursively();
    EXPECT_EQ(Switcher::enginesDirectory(), QDir::currentPath());
}
