#include "applications/player/tweaks/presets/presetsmenu.h"

#include "applications/player/tweaks/presets/presets.h"
#include "applications/player/tweaks/sharedicon.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMenu>
#include <QPointer>
#include <QStatusTipEvent>

#include <functional>

namespace Zph::Applications::Player {

namespace {

const QString playerImages = QStringLiteral(":/zph/applications/player/images/");
const QString editorImages = QStringLiteral(":/zph/editor/gui/images/");
const QString guiIcons = QStringLiteral(":/orn/gui/icons/");

// A preset of the menu: whether it came with the package, and whether it was made for this graph.
enum class Origin
{
    Internal,
    File,
    CompatibleInternal,
    CompatibleFile
};

class PresetsMenu : public QMenu
{
    Q_DECLARE_TR_FUNCTIONS(Zph::Applications::Player::Presets)

public:
    // The dialogs stand in front of `window`, which is the parent too, because a new package that comes in
    // meanwhile takes the button away.
    PresetsMenu(Presets& presets, const QString& graphKey, QWidget* window);

private:
    QAction* add(const QString& icon, const QString& text, std::function<void()> run);
    void showStatusTip(const QString& text);
    void addFileEntries(bool isAnyChanged);
    void addPresets();
    void addPreset(const PresetDescription& preset, Origin origin);

    Presets& m_presets;
    QString m_graphKey;
    QPointer<QWidget> m_window;
};

PresetsMenu::PresetsMenu(Presets& presets, const QString& graphKey, QWidget* window)
    : QMenu(window), m_presets(presets), m_graphKey(graphKey), m_window(window)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setToolTipsVisible(true);
    const bool anyChanged = isAnyChanged(m_presets.tweaksOfGraph(graphKey));
    addFileEntries(anyChanged);
    addSeparator();
    QAction* exports = add({}, tr("Also apply Export path and options"),
                           [this] { m_presets.setAppliesExportOptions(!m_presets.appliesExportOptions()); });
    exports->setCheckable(true);
    exports->setChecked(m_presets.appliesExportOptions());
    addSeparator();
    addPresets();
    add(editorImages + "saveas.svg", tr("Export to Maya..."), [this] {
        m_presets.exportToMaya(m_window, m_graphKey);
    })->setEnabled(anyChanged);
    if (const auto label = m_presets.undoLabel(graphKey)) {
        addSeparator();
        add(playerImages + "undo.svg", tr("Undo applying '%1'").arg(*label), [this] {
            m_presets.undo(m_graphKey);
        })->setStatusTip(tr("Bring back the values from before the preset"));
    }
    // A popup that nobody's menu opened tells its tips to itself alone.
    connect(this, &QMenu::hovered, this, [this](QAction* action) { showStatusTip(action->statusTip()); });
    connect(this, &QMenu::aboutToHide, this, [this] { showStatusTip({}); });
}

void PresetsMenu::showStatusTip(const QString& text)
{
    QStatusTipEvent tip(text);
    if (m_window)
        QCoreApplication::sendEvent(m_window, &tip);
}

QAction* PresetsMenu::add(const QString& icon, const QString& text, std::function<void()> run)
{
    QAction* action = addAction(text.simplified().replace('&', QLatin1String("&&")));
    if (!icon.isEmpty())
        action->setIcon(sharedIcon(icon));
    connect(action, &QAction::triggered, this, std::move(run));
    return action;
}

void PresetsMenu::addFileEntries(bool isAnyChanged)
{
    add(editorImages + "saveas.svg", tr("New File..."), [this] {
        m_presets.savePresetIntoFile(m_window, m_graphKey);
    })->setEnabled(isAnyChanged);
    add(guiIcons + "fileload.svg", tr("Load File..."), [this] { m_presets.loadPresetsFile(m_window); });
    for (const QString& file : m_presets.fileList()) {
        if (file.startsWith('<'))
            continue;
        QAction* action =
            add(editorImages + "save.svg", tr("Add Preset to File '%1'").arg(QFileInfo(file).baseName()),
                [this, file] { m_presets.savePresetIntoFile(m_window, m_graphKey, file); });
        action->setEnabled(isAnyChanged);
        action->setStatusTip(file);
    }
}

void PresetsMenu::addPresets()
{
    const Tweaks tweaks = m_presets.tweaksOfGraph(m_graphKey);
    QVector<QVector<PresetDescription>> groups(4);
    for (const PresetDescription& preset : m_presets.presets()) {
        const bool isOwn = preset.pkgurl == m_graphKey;
        const bool isInternal = preset.fileName.isEmpty();
        if (!isOwn && !isCompatible(preset, tweaks))
            continue;
        const Origin origin = isOwn ? (isInternal ? Origin::Internal : Origin::File)
                                    : (isInternal ? Origin::CompatibleInternal : Origin::CompatibleFile);
        groups[int(origin)].append(preset);
    }
    for (int origin = 0; origin < groups.size(); ++origin) {
        for (const PresetDescription& preset : qAsConst(groups[origin]))
            addPreset(preset, Origin(origin));
        if (!groups[origin].isEmpty())
            addSeparator();
    }
}

void PresetsMenu::addPreset(const PresetDescription& preset, Origin origin)
{
    const QString graph = m_presets.graphLabel(preset.pkgurl);
    const QString file = QFileInfo(preset.fileName).fileName();
    QString icon, text, tip;
    switch (origin) {
    case Origin::Internal:
        icon = "presetro.svg";
        text = preset.label;
        tip = tr("Apply internal preset: '%1'").arg(preset.label);
        break;
    case Origin::File:
        icon = "preset.svg";
        text = tr("%1 (%2)").arg(preset.label, file);
        tip = tr("Apply preset: '%1' of file '%2'").arg(preset.label, file);
        break;
    case Origin::CompatibleInternal:
        icon = "presetrocomp.svg";
        text = tr("[%2] %1").arg(preset.label, graph);
        tip = tr("Apply compatible internal preset: '%1' (originally designed for graph '%3')")
                  .arg(preset.label, graph);
        break;
    case Origin::CompatibleFile:
        icon = "presetcomp.svg";
        text = tr("[%2] %1 (%3)").arg(preset.label, graph, file);
        tip = tr("Apply compatible preset: '%1' of file '%2' (originally designed for graph '%3')")
                  .arg(preset.label, file, graph);
        break;
    }
    QAction* action = add(playerImages + icon, text, [this, preset] { m_presets.apply(m_graphKey, preset); });
    action->setStatusTip(tip);
    action->setToolTip(plainToolTip(preset.description));
}

} // namespace

void popUpPresetsMenu(Presets& presets, QWidget* button, const QString& graphKey)
{
    auto* menu = new PresetsMenu(presets, graphKey, button->window());
    menu->popup(button->mapToGlobal(QPoint(0, button->height())));
}

} // namespace Zph::Applications::Player
