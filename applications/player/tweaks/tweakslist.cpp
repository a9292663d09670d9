#include "applications/player/tweaks/tweakslist.h"

#include "applications/player/description/inputsink.h"
#include "applications/player/session/static.h"
#include "applications/player/tweaks/presets/presets.h"
#include "applications/player/tweaks/rollgraph.h"
#include "applications/player/tweaks/sharedicon.h"
#include "applications/player/tweaks/tweakbase.h"
#include "applications/player/tweaks/tweakimage.h"
#include "applications/player/tweaks/tweaktime.h"
#include "applications/player/tweaks/tweakvisibility.h"
#include "orncommon/core/settingkey.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSignalMapper>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

const Orn::Core::SettingKey<bool> pinsSetting{QStringLiteral("session/tweaksPinDisplayed"), false};

QString imagePath(const char* name)
{
    return QStringLiteral(":/zph/applications/player/images/%1.svg").arg(QLatin1String(name));
}

void retire(QWidget* widget)
{
    // A rebuild may come out of an event of the widget itself, so it goes through the event loop.
    widget->hide();
    widget->deleteLater();
}

} // namespace

TweaksList::TweaksList(quint8 flags, QWidget* parent)
    : LayoutWidget(parent), m_flags(flags), m_presetMapper(new QSignalMapper(this)),
      m_presets(new Presets(m_tree, this))
{
    m_flags = quint8(pinsSetting.read() ? m_flags | PinsDisplayed : m_flags & ~PinsDisplayed);

    setWindowTitle(tr("Parameters"));
    setWindowIcon(sharedIcon(imagePath("parameters")));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeToolbar());
    layout->addWidget(makeScrollArea(), 1);
    connect(m_presetMapper, &QSignalMapper::mappedString, this, &TweaksList::menuPreset);
    connect(m_presets, &Presets::batchTweakUpdate, this, &TweaksList::batchTweakUpdate);
    connect(this, &TweaksList::timeChangeEnded, this, &TweaksList::releasePending);
    setEnabled(false);
}

TweaksList::~TweaksList()
{
    dropTree();
}

QFrame* TweaksList::makeToolbar()
{
    auto* toolbar = new QFrame(this);
    toolbar->setObjectName(QStringLiteral("toolbar"));
    auto* layout = new QHBoxLayout(toolbar);
    layout->setContentsMargins(0, 0, 0, 0);
    if (m_flags & FreezeButton)
        addFreezeButton(toolbar);
    if (m_flags & TrackingButton) {
        QToolButton* button =
            makeButton(toolbar, imagePath("tracking"),
                       tr("Slider tracking: activate to trigger generation only when the tweak sliders are "
                          "released."));
        button->setCheckable(true);
        button->setChecked(Static::instance().generateOnRelease);
        connect(button, &QToolButton::toggled, this, &TweaksList::toggleTrack);
    }
    addPinButtons(toolbar);
    if (m_flags & ResetButton) {
        QToolButton* button =
            makeButton(toolbar, imagePath("resettweaks"), tr("Reset tweaks to default values."));
        connect(button, &QToolButton::clicked, this, &TweaksList::resetToDefault);
    }
    layout->addStretch();
    return toolbar;
}

QToolButton* TweaksList::makeButton(QFrame* toolbar, const QString& icon, const QString& toolTip)
{
    auto* button = new QToolButton(toolbar);
    button->setIcon(sharedIcon(icon));
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setAutoRaise(true);
    toolbar->layout()->addWidget(button);
    return button;
}

void TweaksList::addFreezeButton(QFrame* toolbar)
{
    QToolButton* button = makeButton(toolbar, imagePath("locker"), tr("Freeze tweaks switch"));
    button->setText(tr("Freeze"));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setCheckable(true);
    connect(button, &QToolButton::toggled, this, &TweaksList::toggleFreeze);
}

void TweaksList::addPinButtons(QFrame* toolbar)
{
    m_showPinsButton = makeButton(toolbar, imagePath("showpins"), tr("Show 'cache hint' pins."));
    m_showPinsButton->setCheckable(true);
    m_showPinsButton->setChecked(pinsDisplayed());
    m_pinAllButton = makeButton(toolbar, QString(), tr("Make/unmake all tweaks to be cached."));
    m_pinAllButton->setIcon(pinIcon());
    m_pinAllButton->setCheckable(true);
    m_pinAllButton->setEnabled(pinsDisplayed());
    connect(m_showPinsButton, &QToolButton::toggled, this, &TweaksList::showPinsSignal);
    connect(m_pinAllButton, &QToolButton::toggled, this, &TweaksList::pinUnpinAllSignal);
}

