// Documents of every kind, by every way into the window, and what is left after one that fails.

#include "applications/player/session/engine.h"
#include "applications/player/session/static.h"
#include "applications/player/shell/mainactions.h"
#include "applications/player/timeline/timeline.h"
#include "applications/player/tweaks/tweakbase.h"
#include "applications/player/tweaks/tweakslist.h"
#include "tests/program/programfixture.h"

#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSlider>

namespace Zph::Applications::Player::Tests {

namespace {

using Zph::Engine::Tests::TestInstallation;

class Opening : public ProgramFixture
{
protected:
    Opening() { openWindow(); }

    void expectWalls(const char* what) const
    {
        EXPECT_EQ(captions(), QStringList({"Depth", "Detail", "Output Size", "Rows", "Tint"})) << what;
        EXPECT_EQ(outputs(*views().first()), QStringList({"Base colour", "Height", "Area"})) << what;
        EXPECT_EQ(picture(*views().first()).pixelColor(3, 3), QColor(128, 0, 0)) << what;
    }

    void expectFloor(const char* what) const
    {
        ASSERT_NE(window->engine(), nullptr) << what;
        EXPECT_EQ(outputs(*views().first()), QStringList({"Floor"})) << what;
    }

    void expectNothing(const char* what) const
    {
        EXPECT_EQ(window->engine(), nullptr) << what;
        EXPECT_EQ(window->windowTitle().toStdString(), "Vellor Player") << what;
        EXPECT_TRUE(captions().isEmpty()) << what;
        EXPECT_TRUE(outputs(*views().first()).isEmpty()) << what;
        EXPECT_FALSE(views().first()->isEnabled()) << what;
    }

