// The presets of the panel: what the menu offers, what applying and saving do to rows and files.

#include "applications/player/tweaks/presets/presets.h"

#include "applications/player/images/widgets/imageserverfactories.h"
#include "applications/player/output/exportsettingsholder.h"
#include "applications/player/presets/presetfile.h"
#include "applications/player/tweaks/presets/presetsave.h"
#include "applications/player/tweaks/presets/presetsettings.h"
#include "applications/player/tweaks/rollgraph.h"
#include "applications/player/tweaks/tests/tweakfixture.h"
#include "applications/player/tweaks/tweakimage.h"
#include "applications/player/tweaks/tweakslist.h"
#include "applications/player/tweaks/tweakstree.h"
#include "applications/player/tweaks/tweaktext.h"
#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QImage>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

using namespace Zph::Applications::Player;

namespace {

using Changes = std::vector<std::vector<int>>;

const QByteArray description =
    "<p><graphs><graph pkgurl='g' label='Wall'><inputs>"
    "<input uid='1' identifier='a'/><input uid='2' identifier='b'/><input uid='3' identifier='c'/>"
    "<input uid='4' identifier='t' default='old'/></inputs><vlrpresets>"
    "<vlrpreset label='Wet &amp; cold' pkgurl='g'><presetinput identifier='b' uid='99' type='4' value='7'/>"
    "<presetinput identifier='c' uid='3' type='0' value='1'/>"
    "<presetinput identifier='t' uid='4' type='6' value='new'/></vlrpreset></vlrpresets></graph>"
    "<graph pkgurl='h' label='Floor'><inputs><input uid='5' identifier='b'/></inputs><vlrpresets>"
    "<vlrpreset label='Oak' pkgurl='h'><presetinput identifier='b' uid='5' type='4' value='2'/></vlrpreset>"
    "</vlrpresets></graph></graphs></p>";

struct FakeExport : ExportSettingsHolder
{
    std::optional<ExportSettings> exportSettings() const override { return settings; }
    void applyExportSettings(const ExportSettings& applied) override { settings = applied; }
    std::optional<ExportSettings> settings;
};

struct PresetsOfPanel : testing::Test
{
    PresetsOfPanel() : presets(list.presets())
    {
        QObject::connect(&list, &TweaksList::tweakChangedSignal,
                         [this](std::vector<int> indexes) { changes.push_back(indexes); });
        list.build(
            package({{1, 4, nullptr}, {2, 4, nullptr}, {3, 4, nullptr}, {4, 6, nullptr}, {5, 4, nullptr}},
                    description));
        PresetSettings::presetsPath.write(folder.path());
        PresetSettings::mayaExportPath.write(folder.path());
    }

    TweakBase* tweak(quint32 uid) const { return list.tweaks().at(uid); }
    int value(quint32 uid) const { return tweak(uid)->value().intAt(0); }
    QString text() const { return qobject_cast<TweakText*>(tweak(4))->text(); }
    void change(quint32 uid, int value) const { tweak(uid)->applyValue(InputValue::fromInts(value)); }

    // The entries of the menu of a graph: "-" for a separator, "(...)" for what is greyed out.
    QStringList menu(const QString& graph) const
    {
        QStringList texts;
        for (const QAction* action : openMenu(graph)->actions())
            texts << (action->isSeparator() ? "-"
                      : action->isEnabled() ? action->text()
                                            : '(' + action->text() + ')');
        delete openMenu();
        return texts;
    }
    QMenu* openMenu() const { return list.findChild<QMenu*>(); }
    QMenu* openMenu(const QString& graph) const
    {
        delete openMenu();
        list.findChildren<RollGraph*>().at(graph == "g" ? 0 : 1)->presetsButton()->click();
        return openMenu();
    }
    QAction* entry(const QString& graph, const QString& text) const
    {
        for (QAction* action : openMenu(graph)->actions())
            if (action->text() == text)
                return action;
        ADD_FAILURE() << text.toStdString();
        return nullptr;
    }
    void choose(const QString& graph, const QString& text) const
    {
        entry(graph, text)->trigger();
        delete openMenu();
    }

