// The engine under an open document: another one by F9, a rebuilt one by its file, and one that nobody here
// wrote.

#include "applications/player/session/engine.h"
#include "common/engine/backend.h"
#include "common/engine/engineswitcher.h"
#include "common/gui/engineselectionwidget.h"
#include "tests/program/programfixture.h"

#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QPointer>
#include <QPushButton>
#include <QTabBar>
#include <QTableWidget>

#include <filesystem>

namespace Zph::Applications::Player::Tests {

namespace {

namespace Switcher = Zph::Engine::Switcher;
using Zph::Engine::Tests::testEngine;
using Zph::Engine::Tests::TestInstallation;

class Engines : public ProgramFixture
{
protected:
    QString install(const QString& source, const QString& name) const
    {
        const QString path = installation.path("plugins/engines/" + name);
        QFile::remove(path);
        EXPECT_TRUE(QFile::copy(source, path)) << source.toStdString();
        return path;
    }

    /// Chooses the engine by the dialog of F9.
    void choose(const QString& name)
    {
        answerDialog([name](QDialog& dialog) {
            auto& table = *dialog.findChild<QTableWidget*>();
            for (int row = 0; row < table.rowCount(); ++row)
                if (table.item(row, 1)->text() == name)
                    table.selectRow(row);
            EXPECT_TRUE(table.currentItem() && table.item(table.currentRow(), 1)->text() == name)
                << name.toStdString();
            dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        });
        action("&Switch engine...")->trigger();
    }

    static quint32 patch()
    {
        VellorVersion version = {};
        Zph::Engine::getCurrentVersion(&version, VELLOR_API_VERSION);
        return version.versionPatch;
    }
};

TEST_F(Engines, ForeignEngineInTheFolderIsListedAndServes)
{
    const QString foreign = install(testEngine(), "foreign.so");
    install(testEngine("_partial"), "partial.so");
    put("plugins/engines/readme.txt", "no engine");
    const QString own = install(cpuEngine, "own.so");
    openWindow("own.so");
    EXPECT_EQ(Switcher::current(), own);
    ASSERT_TRUE(window->loadFile(putPackage("walls", "vlr")));
    EXPECT_EQ(Switcher::listEngines().size(), 2) << "what misses an entry point is no engine";

    choose("Test Engine");
    EXPECT_EQ(Switcher::current(), foreign);
    EXPECT_EQ(TestInstallation::settings()->value("preferences/engines/current").toString(), foreign);
    EXPECT_EQ(status().toStdString(), "Load Done.");
    // It takes our binary for its own program: a picture of each pixel format, and what it can't show says
    // so.
    const QStringList titles = outputs(*views().first());
    ASSERT_EQ(titles.size(), 24);
    int grey = 0;
    for (int i = 0; i < titles.size(); ++i) {
        views().first()->findChild<QTabBar*>("outputTabs")->setCurrentIndex(i);
        const QImage shown = picture(*views().first());
        ASSERT_EQ(shown.size(), QSize(64, 64)) << i;
        grey += shown.pixel(0, 0) == 0xffa8a8a8;
    }
    EXPECT_EQ(grey, 5) << "three channels of 8 bits, and four formats of other families";

    choose("Vellor CPU Engine");
    EXPECT_EQ(Switcher::current(), own);
    EXPECT_EQ(outputs(*views().first()).size(), 3);
    EXPECT_EQ(picture(*views().first()).pixelColor(0, 0), QColor(128, 0, 0));
}

TEST_F(Engines, TheOnlyEngineIsTakenWithoutAsking)
{
    const QString only = install(testEngine(), "only.so");
    openWindow({});
    EXPECT_EQ(Switcher::current(), only);
}

TEST_F(Engines, AStoredEngineThatIsGoneLetsTheUserChoose)
{
    install(testEngine(), "foreign.so");
    install(cpuEngine, "own.so");
    answerDialog([](QDialog& dialog) { dialog.reject(); });
    openWindow(installation.path("plugins/engines/gone.so"));
    EXPECT_TRUE(Switcher::current().isEmpty());
    choose("Test Engine");
    EXPECT_TRUE(window->loadFile(putPackage("floor", "vlrar")));
}

TEST_F(Engines, RebuiltFileComesInWhileTheDocumentIsOpen)
{
    enum Way
    {
        Rename,
        Rewrite,
        RewriteInPieces
    };
    for (const Way way : {Rename, Rewrite, RewriteInPieces}) {
        const QString path = install(testEngine(), "engine.so");
        openWindow(path);
        EXPECT_EQ(patch(), 1u);
        ASSERT_TRUE(window->loadFile(put("script.vlrbin", "testengine\noutput 21 5 4 4 0\n")));
        const QByteArray bytes = readFile(testEngine("_next"));
        if (way == Rename) {
            put("plugins/engines/new", bytes);
            std::filesystem::rename(installation.path("plugins/engines/new").toStdString(),
                                    path.toStdString());
        } else if (way == Rewrite) {
            writeFile(path, bytes);
        } else {
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            for (int at = 0; at < bytes.size(); at += bytes.size() / 5 + 1) {
                file.write(bytes.mid(at, bytes.size() / 5 + 1));
                file.flush();
                waitFor([] { return false; }, 400);
                EXPECT_NE(window->engine(), nullptr) << "the one before stays until the new one is whole";
            }
        }
        EXPECT_TRUE(waitFor([] { return patch() == 2; })) << way;
        EXPECT_TRUE(waitFor([this] { return window->engine() && window->engine()->handleOrNull(); })) << way;
        EXPECT_FALSE(picture(*views().first()).isNull()) << way;
        EXPECT_EQ(Switcher::current(), path) << way;

        // And once more: the new file is watched like the old one.
        put("plugins/engines/new", readFile(testEngine()));
        std::filesystem::rename(installation.path("plugins/engines/new").toStdString(), path.toStdString());
        EXPECT_TRUE(waitFor([] { return patch() == 1; })) << way;
        closeWindow();
    }
}

TEST_F(Engines, OurOwnEngineIsSwappedToo)
{
    const QString path = install(cpuEngine, "engine.so");
    openWindow(path);
    ASSERT_TRUE(window->loadFile(putPackage("walls", "vlrar")));
    const QPointer<Engine> before = window->engine(); // the new one may lie where this one lay
    writeFile(path, readFile(cpuEngine));
    EXPECT_TRUE(waitFor([&] { return !before && window->engine(); }));
    EXPECT_EQ(picture(*views().first()).pixelColor(0, 0), QColor(128, 0, 0));
}

} // namespace

} // namespace Zph::Applications::Player::Tests