    /// Opens files by the dialog; another dialog that follows it is answered too.
    void openByDialog(const QStringList& files, const std::function<void(QDialog&)>& next = {})
    {
        answerDialog([files](QDialog& dialog) {
            auto& chooser = dynamic_cast<QFileDialog&>(dialog);
            EXPECT_EQ(chooser.windowTitle().toStdString(), "Open Vellor file");
            chooser.setDirectory(QFileInfo(files.first()).absolutePath());
            QStringList names;
            for (const QString& file : files)
                names << '"' + QFileInfo(file).fileName() + '"';
            chooser.findChild<QLineEdit*>("fileNameEdit")->setText(names.join(' '));
            chooser.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open)->click();
        });
        if (next)
            answerDialog(next);
        action("Open...")->trigger();
    }
};

TEST_F(Opening, EveryKindOfFile)
{
    struct Row
    {
        const char* what;
        QStringList suffixes; // of the files that lie there
        const char* opened;   // suffix
        QStringList console;  // lines that are told
        bool hasDescription;
    };
    const QString noXml = "Cannot load Vellor XML description file";
    const Row rows[] = {
        {"an authoring file", {"vlr"}, "vlr", {}, true},
        {"an archive", {"vlrar"}, "vlrar", {}, true},
        {"an assembly with its description", {"vlrasm", "xml"}, "vlrasm", {}, true},
        {"an assembly alone", {"vlrasm"}, "vlrasm", {noXml}, false},
        {"a binary with its description", {"vlrbin", "xml"}, "vlrbin", {}, true},
        {"a binary alone", {"vlrbin"}, "vlrbin", {noXml}, false},
        {"a description with an assembly", {"xml", "vlrasm"}, "xml", {}, true},
        {"a description with a binary", {"xml", "vlrbin"}, "xml", {}, true},
        {"a description with a binary of a longer name", {"xml", "sse2.vlrbin"}, "xml", {}, true},
        {"an archive in capitals", {"VLRAR"}, "VLRAR", {}, true},
    };
    int number = 0;
    for (const Row& row : rows) {
        const QString base =
            QStringLiteral("walls%1").arg(++number); // a folder of files apart from each other
        for (const QString& suffix : row.suffixes)
            put(base + '.' + suffix, PackageFiles::get("walls").form(suffix.section('.', -1).toLower()));
        const QString path = installation.path(base + '.' + row.opened);
        EXPECT_TRUE(window->loadFile(path)) << row.what << consoleText().toStdString();
        EXPECT_EQ(status().toStdString(), "Load Done.") << row.what;
        EXPECT_EQ(window->windowTitle(), "Vellor Player - " + QFileInfo(path).fileName()) << row.what;
        EXPECT_EQ(isConsoleShown(), !row.console.isEmpty()) << row.what << consoleText().toStdString();
        for (const QString& line : row.console)
            EXPECT_TRUE(consoleText().contains(line)) << row.what;
        EXPECT_TRUE(action("Reload")->isEnabled()) << row.what;
        if (row.hasDescription)
            expectWalls(row.what);
        else
            EXPECT_EQ(tweaks().tweaks().size(), 5u) << row.what;
        if (isConsoleShown())
            window->findChild<QDialog*>("errorConsole")->hide();
    }
}

TEST_F(Opening, WhatAFailureLeaves)
{
    const QString floor = putPackage("floor", "vlrar");
    enum Left
    {
        Nothing,
        Floor
    };
    struct Row
    {
        const char* file;
        QByteArray bytes; // null: there is no such file
        QStringList console;
        Left left;
        bool isTitleNew;
    };
    const Row rows[] = {
        {"bad.vlrbin", "no binary", {"Cannot load Vellor binary file"}, Nothing, false},
        {"bad.vlrasm", "no assembly", {"Link process failed: Invalid assembly or version."}, Floor, true},
        {"empty.vlrasm", "", {"Link process failed: "}, Floor, true},
        {"bad.vlrar", "PK\3\4 and no more", {"Link process failed: Invalid archive format."}, Floor, true},
        {"bad.vlr", "<package", {"Cooking process failed: "}, Floor, false},
        {"missing.vlr",
         {},
         {"Cannot open Vellor package '", "missing.vlr': I/O file error.", "Cooking process failed: "},
         Floor,
         false},
        {"missing.vlrbin", {}, {"Cannot open file '", "missing.vlrbin'"}, Floor, false},
        {"missing.xml", {}, {"Cannot open file '", "missing.vlrasm'"}, Floor, false},
        {"missing.vlrar", {}, {}, Floor, false},
        {"bitmap.png", "no picture either", {"Vellor Metadata loading failed"}, Floor, false},
    };
    for (const Row& row : rows) {
        ASSERT_TRUE(window->loadFile(floor));
        const QString path = installation.path(row.file);
        if (!row.bytes.isNull())
            writeFile(path, row.bytes);
        EXPECT_FALSE(window->loadFile(path)) << row.file;
        EXPECT_EQ(status().toStdString(), "Load Failed!") << row.file;
        for (const QString& line : row.console)
            EXPECT_TRUE(consoleText().contains(line)) << row.file << ": " << consoleText().toStdString();
        EXPECT_EQ(isConsoleShown(), !row.console.isEmpty()) << row.file;
        EXPECT_TRUE(action("Reload")->isEnabled()) << row.file;
        if (row.left == Nothing)
            expectNothing(row.file);
        else {
            expectFloor(row.file);
            EXPECT_EQ(window->windowTitle(),
                      "Vellor Player - " + (row.isTitleNew ? QString(row.file) : QString("floor.vlrar")))
                << row.file;
        }
        if (auto* console = window->findChild<QDialog*>("errorConsole"))
            console->hide();
    }
}

TEST_F(Opening, ReloadTriesABrokenFileAgain)
{
    EXPECT_FALSE(action("Reload")->isEnabled());
    ASSERT_TRUE(window->loadFile(putPackage("walls", "vlrbin")));
    putPackage("walls", "xml");
    put("walls.vlrbin", "broken");
    action("Reload")->trigger();
    expectNothing("broken");
    ASSERT_TRUE(action("Reload")->isEnabled());
    putPackage("walls", "vlrbin");
    action("Auto-reload")->trigger();
    expectWalls("mended");
    EXPECT_FALSE(action("Auto-reload")->isChecked());
    EXPECT_FALSE(consoleText().contains("Cannot load")) << "a load begins with an empty console";
}

TEST_F(Opening, SeveralFilesCookAndReloadTogether)
{
    const QStringList files{putPackage("walls", "vlr"), putPackage("floor", "vlr")};
    openByDialog(files);
    EXPECT_EQ(window->windowTitle().toStdString(), "Vellor Player - walls.vlr [...]");
    EXPECT_EQ(captions(),
              QStringList({"Depth", "Detail", "Grey", "Output Size", "Output Size", "Rows", "Tint"}));
    put("floor.vlr", QByteArray(PackageFiles::get("floor").authoring).replace("\"Grey\"", "\"Shade\""));
    action("Reload")->trigger();
    EXPECT_TRUE(captions().contains("Shade"));
    EXPECT_EQ(captions().size(), 7);
    EXPECT_EQ(status().toStdString(), "Load Done.");

    openByDialog({files.first(), putPackage("floor", "vlrar")}, [](QDialog& dialog) {
        EXPECT_EQ(dynamic_cast<QMessageBox&>(dialog).text().toStdString(),
                  "Error: Multiple selection is only allowed for VLR files.");
        EXPECT_EQ(dialog.windowTitle().toStdString(), "Vellor Player - walls.vlr [...]");
        dialog.accept();
    });
    EXPECT_EQ(status().toStdString(), "Load Failed!");
    EXPECT_EQ(captions().size(), 7);
}

TEST_F(Opening, RecentFilesAreTheLastTen)
{
    QStringList expected;
    for (int i = 0; i < 12; ++i) {
        const QString path = put(QStringLiteral("floor%1.vlrar").arg(i), PackageFiles::get("floor").archive);
        openByDialog({path});
        expected.prepend(path);
    }
    openByDialog({expected.at(3)});
    expected.move(3, 0);
    expected = expected.mid(0, 10);
    QMenu& menu = *window->menus().recentFiles;
    emit menu.aboutToShow();
    ASSERT_EQ(menu.actions().size(), 10);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(menu.actions().at(i)->data().toString(), expected.at(i)) << i;
    menu.actions().last()->trigger();
    EXPECT_EQ(window->windowTitle(), "Vellor Player - " + QFileInfo(expected.last()).fileName());
    EXPECT_EQ(Static::instance().recentFiles(), expected) << "choosing an entry moves nothing";
}

TEST_F(Opening, ErrorsOfAnAuthoringFileNameTheirPlace)
{
    const QString path =
        put("slips.vlr", "<package formatversion=\"1\">\n"
                         "  <graph identifier=\"g\">\n"
                         "    <nodes>\n"
                         "      <node id=\"a\" type=\"perlim\"/>\n"
                         "      <node id=\"b\" type=\"blend\"><in name=\"source\" from=\"zz\"/></node>\n"
                         "    </nodes>\n"
                         "    <outputs><output identifier=\"o\" from=\"b\"/></outputs>\n"
                         "  </graph>\n"
                         "</package>\n");
    EXPECT_FALSE(window->loadFile(path));
    const QStringList lines = consoleText().split('\n');
    EXPECT_FALSE(lines.filter(path + ":4:").isEmpty()) << consoleText().toStdString();
    EXPECT_FALSE(lines.filter(path + ":5:").isEmpty()) << consoleText().toStdString();
    EXPECT_TRUE(lines.last().startsWith("Cooking process failed: ")) << consoleText().toStdString();
}

TEST_F(Opening, DroppedFiles)
{
    struct Row
    {
        QStringList files;
        bool isAccepted;
        const char* title;
    };
    putPackage("walls", "vlr");
    putPackage("floor", "vlr");
    putPackage("floor", "vlrar");
    putPackage("walls", "vlrar");
    put("notes.txt", "text");
    const Row rows[] = {
        {{"walls.vlr"}, true, "Vellor Player - walls.vlr"},
        {{"floor.vlrar", "walls.vlrar"}, true, "Vellor Player - floor.vlrar"}, // the first ends the walk
        {{"floor.vlr", "walls.vlr"}, true, "Vellor Player - floor.vlr [...]"},
        {{"notes.txt"}, false, nullptr},
    };
    for (const Row& row : rows) {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString& file : row.files)
            urls << QUrl::fromLocalFile(installation.path(file));
        data.setUrls(urls);
        const QPoint place = window->rect().center();
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QApplication::sendEvent(window.get(), &enter);
        EXPECT_EQ(enter.isAccepted(), row.isAccepted) << row.files.first().toStdString();
        if (!row.isAccepted)
            continue;
        QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window.get(), &drop);
        EXPECT_EQ(window->windowTitle().toStdString(), row.title);
        EXPECT_EQ(status().toStdString(), "Load Done.");
    }
}