    // Answers the next dialogs, one after the other.
    template<class Dialog> void answer(std::function<void(Dialog&)> reply)
    {
        answers.push_back([reply](QWidget& widget) {
            auto* dialog = qobject_cast<Dialog*>(&widget);
            if (dialog)
                reply(*dialog);
            else
                ADD_FAILURE() << "another dialog: " << widget.windowTitle().toStdString();
        });
        if (answers.size() == 1)
            QTimer::singleShot(10, [this] { answerNext(); });
    }
    void answerNext()
    {
        QWidget* dialog = QApplication::activeModalWidget();
        if (dialog && !answers.empty() && dialog != answered) {
            answered = dialog;
            QObject::connect(dialog, &QObject::destroyed, [this] { answered = nullptr; });
            const auto reply = answers.front();
            answers.erase(answers.begin());
            reply(*dialog);
        }
        if (!answers.empty())
            QTimer::singleShot(10, [this] { answerNext(); });
    }
    void answerFile(const QString& title, const QString& name)
    {
        answer<QFileDialog>([this, title, name](QFileDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle().toStdString(), title.toStdString());
            EXPECT_EQ(dialog.directory().absolutePath(), QDir(folder.path()).absolutePath());
            dialog.findChild<QLineEdit*>("fileNameEdit")->setText(name);
            dialog.findChild<QDialogButtonBox*>()->buttons().first()->click();
        });
    }
    void saveAs(const QString& name)
    {
        answer<PresetSave>([name](PresetSave& dialog) {
            dialog.findChildren<QLineEdit*>().first()->setText(name);
            dialog.accept();
        });
    }
    void answerWarning(const QString& title, const QString& text)
    {
        answer<QMessageBox>([title, text](QMessageBox& box) {
            EXPECT_EQ(box.windowTitle().toStdString(), title.toStdString());
            EXPECT_EQ(box.text().toStdString(), text.toStdString());
            box.accept();
        });
    }
    QStringList labelsIn(const QString& name) const
    {
        QString reason;
        QStringList labels;
        const auto read = readPresetFile(
            folder.filePath(name), [](quint32) -> const Input* { return nullptr; }, reason);
        if (read)
            for (const PresetDescription& preset : *read)
                labels << preset.label;
        return labels;
    }

    QTemporaryDir folder;
    TweaksList list;
    Presets& presets;
    Changes changes;
    std::vector<std::function<void(QWidget&)>> answers;
    QObject* answered = nullptr;
};

TEST_F(PresetsOfPanel, applyAsOneBatchAndComeBackByUndo)
{
    change(1, 4);
    change(3, 4);
    changes.clear();
    QAction* action = entry("g", "Wet && cold");
    EXPECT_EQ(action->statusTip().toStdString(), "Apply internal preset: 'Wet & cold'");
    action->trigger();
    EXPECT_EQ(changes, (Changes{{0, 1, 2, 3}}));
    EXPECT_EQ(value(1), 0) << "what the preset doesn't name goes back";
    EXPECT_EQ(value(2), 7) << "by identifier, whatever the uid";
    EXPECT_EQ(value(3), 0) << "another type resets";
    EXPECT_EQ(text(), "new");
    EXPECT_EQ(value(5), 0) << "another graph";
    EXPECT_EQ(presets.lastAppliedPreset(), "Wet & cold");

    EXPECT_FALSE(menu("h").last().startsWith("Undo"));
    choose("g", "Undo applying 'Wet && cold'");
    EXPECT_EQ(changes.size(), 2u);
    EXPECT_EQ(value(1), 4);
    EXPECT_EQ(value(2), 0);
    EXPECT_EQ(value(3), 4);
    EXPECT_EQ(text(), "old");
    EXPECT_EQ(presets.lastAppliedPreset(), "");
    EXPECT_EQ(menu("g").last(), "Export to Maya...");

    choose("h", "[Wall] Wet && cold");
    EXPECT_EQ(value(5), 7) << "the one input that both graphs have";
    list.toggleFreeze(true);
    changes.clear();
    choose("g", "Wet && cold");
    EXPECT_TRUE(changes.empty());
    list.toggleFreeze(false);
    EXPECT_EQ(changes, (Changes{{0, 1, 2, 3}}));
}