QWidget* TweaksList::makeScrollArea()
{
    auto* area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    m_content = new QWidget(area);
    auto* layout = new QVBoxLayout(m_content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_tweaksLayout = new QVBoxLayout;
    m_tweaksLayout->setContentsMargins(0, 0, 0, 0);
    m_tweaksLayout->setSpacing(0);
    layout->addLayout(m_tweaksLayout);
    layout->addStretch(1);
    area->setWidget(m_content);
    return area;
}

TweakContext TweaksList::context() const
{
    const Static& state = Static::instance();
    TweakContext context;
    context.diagnostics = state.developerMode;
    context.trackSliders = !state.generateOnRelease;
    context.sizeLimit = state.sizeLimit();
    return context;
}

void TweaksList::build(const PackageModel& package, bool remote)
{
    m_content->setUpdatesEnabled(false);
    dropTree();
    setEnabled(true);
    m_outputs = package.outputs();
    TweaksTreeBuilder builder(package, context(), m_tweaksLayout, m_content,
                              [this](TweakBase* tweak) { connectTweak(tweak); });
    m_tree = builder.build();
    m_presets->readInternal(package.description());
    connectGraphRolls();
    if (m_tree.tweaks.empty()) {
        auto* label = new QLabel(remote ? tr("No tweaks (remote).") : tr("No tweaks defined."), m_content);
        label->setMargin(8);
        m_tweaksLayout->addWidget(label);
    }
    updateVisibility();
    m_content->setUpdatesEnabled(true);
}

void TweaksList::clear()
{
    dropTree();
    setEnabled(false);
}

void TweaksList::dropTree()
{
    for (const auto& entry : m_tree.tweaks) {
        disconnect(this, nullptr, entry.second, nullptr);
        disconnect(entry.second, nullptr, this, nullptr);
    }
    m_tree = TweaksTree();
    m_presets->readInternal(DescriptionIndex());
    m_outputs.clear();
    m_hiddenOutputs.clear();
    m_pendingChanges.clear();
    while (QLayoutItem* item = m_tweaksLayout->takeAt(0)) {
        retire(item->widget());
        delete item;
    }
}

void TweaksList::connectTweak(TweakBase* tweak)
{
    connect(this, &TweaksList::getActiveTweaksBridge, tweak, &TweakBase::getActiveTweak);
    connect(tweak, &TweakBase::tweakChangedSignal, this, &TweaksList::tweakChanged);
    connect(this, &TweaksList::pinUnpinAllSignal, tweak, &TweakBase::setActiveTweakSignal);
    if (auto* time = qobject_cast<TweakTime*>(tweak)) {
        connect(time, &TweakTime::timeChangedSignal, this, &TweaksList::timeChangedSignal);
        connect(this, &TweaksList::timeChangeBegun, time, &TweakBase::beginUserInteract);
        connect(this, &TweaksList::timeChangeEnded, time, &TweakBase::endUserInteract);
    }
    tweak->setPinned(false);
    if (!pinsDisplayed())
        tweak->setPinVisible(false);
}

void TweaksList::connectGraphRolls()
{
    for (const auto& [key, roll] : m_tree.rollsByGraph) {
        m_presetMapper->setMapping(roll->presetsButton(), key);
        connect(roll->presetsButton(), &QToolButton::clicked, m_presetMapper,
                qOverload<>(&QSignalMapper::map));
    }
}

void TweaksList::applyAll(InputSink& engine)
{
    for (const auto& entry : m_tree.tweaks)
        entry.second->applyToEngine(engine);
}

bool TweaksList::anyTimeDependent() const
{
    return std::any_of(m_tree.tweaks.begin(), m_tree.tweaks.end(),
                       [](const auto& entry) { return entry.second->isTimeDependent(); });
}

bool TweaksList::anyImage() const
{
    return std::any_of(m_tree.tweaks.begin(), m_tree.tweaks.end(),
                       [](const auto& entry) { return entry.second->isImage(); });
}

std::vector<TweakImage*> TweaksList::imageTweaks() const
{
    std::vector<TweakImage*> images;
    for (const auto& entry : m_tree.tweaks)
        if (auto* image = qobject_cast<TweakImage*>(entry.second))
            images.push_back(image);
    return images;
}

TweakImage* TweaksList::imageTweakAt(const QPoint& position) const
{
    const QWidget* widget = window()->childAt(window()->mapFromGlobal(position));
    for (TweakImage* image : imageTweaks())
        if (widget == image || image->isAncestorOf(widget))
            return image;
    return nullptr;
}

bool TweaksList::dropImage(const QString& path, const QPoint& position)
{
    // What opens may ask something, which must not hold up whoever the file was dragged from.
    const auto open = [path](TweakImage* tweak) {
        QTimer::singleShot(0, tweak, [tweak, path] { tweak->open(path); });
    };
    const std::vector<TweakImage*> images = imageTweaks();
    TweakImage* target = images.size() == 1 ? images.front() : imageTweakAt(position);
    if (images.empty())
        return false;
    if (target) {
        open(target);
        return true;
    }
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (TweakImage* image : images) {
        QString caption = image->caption();
        QAction* action =
            menu->addAction(tr("Load in '%1' tweak").arg(caption.replace('&', QLatin1String("&&"))));
        connect(action, &QAction::triggered, image, [image, open] { open(image); });
    }
    menu->popup(position);
    return true;
}

void TweaksList::updateVisibility()
{
    evaluateVisibility(m_tree.tweaks);
    std::set<quint32> hidden = Player::hiddenOutputs(m_outputs, m_tree);
    if (hidden == m_hiddenOutputs)
        return;
    m_hiddenOutputs = std::move(hidden);
    emit hiddenOutputsChanged();
}

void TweaksList::tweakChanged(int index)
{
    if (m_frozen || Static::instance().timelineBusy)
        m_pendingChanges.push_back(index);
    else
        raiseChanges({index});
}

void TweaksList::raiseChanges(const std::vector<int>& indexes)
{
    emit tweakChangedSignal(indexes);
    updateVisibility();
}

void TweaksList::releasePending()
{
    if (m_frozen || m_pendingChanges.empty())
        return;
    std::vector<int> indexes;
    indexes.swap(m_pendingChanges);
    raiseChanges(indexes);
}

void TweaksList::toggleFreeze(bool frozen)
{
    m_frozen = frozen;
    m_frozenByButton = frozen;
    releasePending();
}

void TweaksList::batchTweakUpdate(bool begin)
{
    if (begin && !m_frozen) {
        m_frozen = true;
        m_frozenByButton = false;
    } else if (!begin && !m_frozenByButton) {
        toggleFreeze(false);
    }
}

void TweaksList::setTimeChanged(float time)
{
    const bool wasFrozen = m_frozen;
    m_frozen = true;
    for (const auto& entry : m_tree.tweaks)
        entry.second->setTimeChanged(time);
    m_frozen = wasFrozen;
    releasePending();
}

void TweaksList::toggleTrack(bool onReleaseOnly)
{
    Static::instance().generateOnRelease = onReleaseOnly;
    for (const auto& entry : m_tree.tweaks)
        entry.second->toggleSlidersTracking(!onReleaseOnly);
}

void TweaksList::showPinsSignal(bool displayed)
{
    m_flags = quint8(displayed ? m_flags | PinsDisplayed : m_flags & ~PinsDisplayed);
    m_pinAllButton->setEnabled(displayed);
    pinsSetting.write(displayed);
    for (const auto& entry : m_tree.tweaks)
        entry.second->setPinVisible(displayed);
}

void TweaksList::resetToDefault()
{
    batchTweakUpdate(true);
    for (const auto& entry : m_tree.tweaks)
        entry.second->resetToDefault();
    batchTweakUpdate(false);
    updateVisibility();
}

void TweaksList::menuPreset(const QString& graphKey)
{
    const auto roll = m_tree.rollsByGraph.find(graphKey);
    if (roll != m_tree.rollsByGraph.end())
        m_presets->showMenu(roll->second->presetsButton(), graphKey);
}

void TweaksList::applyMetadataPreset(const PresetDescription& preset, const QString& graphKey)
{
    m_presets->applyMetadata(graphKey, preset);
}

} // namespace Zph::Applications::Player
