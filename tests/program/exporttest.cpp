// Exports from the window: the same files as the command line writes, whatever is asked for, and what a user
// can do meanwhile.

#include "applications/player/metadata/metadatachoices.h"
#include "applications/player/output/dialog/render.h"
#include "applications/player/output/dialog/timecontrols.h"
#include "applications/player/tweaks/tweakbase.h"
#include "applications/player/tweaks/tweakslist.h"
#include "orncommon/image/codec/surfacecodecmanager.h"
#include "tests/program/programfixture.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QMouseEvent>
#include <QProcess>
#include <QPushButton>
#include <QStatusBar>
#include <QTreeWidget>

#include <atomic>
#include <stdexcept>
#include <thread>

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
        const char* packing = "";
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
        {"walls", "vlr", {}, {"--metadata", "embedded", "--template", "unreal"}, 2, "unreal"},
    };
    const QString templates = QStringLiteral("resources/templates");
    ASSERT_TRUE(QDir(installation.path()).mkpath(templates));
    put(templates + "/unreal.json", readFile(VELLOR_TEST_BINARIES "/" + templates + "/unreal.json"));
    TestInstallation::settings()->setValue("session/dynCommonState", 7); // as the command line cooks
    openWindow();
    int number = 0;
    for (const Row& row : rows) {
        const QString package = putPackage(row.package, row.suffix);
        ASSERT_TRUE(window->loadFile(package));
        const bool isWalls = package.contains("walls");
        for (const auto& [uid, tweak] : tweaks().tweaks())
            if (tweak->identifier() == "$outputsize")
                tweak->applyValue(InputValue::fromInts(4, 4));
        tweak(isWalls ? "Depth" : "Height")->applyValue(InputValue::fromFloats(0.75f));
        Render& dialog = openDialog();
        ExportSettings settings;
        settings.dir = installation.path(QStringLiteral("window%1").arg(++number));
        settings.pattern = "";
        if (row.change)
            row.change(settings);
        dialog.applyExportSettings(settings);
        dialog.setPackingTemplate(row.packing);
        dialog.startSlot();
        ASSERT_TRUE(waitForEnd());
        EXPECT_EQ(progressText(), "Export complete.") << number;
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

TEST_F(Export, KeepsWhatIsEmbeddedOnlyOnceInOneFileOfEachGraph)
{
    openWindow();
    ASSERT_TRUE(window->loadFile(putPackage("waves", "vlrar")));
    for (const auto& [uid, tweak] : tweaks().tweaks())
        if (tweak->identifier() == "$outputsize")
            tweak->applyValue(InputValue::fromInts(4, 4));
    tweak("Height")->applyValue(InputValue::fromFloats(0.75f));
    Render& dialog = openDialog();
    ExportSettings settings;
    settings.timeEnd = 1;
    settings.dir = installation.path("once");
    settings.pattern = "%G %I";
    settings.metadataOptions =
        MetadataChoices{MetadataChoices::Metadata::Embedded, MetadataChoices::Values::EmbeddedOnce,
                        MetadataChoices::Archive::EmbeddedOnce}
            .toBits();
    dialog.applyExportSettings(settings);
    dialog.startSlot();
    ASSERT_TRUE(waitForEnd());
    QStringList archives, values, references;
    const auto files = filesOf("once");
    for (auto file = files.begin(); file != files.end(); ++file) {
        if (file->contains("vlrarcontent=\""))
            archives << file.key();
        if (file->contains("<vlrpreset"))
            values << file.key();
        if (file->contains("vlrarembeddedref=\"") && file->contains("presetembeddedref=\""))
            references << file.key();
    }
    EXPECT_EQ(archives, values);
    EXPECT_EQ(archives.size() + references.size(), files.size());
    ASSERT_EQ(archives.size(), 2) << archives.join(' ').toStdString();
    for (const QString& holder : archives)
        EXPECT_TRUE(holder.endsWith("_0000.tga")) << "the first frame: " << holder.toStdString();
    EXPECT_TRUE(files.value(archives.at(1)).contains("outputidentifier=\"diffuse\""))
        << "the one that is called like a colour";

    ASSERT_TRUE(window->loadFile(installation.path("once/" + references.last())));
    EXPECT_EQ(tweak("Height")->value().floatAt(0), 0.75f) << "by way of its holder";
}

TEST_F(Export, RangesOfAnAnimationFollowTheirUnit)
{
    openWindow();
    ASSERT_TRUE(window->loadFile(putPackage("waves", "vlrar")));
    Render& dialog = openDialog();
    EXPECT_EQ(dialog.windowTitle(), "Render animation as Bitmap(s)");
    EXPECT_EQ(dialog.exportSettings()->timeEnd, 200.0) << "the timeline's";
    auto& controls = *dialog.findChild<TimeControls*>();
    ASSERT_TRUE(controls.isVisible());
    auto& unit = *controls.findChild<QComboBox*>();
    const auto spin = [&](const char* name) -> QDoubleSpinBox& {
        for (auto* found : controls.findChildren<QDoubleSpinBox*>())
            if (found->accessibleName() == name)
                return *found;
        throw std::logic_error(name);
    };
    auto& count = *controls.findChild<QSpinBox*>();
    const auto range = [&] {
        return QStringList{spin("Start").text(), spin("End").text(), count.text()}.join(' ').toStdString();
    };
    spin("Fps").setValue(24.0);
    spin("Start").setValue(12.0);
    spin("End").setValue(35.0);
    EXPECT_EQ(range(), "12 35 24") << "both ends belong to it";
    unit.setCurrentText("Seconds");
    EXPECT_EQ(range(), "0.5 1.45833 24") << "35 / 24";
    count.setValue(13);
    EXPECT_EQ(range(), "0.5 1 13");
    spin("Fps").setValue(48.0);
    EXPECT_EQ(range(), "0.5 1 25") << "the time stays, the frames are more";
    spin("End").setValue(0.25);
    EXPECT_EQ(range(), "0.5 0.25 1") << "an end before the start leaves one frame";
    spin("End").setValue(1.0);
    unit.setCurrentText("Frames");
    EXPECT_EQ(range(), "24 48 25");
}

// A package of two pictures by an engine that plays a script.
const QByteArray script = "testengine\noutput 21 5 4 4 0\noutput 22 5 4 4 0\n";
const QByteArray scriptDescription =
    R"(<vlrdescription formatversion="1.0"><graphs><graph pkgurl="pkg://g" label="G"><outputs>
 <output uid="21" identifier="one" type="5"><outputgui label="Same"/></output>
 <output uid="22" identifier="two" type="5"><outputgui label="Same"/></output>
</outputs></graph></graphs>
<outputs><output index="0" uid="21"/><output index="1" uid="22"/></outputs></vlrdescription>)";