TEST_F(PresetsOfPanel, menuInItsOrder)
{
    PresetDescription own, other, stranger;
    own.label = "Own";
    own.pkgurl = "g";
    other.label = "Other";
    other.pkgurl = "pkg://elsewhere";
    other.inputs = {{"c", 77, 4, {}, {}}};
    stranger.label = "Stranger";
    stranger.inputs = {{"nothing", 1, 4, {}, {}}};
    presets.replaceFile("/p/f.old.vlrprs", {own, other, stranger});
    presets.replaceFile(Presets::metadataName(), {own});
    EXPECT_EQ(menu("g").join('\n').toStdString(), "(New File...)\n"
                                                  "Load File...\n"
                                                  "(Add Preset to File 'f')\n"
                                                  "-\n"
                                                  "Also apply Export path and options\n"
                                                  "-\n"
                                                  "Wet && cold\n"
                                                  "-\n"
                                                  "Own (f.old.vlrprs)\n"
                                                  "Own (<From Metadata>)\n"
                                                  "-\n"
                                                  "[Floor] Oak\n"
                                                  "-\n"
                                                  "[elsewhere] Other (f.old.vlrprs)\n"
                                                  "-\n"
                                                  "(Export to Maya...)");
    for (const auto& [text, tip] :
         {std::pair("[Floor] Oak",
                    "Apply compatible internal preset: 'Oak' (originally designed for graph 'Floor')"),
          std::pair("Own (f.old.vlrprs)", "Apply preset: 'Own' of file 'f.old.vlrprs'"),
          std::pair("[elsewhere] Other (f.old.vlrprs)",
                    "Apply compatible preset: 'Other' of file 'f.old.vlrprs' (originally designed for graph "
                    "'elsewhere')")})
        EXPECT_EQ(entry("g", text)->statusTip().toStdString(), tip);
    change(1, 4);
    EXPECT_EQ(menu("g").first(), "New File...");
    EXPECT_EQ(menu("h").first(), "(New File...)");

    for (const QAction* action : openMenu("g")->actions())
        EXPECT_EQ(action->icon().pixmap(16).isNull(), action->isSeparator() || action->isCheckable())
            << action->text().toStdString();
    list.build(package({{1, 4, nullptr}}, ""));
    EXPECT_EQ(presets.presets().size(), 4) << "those of files stay";
}

TEST_F(PresetsOfPanel, savedPresetsComeBack)
{
    change(1, 4);
    change(2, -5);
    answerFile("Save as/Update existing Vellor Presets file", "mine");
    saveAs("First");
    choose("g", "New File...");
    EXPECT_EQ(labelsIn("mine.vlrprs"), QStringList("First"));
    ASSERT_EQ(presets.fileList(), QStringList(folder.filePath("mine.vlrprs")));
    ASSERT_EQ(presets.presets().last().inputs.size(), 2);
    EXPECT_EQ(presets.presets().last().pkgurl, "g");

    list.resetToDefault();
    choose("g", "First (mine.vlrprs)");
    EXPECT_EQ(value(1), 4);
    EXPECT_EQ(value(2), -5);

    change(1, 6);
    saveAs("Second");
    choose("g", "Add Preset to File 'mine'");
    saveAs("First");
    choose("g", "Add Preset to File 'mine'");
    EXPECT_EQ(labelsIn("mine.vlrprs"), QStringList({"First", "Second"}));
    EXPECT_EQ(presets.presets().at(2).inputs.first().value.intAt(0), 6) << "replaced in its place";

    answer<PresetSave>([](PresetSave& dialog) { dialog.reject(); });
    choose("g", "Add Preset to File 'mine'");
    answerFile("Open Vellor Presets file", "mine.vlrprs");
    choose("g", "Load File...");
    EXPECT_EQ(presets.presets().size(), 4) << "those of before are dropped";
}