// Shows the picture of its one input.
const char framedPackage[] =
    "<package formatversion='1'><graph identifier='framed'><inputs><input identifier='photo' type='image'/>"
    "</inputs><nodes><node id='shown' type='imageinput' channels='colour'><param name='image' input='photo'/>"
    "</node></nodes><outputs><output identifier='shown' from='shown'/></outputs></graph></package>";

TEST_F(Opening, DroppedPicturesGoToAnImageInput)
{
    ASSERT_TRUE(window->loadFile(put("framed.vlr", framedPackage))) << consoleText().toStdString();
    const QString path = installation.path("dropped.png");
    QImage image(2, 2, QImage::Format_RGB32);
    image.fill(QColor(200, 100, 50));
    ASSERT_TRUE(image.save(path));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    const QPoint place = tweaks().mapTo(window.get(), tweaks().rect().center());
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &enter);
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &drop);
    EXPECT_TRUE(waitFor([&] { return picture(*views().first()).pixelColor(0, 0) == QColor(200, 100, 50); }));
    EXPECT_EQ(window->windowTitle(), "Vellor Player - framed.vlr");

    image.fill(QColor(10, 20, 30));
    ASSERT_TRUE(image.save(path)); // and is followed on the disk
    EXPECT_TRUE(waitFor([&] { return picture(*views().first()).pixelColor(0, 0) == QColor(10, 20, 30); }));
}

