#pragma once

#include "applications/player/tweaks/tweakstree.h"
#include "orncommon/gui/layoutwidget.h"

#include <list>
#include <set>
#include <vector>

class QFrame;
class QSignalMapper;
class QToolButton;
class QVBoxLayout;

namespace Zph::Applications::Player {

class InputSink;
class Presets;
struct PresetDescription;
class TweakImage;

// The panel that holds all tweaks of the loaded package.
//
// Changes of the rows leave it as one signal with engine indexes, at once, or held back in their order while
// the panel is frozen by its button, while a batch (a preset, a reset) goes on, and while the timeline is
// busy. What was held back leaves as one signal when the reason is gone. Duplicates are kept: how often an
// input changed is nobody's business, that it did is.
//
// It reads the process-wide state (Static) for diagnostics, size limit, slider tracking and the busy
// timeline, and keeps one setting, whether pins are displayed. Main thread.
class TweaksList : public Orn::Gui::LayoutWidget
{
    Q_OBJECT

public:
    enum Flag : quint8
    {
        PinsDisplayed = 0x01, // then taken from the settings
        FreezeButton = 0x04,
        ResetButton = 0x08,
        TrackingButton = 0x10
    };

    explicit TweaksList(quint8 flags = FreezeButton | ResetButton | TrackingButton,
                        QWidget* parent = nullptr);
    ~TweaksList() override;

    // Makes the rows of a package in place of those there. A freeze stays, what it held back is dropped.
    // `remote` tells where the package came from, for the words on an empty panel.
    void build(const PackageModel& package, bool remote = false);
    // Drops all rows and disables the panel.
    void clear();

    // Hands every changed input to the engine, in uid order.
    void applyAll(InputSink& engine);

    bool anyTimeDependent() const;
    bool anyImage() const;

    // Offers a picture's file to the rows of images: to the one at `position`, in global coordinates, or to
    // the only one, or else to the one that the user chooses in a menu. False when there is no such row. The
    // file is opened when the caller's event is over.
    bool dropImage(const QString& path, const QPoint& position);

    Presets& presets() const { return *m_presets; }
    // Gives the rows of a graph, save pictures, the values that an exported bitmap carried.
    void applyMetadataPreset(const PresetDescription& preset, const QString& graphKey);

    const std::map<quint32, TweakBase*>& tweaks() const { return m_tree.tweaks; }
    bool isFrozen() const { return m_frozen; }

    // Evaluates the conditions of all rows and outputs anew.
    void updateVisibility();
    // The uids of the outputs that their conditions hide now.
    const std::set<quint32>& hiddenOutputs() const { return m_hiddenOutputs; }

    QSize minimumSizeHint() const override { return {350, 200}; }

signals:
    void tweakChangedSignal(std::vector<int> indexes);
    void hiddenOutputsChanged();
    // Asks the pinned rows to append their indexes.
    void getActiveTweaksBridge(std::list<size_t>& indexList);
    // The user typed a time into a row.
    void timeChangedSignal(float time);
    // The timeline starts and ends to move; raised from outside.
    void timeChangeBegun();
    void timeChangeEnded();
    void pinUnpinAllSignal(bool pinned);

public slots:
    // Gives the time, in seconds, to every row, and tells of all inputs that follow it at once.
    void setTimeChanged(float time);
    void tweakChanged(int index);
    void toggleTrack(bool onReleaseOnly);
    void toggleFreeze(bool frozen);
    void showPinsSignal(bool displayed);
    void resetToDefault();
    // Opens the menu of the presets for a graph at its button.
    void menuPreset(const QString& graphKey);
    // Holds changes back from true to false, unless the user froze the panel before.
    void batchTweakUpdate(bool begin);

private:
    QFrame* makeToolbar();
    QWidget* makeScrollArea();
    QToolButton* makeButton(QFrame* toolbar, const QString& icon, const QString& toolTip);
    void addFreezeButton(QFrame* toolbar);
    void addPinButtons(QFrame* toolbar);
    TweakContext context() const;
    TweakImage* imageTweakAt(const QPoint& position) const;
    std::vector<TweakImage*> imageTweaks() const;
    void dropTree();
    void connectTweak(TweakBase* tweak);
    void connectGraphRolls();
    void raiseChanges(const std::vector<int>& indexes);
    void releasePending();
    bool pinsDisplayed() const { return m_flags & PinsDisplayed; }

    quint8 m_flags;
    QSignalMapper* m_presetMapper;
    QToolButton* m_showPinsButton = nullptr;
    QToolButton* m_pinAllButton = nullptr;
    QVBoxLayout* m_tweaksLayout = nullptr;
    QWidget* m_content = nullptr;
    TweaksTree m_tree;
    Presets* m_presets; // of m_tree
    QVector<PackageOutput> m_outputs;
    std::set<quint32> m_hiddenOutputs;
    std::vector<int> m_pendingChanges;
    bool m_frozen = false;
    bool m_frozenByButton = false; // and not by a batch
};

} // namespace Zph::Applications::Player