TEST_F(PresetsOfPanel, whatFailsChangesNothing)
{
    const QString path = folder.filePath("bad.vlrprs");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<vlrpresets><vlrpreset>");
    file.close();
    answerFile("Open Vellor Presets file", "bad.vlrprs");
    answerWarning("Presets loading", "Cannot open '" + path + "' file: invalid XML format.");
    choose("g", "Load File...");
    change(1, 4);
    answerFile("Save as/Update existing Vellor Presets file", "bad");
    answerWarning("Presets loading", "Cannot open '" + path + "' file: invalid XML format.");
    choose("g", "New File...");
    EXPECT_EQ(file.size(), 23) << "a file that isn't understood is not written over";
    EXPECT_TRUE(presets.fileList().isEmpty());

    presets.replaceFile(folder.filePath("gone/p.vlrprs"), {});
    saveAs("Lost");
    answerWarning("Presets saving",
                  "Cannot create '" + folder.filePath("gone/p.vlrprs") + "' file: I/O Error.");
    choose("g", "Add Preset to File 'p'");
    EXPECT_EQ(presets.presets().size(), 2);
}

TEST_F(PresetsOfPanel, exportSettingsGoAlong)
{
    FakeExport exported;
    exported.settings = ExportSettings();
    exported.settings->dir = "/now";
    presets.setExportSettings(&exported);
    PresetDescription preset;
    preset.label = "With";
    preset.pkgurl = "g";
    preset.exportOptions = ExportSettings();
    preset.exportOptions->dir = "/then";
    const QString path = folder.filePath("e.vlrprs");
    ASSERT_EQ(writePresetFile(path, {preset}), "");
    presets.replaceFile(path, {preset});
    choose("g", "With (e.vlrprs)");
    EXPECT_EQ(exported.settings->dir, "/now") << "not asked for";
    choose("g", "Also apply Export path and options");
    EXPECT_TRUE(entry("g", "Also apply Export path and options")->isChecked());
    FakeExport later; // the user opens the dialog when the preset has been applied
    const TweaksTree noRows;
    Presets fresh(noRows);
    fresh.setAppliesExportOptions(true);
    fresh.apply("g", preset);
    fresh.setExportSettings(&later);
    ASSERT_TRUE(later.settings);
    EXPECT_EQ(later.settings->dir, "/then");
    choose("g", "With (e.vlrprs)");
    EXPECT_EQ(exported.settings->dir, "/then");
    choose("g", "Undo applying 'With'");
    EXPECT_EQ(exported.settings->dir, "/now");

    change(1, 4);
    for (const bool keep : {true, false}) {
        answer<PresetSave>([keep](PresetSave& dialog) {
            dialog.findChildren<QLineEdit*>().first()->setText("With");
            dialog.findChild<QCheckBox*>()->setChecked(keep);
            dialog.accept();
        });
        choose("g", "Add Preset to File 'e'");
        ASSERT_EQ(presets.presets().size(), 3);
        const auto& saved = presets.presets().at(2).exportOptions;
        EXPECT_EQ(saved ? saved->dir : QString(), keep ? "/now" : "");
    }
}