class ScriptedExport : public Export
{
protected:
    ScriptedExport() { openWindow(testEngine()); }

    Render& openScript(const QByteArray& more = {})
    {
        put("script.xml", scriptDescription);
        EXPECT_TRUE(window->loadFile(put("script.vlrbin", script + more))) << consoleText().toStdString();
        Render& dialog = openDialog();
        ExportSettings settings;
        settings.dir = installation.path("out");
        settings.format = "png";
        dialog.applyExportSettings(settings);
        return dialog;
    }
};

TEST_F(ScriptedExport, ListsItsFilesAndDoesItAgainUnseen)
{
    EXPECT_FALSE(action("Re-Export (w/ previous settings)")->isEnabled());
    Render& dialog = openScript();
    EXPECT_TRUE(action("Re-Export (w/ previous settings)")->isEnabled());
    EXPECT_EQ(dialog.windowTitle(), "Export as Bitmap(s)");
    button("Export")->click();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(progressText(), "Export complete.");
    QStringList names = results();
    names.sort();
    EXPECT_EQ(names, QStringList({"g_Same.png", "g_Same[2].png"}));
    EXPECT_EQ(QStringList(filesOf("out").keys()), names);
    EXPECT_NE(button("Back"), nullptr);
    button("Close")->click();
    EXPECT_FALSE(dialog.isVisible());

    QDir(installation.path("out")).removeRecursively();
    action("Re-Export (w/ previous settings)")->trigger();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(QStringList(filesOf("out").keys()), names);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(status(), "Export complete.");
}

