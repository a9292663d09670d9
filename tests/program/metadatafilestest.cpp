// What the command line exports with its record, opened in the window: package, values and output come back.

#include "applications/player/tweaks/presets/presets.h"
#include "applications/player/tweaks/tweakbase.h"
#include "applications/player/tweaks/tweakslist.h"
#include "tests/program/programfixture.h"

#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QStatusBar>
#include <QTabBar>

namespace Zph::Applications::Player::Tests {

namespace {

class MetadataFiles : public ProgramFixture
{
protected:
    MetadataFiles() { openWindow(); }

    /// Exports the walls, deeper and green, into a folder of their own.
    QString exported(const QString& metadata) const
    {
        const QString folder = installation.path(metadata);
        QProcess tool;
        tool.start(VELLOR_TEST_BINARIES "/vellor",
                   {"render", putPackage("walls", "vlrar"), "--set", "depth=0.75", "--set", "tint=#002000",
                    "--set", "rows=9", "-o", folder, "--format", "png", "--metadata", metadata});
        EXPECT_TRUE(tool.waitForFinished() && tool.exitCode() == 0)
            << tool.readAllStandardError().toStdString();
        QFile::remove(installation.path("walls.vlrar"));
        return folder;
    }

    void expectExported(const char* what, const QString& file) const
    {
        EXPECT_EQ(window->windowTitle(), "Vellor Player - " + file) << what;
        ASSERT_EQ(captions(), QStringList({"Depth", "Detail", "Output Size", "Rows", "Tint"})) << what;
        EXPECT_EQ(tweak("Depth")->value().floatAt(0), 0.75f) << what;
        EXPECT_EQ(tweak("Rows")->value().intAt(0), 9) << what;
        EXPECT_FALSE(tweak("Detail")->isHidden()) << what << ": its condition sees the values";
        EXPECT_EQ(tweak("Output Size")->value().intAt(0), 4) << what << ": the size of the bitmap";
        const auto* tabs = views().first()->findChild<QTabBar*>("outputTabs");
        EXPECT_EQ(tabs->tabText(tabs->currentIndex()), "Height") << what;
        // 9 / 16 * 0.75 of 255
        EXPECT_EQ(picture(*views().first()).pixelColor(3, 3), QColor(108, 108, 108)) << what;
        for (const PresetDescription& preset : tweaks().presets().presets())
            EXPECT_EQ(preset.label,
                      preset.fileName.isEmpty() ? QString("Deep") : QFileInfo(file).completeBaseName())
                << what;
        EXPECT_EQ(tweaks().presets().presets().size(), 2) << what;
    }

    /// Answers the question for a file that a record names.
    void answerQuestion(const QString& title, const QString& file)
    {
        answerDialog([title, file](QDialog& dialog) {
            auto& chooser = dynamic_cast<QFileDialog&>(dialog);
            EXPECT_EQ(chooser.windowTitle(), title);
            if (file.isEmpty())
                return chooser.reject();
            chooser.setDirectory(QFileInfo(file).absolutePath());
            chooser.findChild<QLineEdit*>("fileNameEdit")->setText(QFileInfo(file).fileName());
            chooser.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open)->click();
        });
    }
};

TEST_F(MetadataFiles, BringBackWhatMadeThem)
{
    int generations = 0;
    QObject::connect(window->statusBar(), &QStatusBar::messageChanged,
                     [&](const QString& text) { generations += text == "Generating 1 textures..."; });
    for (const QString form : {"embedded", "file"}) {
        const QDir folder(exported(form));
        const QString file = form == "file" ? "walls_Height.vlrmeta" : "walls_Height.png";
        ASSERT_TRUE(window->loadFile(putPackage("floor", "vlrar")));
        generations = 0;
        ASSERT_TRUE(window->loadFile(folder.filePath(file))) << consoleText().toStdString();
        EXPECT_EQ(status(), "Load Done.");
        EXPECT_EQ(generations, 1);
        EXPECT_FALSE(isConsoleShown()) << consoleText().toStdString();
        expectExported("opened", file);
        tweak("Depth")->resetToDefault();
        action("Reload")->trigger();
        expectExported("reloaded", file);
    }
}

TEST_F(MetadataFiles, FailuresLeaveTheDocument)
{
    const QDir folder(exported("file"));
    ASSERT_TRUE(window->loadFile(putPackage("floor", "vlrar")));
    const auto* engine = window->engine();
    EXPECT_FALSE(window->loadFile(folder.filePath("walls_Height.png")));
    EXPECT_EQ(consoleText(), "Vellor Metadata loading failed");
    EXPECT_EQ(status(), "Load Failed!");

    // A record that names the archive in place of holding it.
    QByteArray record = readFile(folder.filePath("walls_Height.vlrmeta"));
    const int from = record.indexOf("vlrarcontent="), to = record.indexOf('"', from + 14) + 1;
    record.remove(from, to - from);
    const QString path = put("file/reference.vlrmeta", record);
    const QString title = "'walls.vlrar' file is required to load 'reference.vlrmeta'";
    answerQuestion(title, {});
    EXPECT_FALSE(window->loadFile(path));
    EXPECT_EQ(consoleText(), "") << "the user knows";
    EXPECT_EQ(window->engine(), engine);
    EXPECT_EQ(window->windowTitle(), "Vellor Player - floor.vlrar");

    answerQuestion(title, put("elsewhere.vlrar", PackageFiles::get("walls").archive));
    EXPECT_TRUE(window->loadFile(path)) << consoleText().toStdString();
    EXPECT_EQ(window->windowTitle(), "Vellor Player - reference.vlrmeta");
    EXPECT_EQ(tweak("Rows")->value().intAt(0), 9);
}

TEST_F(MetadataFiles, DroppedOnTheViewsTheyOpen)
{
    const QDir folder(exported("embedded"));
    ASSERT_TRUE(window->loadFile(putPackage("floor", "vlrar")));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(folder.filePath("walls_Height.png"))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &enter);
    QDropEvent drop(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &drop);
    expectExported("dropped", "walls_Height.png");
}

} // namespace

} // namespace Zph::Applications::Player::Tests
