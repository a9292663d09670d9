// Exports from the window: the same files as the command line writes, whatever is asked for, and what a user
// can do meanwhile.

#include "applications/player/metadata/metadatachoices.h"
#include "applications/player/output/dialog/render.h"
#include "applications/player/tweaks/tweakbase.h"
#include "applications/player/tweaks/tweakslist.h"
#include "tests/program/programfixture.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QTreeWidget>

namespace Zph::Applications::Player::Tests {

namespace {

using Zph::Engine::Tests::testEngine;
using Zph::Engine::Tests::TestInstallation;

class Export : public ProgramFixture
{
protected:
    Render& dialog() const { return *window->findChild<Render*>(); }

    Render& openDialog()
    {
        action("Export as Bitmap...")->trigger();
        return dialog();
    }

    QPushButton* button(const QString& text) const
    {
        for (QPushButton* found : dialog().findChildren<QPushButton*>())
            if (found->text() == text)
                return found;
        return nullptr;
    }

    QString progressText() const
    {
        for (const QLabel* label : dialog().findChildren<QLabel*>())
            if (label->text().startsWith("Rendering") || label->text().startsWith("Export complete"))
                return label->text();
        return {};
    }

    bool waitForEnd()
    {
        return waitFor([this] { return !dialog().isRunning(); });
    }

    QStringList results() const
    {
        QStringList names;
        const auto* list = dialog().findChild<QListWidget*>();
        for (int row = 0; row < list->count(); ++row)
            names << list->item(row)->text();
        return names;
    }

    /// The files of a folder of the installation, by name.
    QMap<QString, QByteArray> filesOf(const QString& folder) const
    {
        QMap<QString, QByteArray> files;
        const QDir dir(installation.path(folder));
        for (const QString& name : dir.entryList(QDir::Files | QDir::Hidden))
            files.insert(name, readFile(dir.filePath(name)));
        return files;
    }

    void renderOnCommandLine(const QString& package, const QString& folder, const QStringList& more) const
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(VELLOR_TEST_BINARIES "/vellor",
                      QStringList{"render", package, "-o", installation.path(folder)} + more);
        ASSERT_TRUE(process.waitForFinished());
        ASSERT_EQ(process.exitCode(), 0) << process.readAll().toStdString();
    }
};

TEST_F(Export, WritesTheFilesOfTheCommandLine)
{
    struct Row
    {
        const char* package;
        const char* suffix;
        std::function<void(ExportSettings&)> change;
        QStringList arguments; // that stand for it
        int files;
    };
    const auto frames = [](ExportSettings& settings) {
        settings.timeStart = 8;
        settings.timeEnd = 11;
        settings.fps = 24;
    };
    const auto seconds = [](ExportSettings& settings) {
        settings.timeUnit = ExportSettings::TimeUnit::Second;
        settings.timeStart = 0.5;
        settings.timeEnd = 0.625;
        settings.fps = 24;
        settings.format = "png";
        settings.metadataOptions = MetadataChoices{MetadataChoices::Metadata::File}.toBits();
    };
    const auto jpeg = [](ExportSettings& settings) {
        settings.format = "jpg";
        settings.quality = 20;
        settings.pattern = "%P %U";
        settings.metadataOptions = MetadataChoices{MetadataChoices::Metadata::Disabled}.toBits();
    };
    const Row rows[] = {
        {"walls", "vlr", {}, {"--format", "tga", "--metadata", "embedded"}, 2},
        {"walls", "vlrar", {}, {"--format", "tga", "--metadata", "embedded"}, 2},
        {"walls", "vlrar", jpeg, {"--format", "jpg", "--quality", "20", "--pattern", "%P %U"}, 2},
        {"waves",
         "vlr",
         frames,
         {"--format", "tga", "--metadata", "embedded", "--frames", "8-11", "--fps", "24"},
         16},
        {"waves",
         "vlrar",
         seconds,
         {"--format", "png", "--metadata", "file", "--frames", "12-15", "--fps", "24"},
         32},
    };
    TestInstallation::settings()->setValue("session/dynCommonState", 7); // as the command line cooks
    openWindow();
    int number = 0;
    for (const Row& row : rows) {
        const QString package = putPackage(row.package, row.suffix);
        ASSERT_TRUE(window->loadFile(package));
        const bool isWalls = package.contains("walls");
        for (const auto& [uid, row] : tweaks().tweaks())
            if (row->identifier() == "$outputsize")
                row->applyValue(InputValue::fromInts(4, 4));
        tweak(isWalls ? "Depth" : "Height")->applyValue(InputValue::fromFloats(0.75f));
        Render& dialog = openDialog();
        ExportSettings settings;
        settings.dir = installation.path(QStringLiteral("window%1").arg(++number));
        settings.pattern = "";
        if (row.change)
            row.change(settings);
        dialog.applyExportSettings(settings);
        dialog.startSlot();
        ASSERT_TRUE(waitForEnd());
        const QString other = QStringLiteral("tool%1").arg(number);
        renderOnCommandLine(package, other,
                            row.arguments + QStringList{"--set", isWalls ? "depth=0.75" : "height=0.75"});
        const auto fromWindow = filesOf(QStringLiteral("window%1").arg(number));
        const auto fromTool = filesOf(other);
        EXPECT_EQ(fromWindow.size(), row.files) << number;
        EXPECT_EQ(fromWindow.keys(), fromTool.keys()) << number;
        for (auto file = fromTool.begin(); file != fromTool.end(); ++file)
            EXPECT_TRUE(fromWindow.value(file.key()) == *file) << number << ' ' << file.key().toStdString();
    }
}

} // namespace

} // namespace Zph::Applications::Player::Tests