TEST_F(ScriptedExport, WritesWhatIsCheckedAndNothingWithoutAnyOutput)
{
    Render& dialog = openScript();
    ExportSettings settings = *dialog.exportSettings();
    settings.disabled = {21};
    dialog.applyExportSettings(settings);
    auto* tree = dialog.findChild<QTreeWidget*>();
    EXPECT_EQ(tree->topLevelItem(0)->checkState(0), Qt::PartiallyChecked);
    button("Export")->click();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(filesOf("out").keys(), QList<QString>({"g_Same.png"}));

    button("Back")->click();
    tree->topLevelItem(0)->setCheckState(0, Qt::Unchecked);
    EXPECT_EQ(dialog.exportSettings()->disabled, (std::set<quint32>{21, 22}));
    answerDialog([](QDialog& box) {
        EXPECT_EQ(dynamic_cast<QMessageBox&>(box).text(), "At least one output to export must be selected.");
        box.accept();
    });
    button("Export")->click();
    EXPECT_FALSE(dialog.isRunning());
}

TEST_F(ScriptedExport, TellsOfEachFileThatCannotBeWritten)
{
    Render& dialog = openScript();
    ExportSettings settings = *dialog.exportSettings();
    settings.dir = put("nofolder", "a file") + "/out";
    dialog.applyExportSettings(settings);
    const auto answer = [](QMessageBox::StandardButton choice) {
        return [choice](QDialog& question) {
            auto& box = dynamic_cast<QMessageBox&>(question);
            EXPECT_TRUE(box.text().startsWith("Cannot save bitmap '")) << box.text().toStdString();
            EXPECT_EQ(box.windowTitle(), "Bitmap I/O Error");
            box.button(choice)->click();
        };
    };
    answerDialog(answer(QMessageBox::Ignore));
    answerDialog(answer(QMessageBox::Ignore));
    button("Export")->click();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(progressText(), "Export complete. 2 of the files could not be written.");
    button("Back")->click();

    answerDialog(answer(QMessageBox::Abort));
    button("Export")->click();
    ASSERT_TRUE(waitForEnd());
    EXPECT_NE(button("Export"), nullptr) << "back at the settings";
}

TEST_F(ScriptedExport, AnOutputThatTheEngineFailsAtIsToldOnce)
{
    openScript("fail fetch 21 8\n");
    answerDialog([](QDialog& dialog) {
        auto& box = dynamic_cast<QMessageBox&>(dialog);
        EXPECT_EQ(box.text(), "Invalid output 'Same'.");
        EXPECT_EQ(box.windowTitle(), "Bitmap Internal Error");
        box.button(QMessageBox::Ignore)->click();
    });
    button("Export")->click();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(filesOf("out").size(), 1);
}

/// Codecs that misbehave: "slow" encodes in memory until it is let go, "listed" is written by nobody.
class OddCodecs : public Orn::Image::Codec::SurfaceCodecFactory
{
public:
    static inline std::atomic<int> begun{0};
    static inline std::atomic<bool> mayEnd{false};

    int capabilities(QIODevice&, const QByteArray& format) override
    {
        return format == "slow" ? CanWrite : 0;
    }
    QSharedPointer<Orn::Image::Codec::SurfaceCodec> create(QIODevice& device, const QByteArray&) override
    {
        return QSharedPointer<Slow>::create(device);
    }
    QList<Orn::Image::Codec::ImageFormat> readFormats() const override { return {}; }
    QList<Orn::Image::Codec::ImageFormat> writeFormats() const override
    {
        return {{"Slow", "slow"}, {"Listed", "listed"}};
    }

private:
    class Slow : public Orn::Image::Codec::SurfaceCodec
    {
    public:
        explicit Slow(QIODevice& device) : m_device(device) {}