TEST_F(PresetsOfPanel, mayaFile)
{
    change(2, -5);
    answerFile("Export as maya preset file", "look");
    choose("g", "Export to Maya...");
    QFile file(folder.filePath("look.mel"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().toStdString(), "//Generated by Vellor Player\nstartAttrPreset(\"vellor\"); \n"
                                            "blendAttr \"dyn_b\" -5;\nendAttrPreset();\n");
}

TEST_F(PresetsOfPanel, picturesGoAlongByTheirFiles)
{
    Orn::Image::Codec::registerDefaultCodecs(Orn::Image::Codec::SurfaceCodecManager::instance());
    registerDefaultImageServerFactories();
    list.build(package({{1, 5, nullptr}, {2, 4, nullptr}},
                       "<p><graphs><graph pkgurl='g' label='G'><inputs><input uid='1' identifier='photo'/>"
                       "<input uid='2' identifier='b'/></inputs></graph></graphs></p>"));
    const auto* photo = qobject_cast<TweakImage*>(tweak(1));
    QImage image(4, 2, QImage::Format_RGB32);
    image.fill(Qt::red);
    const QString path = folder.filePath("photo.png");
    ASSERT_TRUE(image.save(path));

    PresetDescription with, without, gone;
    with.label = "With";
    with.inputs = {{"photo", 1, 5, {}, path}};
    without.inputs = {{"b", 2, 4, InputValue::fromInts(1), {}}};
    gone.inputs = {{"photo", 1, 5, {}, folder.filePath("gone.png")}};
    presets.apply("g", with);
    EXPECT_EQ(photo->filePath(), path);
    EXPECT_EQ(collectValues(presets.tweaksOfGraph("g")).first().text, path);
    presets.undo("g");
    EXPECT_EQ(photo->filePath(), "");
    presets.apply("g", with);
    presets.apply("g", without);
    EXPECT_EQ(photo->filePath(), path) << "stays where it isn't named";
    answerWarning("Error loading bitmap",
                  "Cannot open '" + folder.filePath("gone.png") + "' file.\nBitmap format not handled.");
    presets.apply("g", gone);
    EXPECT_EQ(photo->filePath(), path);
    EXPECT_EQ(value(2), 0);
    list.applyMetadataPreset(gone, "g");
    EXPECT_EQ(photo->filePath(), path) << "not a matter of metadata";
}

TEST_F(PresetsOfPanel, metadataLeavesNothingToUndo)
{
    PresetDescription preset;
    preset.label = "picture";
    preset.pkgurl = "g";
    preset.inputs = {{"b", 0, 4, InputValue::fromInts(3), {}}};
    list.applyMetadataPreset(preset, "g");
    EXPECT_EQ(value(2), 3);
    EXPECT_TRUE(menu("g").contains("picture (<From Metadata>)"));
    EXPECT_FALSE(presets.undoLabel("g"));
}

TEST(PresetSave, nameAndListFollowEachOther)
{
    PresetDescription one, two;
    one.label = "One";
    one.description = "first";
    two.label = "New";
    two.exportOptions = ExportSettings();
    PresetSave dialog("/f/p.vlrprs", {one, two}, false);
    auto& list = *dialog.findChild<QListWidget*>();
    const auto edits = dialog.findChildren<QLineEdit*>();
    auto& removal = *dialog.findChild<QToolButton*>();
    auto* save = dialog.findChild<QDialogButtonBox*>()->buttons().first();
    if (save->text() != "Save")
        save = dialog.findChild<QDialogButtonBox*>()->buttons().last();
    EXPECT_EQ(dialog.windowTitle(), "Preset File 'p.vlrprs'");
    EXPECT_EQ(list.count(), 3);
    EXPECT_EQ(list.currentRow(), 2);
    EXPECT_FALSE(removal.isEnabled() || save->isEnabled());
    EXPECT_TRUE(dialog.findChild<QCheckBox*>()->isHidden());

    edits[0]->setText("One");
    EXPECT_EQ(list.currentRow(), 0);
    EXPECT_EQ(edits[1]->text(), "first");
    EXPECT_TRUE(removal.isEnabled() && save->isEnabled());
    edits[0]->setText("One more");
    EXPECT_EQ(list.currentRow(), 2);
    EXPECT_EQ(edits[0]->text(), "One more") << "what is typed stays";
    EXPECT_EQ(edits[1]->text(), "") << "and nothing of the other's";
    edits[0]->setText("New");
    EXPECT_EQ(list.currentRow(), 1) << "a preset of that name, and not the entry for a new one";
    PresetDescription saved;
    saved.inputs.resize(1);
    auto presets = dialog.presetsWith(saved, {});
    ASSERT_EQ(presets.size(), 2);
    EXPECT_EQ(presets[1].inputs.size(), 1);
    EXPECT_TRUE(presets[1].exportOptions) << "the user could not choose";

    list.setCurrentRow(0);
    EXPECT_EQ(edits[0]->text(), "One");
    removal.click();
    EXPECT_EQ(list.count(), 2);
    EXPECT_EQ(list.currentRow(), 1);
    EXPECT_EQ(edits[0]->text(), "");
    edits[0]->setText("One");
    presets = dialog.presetsWith(saved, {});
    ASSERT_EQ(presets.size(), 2);
    EXPECT_EQ(presets[1].label, "One") << "at the end: the former one is gone";
}

} // namespace