TEST_F(Opening, AFolderOfFramesFollowsTheTimeline)
{
    ASSERT_TRUE(window->loadFile(put("framed.vlr", framedPackage))) << consoleText().toStdString();
    const QDir folder(installation.path("frames"));
    ASSERT_TRUE(folder.mkpath("."));
    const QColor colours[] = {Qt::red, Qt::green, Qt::blue};
    for (int i = 0; i < 3; ++i) {
        QImage image(2, 2, QImage::Format_RGB32);
        image.fill(colours[i]);
        ASSERT_TRUE(image.save(folder.filePath(QString("f%1.png").arg(i + 9))));
    }
    const auto shows = [&](const QColor& colour) {
        return waitFor([&] { return picture(*views().first()).pixelColor(0, 0) == colour; });
    };
    auto* timeline = window->findChild<Timeline*>();
    EXPECT_FALSE(timeline->isEnabled());
    timeline->setCurrentTime(0);

    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(folder.path())});
    TweakBase* row = tweak("photo");
    QDragEnterEvent enter(row->rect().center(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(row, &enter);
    QDropEvent drop(row->rect().center(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(row, &drop);
    answerDialog([](QDialog& dialog) {
        EXPECT_EQ(dynamic_cast<QInputDialog&>(dialog).intValue(), 3);
        dialog.accept();
    });
    EXPECT_TRUE(shows(Qt::red));
    EXPECT_TRUE(timeline->isEnabled());

    auto* time = timeline->findChild<QSlider*>();
    const auto goTo = [&](int frame) { time->setValue(frame); };
    goTo(2);
    EXPECT_TRUE(shows(Qt::blue));
    ASSERT_TRUE(QFile::remove(folder.filePath("f10.png")) && QFile::resize(folder.filePath("f11.png"), 40));
    const QColor grey(0xa8, 0xa8, 0xa8);
    goTo(1);
    EXPECT_TRUE(shows(grey)) << "gone";
    goTo(0);
    EXPECT_TRUE(shows(Qt::red)) << "and on";
    goTo(2);
    EXPECT_TRUE(shows(grey)) << "cut off";
    goTo(0);
}

TEST_F(Opening, RemotePackagesHaveNoFile)
{
    ASSERT_TRUE(window->loadFile(putPackage("floor", "vlrar")));
    window->remoteVlrbinReceived(PackageFiles::get("walls").binary);
    expectFloor("until the next turn of the event loop");
    ASSERT_TRUE(waitFor([this] { return window->windowTitle() == "Vellor Player - Remote file"; }));
    EXPECT_EQ(tweaks().tweaks().size(), 5u);
    EXPECT_FALSE(action("Reload")->isEnabled());
    EXPECT_FALSE(action("Export as Bitmap...")->isEnabled());

    window->remoteVlrbinReceived("damaged");
    ASSERT_TRUE(waitFor([this] { return window->engine() == nullptr; }));
    expectNothing("damaged");
    EXPECT_TRUE(consoleText().contains("Cannot load Vellor binary file"));

    ASSERT_TRUE(window->loadFile(putPackage("floor", "vlrar")));
    EXPECT_TRUE(action("Reload")->isEnabled());
}

TEST_F(Opening, SizeLimitAndDynamicChoicesCountAtTheNextCooking)
{
    ASSERT_TRUE(window->loadFile(putPackage("walls", "vlr")));
    action("Dynamic 'Output Size'")->trigger();
    EXPECT_EQ(status().toStdString(), "Please reload file to apply changes.");
    action("Reload")->trigger();
    EXPECT_FALSE(captions().contains("Output Size"));
    EXPECT_EQ(picture(*views().first()).size(), QSize(16, 16));
    EXPECT_EQ(TestInstallation::settings()->value("session/dynCommonState").toInt(), 4);

    answerDialog([](QDialog& dialog) {
        auto& question = dynamic_cast<QInputDialog&>(dialog);
        EXPECT_EQ(question.comboBoxItems().first().toStdString(), "8");
        EXPECT_EQ(question.comboBoxItems().last().toStdString(), "32768");
        question.setTextValue("8");
        question.accept();
    });
    action("Set size limit...")->trigger();
    EXPECT_EQ(TestInstallation::settings()->value("session/sizeLimit").toInt(), 3);
    EXPECT_EQ(picture(*views().first()).size(), QSize(8, 8));
}

} // namespace

} // namespace Zph::Applications::Player::Tests