    protected:
        bool doRead(QSharedPointer<Orn::Surfaces::Surface>&, Orn::Image::Codec::SurfaceCodecOptions*) override
        {
            return false;
        }
        bool doWrite(const QSharedPointer<Orn::Surfaces::Surface>&,
                     const Orn::Image::Codec::SurfaceCodecOptions*) override
        {
            ++begun;
            while (!mayEnd)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            return m_device.write("slow") == 4;
        }

    private:
        QIODevice& m_device;
    };
};

class OddExport : public ScriptedExport
{
protected:
    static void SetUpTestSuite()
    {
        Orn::Image::Codec::SurfaceCodecManager::instance().registerFactory(
            QSharedPointer<OddCodecs>::create());
    }
    ~OddExport() override { OddCodecs::mayEnd = true; }

    void exportAs(const QString& format)
    {
        ExportSettings settings = *dialog().exportSettings();
        settings.format = format;
        dialog().applyExportSettings(settings);
        button("Export")->click();
    }
};

TEST_F(OddExport, CancelWaitsForNoEncoder)
{
    openScript();
    exportAs("slow");
    ASSERT_TRUE(waitFor([] { return OddCodecs::begun > 0; }));
    button("Cancel")->click();
    ASSERT_TRUE(waitForEnd());
    ASSERT_NE(button("Export"), nullptr);
    exportAs("png"); // while the other is at it
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(results().size(), 2);
    OddCodecs::mayEnd = true;
    closeWindow();
    EXPECT_EQ(filesOf("out").keys(), QList<QString>({"g_Same.png", "g_Same[2].png"}));
}

TEST_F(OddExport, TellsOfAFormatThatNobodyWrites)
{
    openScript();
    answerDialog([](QDialog& question) {
        auto& box = dynamic_cast<QMessageBox&>(question);
        EXPECT_EQ(box.text(), "'listed' format not handled.");
        EXPECT_EQ(box.windowTitle(), "Bitmap Codec Error");
        box.button(QMessageBox::Abort)->click();
    });
    exportAs("listed");
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(filesOf("out").isEmpty());
    EXPECT_NE(button("Export"), nullptr);
}

TEST_F(ScriptedExport, ClosingTheWindowEndsIt)
{
    Render& dialog = openScript("progress 4 300\n");
    QObject::connect(window->statusBar(), &QStatusBar::messageChanged, &dialog, [&](const QString& text) {
        if (window->isVisible() && dialog.isRunning() && text.endsWith("%..."))
            window->close();
    });
    button("Export")->click();
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(engineLog.take().contains("Stop mode=1"));
    closeWindow();
    EXPECT_TRUE(filesOf("out").isEmpty());
}

TEST_F(ScriptedExport, CancelWorksInsideAGeneration)
{
    Render& dialog = openScript("progress 4 300\n");
    bool isCancelled = false;
    QObject::connect(window->statusBar(), &QStatusBar::messageChanged, &dialog, [&](const QString& text) {
        if (isCancelled || !dialog.isRunning() || !text.startsWith("Generating ") || !text.endsWith("%..."))
            return;
        isCancelled = true;
        // A click as the window system brings it; one on the window behind is dropped.
        for (QWidget* target : {static_cast<QWidget*>(button("Cancel")), static_cast<QWidget*>(window.get())})
            for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
                QCoreApplication::postEvent(
                    target, new QMouseEvent(type, QPointF(5, 5), Qt::LeftButton,
                                            type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                                            Qt::NoModifier));
    });
    button("Export")->click();
    EXPECT_TRUE(isCancelled);
    EXPECT_TRUE(engineLog.take().contains("Stop mode=1"));
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(status().toStdString(), "Export cancelled.");
    EXPECT_TRUE(filesOf("out").isEmpty());
    EXPECT_NE(button("Export"), nullptr);
}

} // namespace

} // namespace Zph::Applications::Player::Tests
