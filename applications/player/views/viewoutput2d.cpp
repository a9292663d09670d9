#include "viewoutput2d.h"

#include "applications/player/description/packagemodel.h"
#include "applications/player/views/displayimage.h"
#include "applications/player/views/picturearea.h"
#include "applications/player/views/picturelabel.h"
#include "applications/player/views/picturesaver.h"
#include "applications/player/views/valuetext.h"
#include "applications/player/views/zoom.h"
#include "orncommon/image/surfaceoperations.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenu>
#include <QSignalBlocker>
#include <QSplitter>
#include <QTabBar>
#include <QToolButton>
#include <QToolTip>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace Zph::Applications::Player {

namespace {

constexpr int kViewsToClose = 3; // with fewer a view stays

} // namespace

ViewOutput2D::ViewOutput2D(ViewHost& host, QWidget* parent) : ViewOutput(host, parent)
{
    setWindowTitle(tr("2D View"));
    makeToolbar();
    makePictureArea();
    makeMenu();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_toolbar);
    layout->addWidget(m_scrollArea, 1);
    layout->addWidget(m_outputInfoLabel);
    redisplay();
}

void ViewOutput2D::makeToolbar()
{
    m_toolbar = new QFrame(this);
    m_toolbar->setObjectName("toolbar");
    m_toolbarLayout = new QHBoxLayout(m_toolbar);
    m_toolbarLayout->setContentsMargins(0, 0, 0, 0);

    m_graphsLabel = new QLabel(tr(" Graphs:"), m_toolbar);
    m_graphCombo = new QComboBox(m_toolbar);
    m_graphCombo->setMinimumWidth(50);
    m_graphCombo->setAccessibleName(tr("Graph"));
    auto* outputsLabel = new QLabel(tr(" Outputs:"), m_toolbar);
    m_outputTabs = new QTabBar(m_toolbar);
    m_outputTabs->setObjectName("outputTabs");
    m_outputTabs->setDrawBase(false);
    m_outputTabs->setExpanding(false);
    m_outputTabs->setUsesScrollButtons(true);
    m_outputTabs->setElideMode(Qt::ElideNone); // the tabs scroll: cut names say nothing
    m_outputTabs->setAccessibleName(tr("Outputs"));

    makeZoomCombo();
    auto* viewButton = new QToolButton(m_toolbar);
    viewButton->setText(tr("View"));
    viewButton->setIcon(QIcon(":/zph/applications/player/images/viewopt.svg"));
    viewButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    viewButton->setToolTip(tr("View options menu."));

    m_toolbarLayout->addWidget(m_graphsLabel);
    m_toolbarLayout->addWidget(m_graphCombo, 10);
    m_toolbarLayout->addWidget(outputsLabel);
    m_toolbarLayout->addWidget(m_outputTabs, 20);
    m_toolbarLayout->addWidget(m_zoomCombo, 0);
    m_toolbarLayout->addWidget(viewButton);

    connect(m_graphCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &ViewOutput2D::onGraphChanged);
    connect(m_outputTabs, &QTabBar::currentChanged, this, &ViewOutput2D::outputChanged);
    connect(viewButton, &QToolButton::clicked, this, &ViewOutput2D::showMenuFromButton);
    viewButton->setObjectName("viewButton");
}

void ViewOutput2D::makeZoomCombo()
{
    m_zoomCombo = new QComboBox(m_toolbar);
    m_zoomCombo->setObjectName("zoom");
    m_zoomCombo->setMinimumWidth(40);
    m_zoomCombo->setEditable(true);
    m_zoomCombo->setInsertPolicy(QComboBox::NoInsert);
    m_zoomCombo->setMaxVisibleItems(20);
    m_zoomCombo->setSizeAdjustPolicy(QComboBox::AdjustToContentsOnFirstShow);
    m_zoomCombo->setAccessibleName(tr("Zoom"));
    m_zoomCombo->setToolTip(tr("Zoom. Shortcut: [Ctrl+Wheel]."));
    m_zoomCombo->addItem(tr("1:1"), 0);
    m_zoomCombo->addItem(tr("Fit."), Zoom::kFit);
    m_zoomCombo->insertSeparator(m_zoomCombo->count());
    for (int exponent = Zoom::kFirstExponent; exponent <= Zoom::kLastExponent; ++exponent)
        m_zoomCombo->addItem(Zoom::text(Zoom::factorOfItem(exponent)), exponent);
    m_zoomText = m_zoomCombo->currentText();
    connect(m_zoomCombo, QOverload<int>::of(&QComboBox::activated), this, &ViewOutput2D::zoomChanged);
    connect(m_zoomCombo->lineEdit(), &QLineEdit::editingFinished, this, &ViewOutput2D::zoomEdit);
}

void ViewOutput2D::makePictureArea()
{
    m_imageLabel = new PictureLabel;
    m_imageLabel->setAccessibleName(tr("Output"));
    m_scrollArea = new PictureArea(this);
    m_scrollArea->setAlignment(Qt::AlignCenter);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setWidget(m_imageLabel);
    connect(m_scrollArea, &PictureArea::zoomAsked, this, &ViewOutput2D::zoomByWheel);
    connect(m_scrollArea, &PictureArea::resized, this, [this] {
        if (m_fits || m_display.isEmpty())
            redisplay();
    });
    connect(m_imageLabel, &PictureLabel::pointPicked, this, &ViewOutput2D::pickColor);

    m_outputInfoLabel = new QLabel(this);
    m_outputInfoLabel->setObjectName("info");
    m_outputInfoLabel->setMinimumWidth(1); // a long text doesn't widen the view
    m_outputInfoLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void ViewOutput2D::makeMenu()
{
    m_viewMenu = new QMenu(this);
    const auto addToggle = [this](const QString& text, bool checked, auto slot) {
        QAction* action = m_viewMenu->addAction(text);
        action->setCheckable(true);
        action->setChecked(checked);
        connect(action, &QAction::toggled, this, slot);
        return action;
    };
    addToggle(tr("Display alpha channel"), true, &ViewOutput2D::toggleAlpha);
    addToggle(tr("Freeze view"), false, &ViewOutput2D::toggleFreeze)
        ->setIcon(QIcon(":/zph/applications/player/images/locker.svg"));
    addToggle(tr("HQ zoom"), false, &ViewOutput2D::toggleHQ);
    m_saveAction = m_viewMenu->addAction(tr("Save as bitmap..."), this, &ViewOutput2D::saveImage);
    m_copyAction = m_viewMenu->addAction(tr("Copy to clipboard"), this, &ViewOutput2D::copyToClipboard);
    m_viewMenu->addAction(tr("Split vertically"), this, &ViewOutput2D::splitVert);
    m_viewMenu->addAction(tr("Split horizontally"), this, &ViewOutput2D::splitHorz);
    m_closeAction = m_viewMenu->addAction(QIcon(":/zph/applications/player/images/viewclose.svg"),
                                          tr("Close view"), this, &ViewOutput2D::closeView);
    connect(m_viewMenu, &QMenu::aboutToShow, this, &ViewOutput2D::updateMenu);
    m_scrollArea->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_scrollArea, &QWidget::customContextMenuRequested, this, &ViewOutput2D::showMenu);
}

void ViewOutput2D::updateMenu()
{
    m_saveAction->setEnabled(m_display.isSurface());
    m_copyAction->setEnabled(m_display.isSurface());
    m_closeAction->setEnabled(host().viewerCount() >= kViewsToClose);
}

void ViewOutput2D::showMenu(const QPoint& position)
{
    m_viewMenu->exec(m_scrollArea->mapToGlobal(position));
}

void ViewOutput2D::showMenuFromButton()
{
    const auto* button = m_toolbar->findChild<QToolButton*>("viewButton");
    m_viewMenu->exec(button->mapToGlobal(button->rect().bottomLeft()));
}

void ViewOutput2D::setPackage(std::shared_ptr<const PackageModel> package)
{
    const QSignalBlocker comboBlocker(m_graphCombo);
    clearContent();
    m_package = std::move(package);
    for (const PackageGraph& graph : m_package->graphs()) {
        const QVector<PackageOutput> outputs = m_package->outputsOfGraph(graph.key);
        if (outputs.isEmpty())
            continue;
        m_graphCombo->addItem(graph.label.isEmpty() ? tr("(no graph)") : graph.label, graph.key);
        for (const PackageOutput& output : outputs)
            m_outputs[output.uid] = {output.label, output.listText, output.description, output.boolean, true};
    }
    const int remembered = m_graphCombo->findText(m_graphName);
    m_graphCombo->setCurrentIndex(remembered >= 0 ? remembered : 0);
    setEnabled(true);
    redisplay();
    onGraphChanged(m_graphCombo->currentIndex());
}

void ViewOutput2D::onGraphChanged(int index)
{
    if (index < 0 || !m_package)
        return;
    m_graphName = m_graphCombo->itemText(index);
    rebuildTabs(bestDefaultOutput(m_graphCombo->itemData(index).toString()));
    outputChanged(m_outputTabs->currentIndex());
}

quint32 ViewOutput2D::bestDefaultOutput(const QString& graphKey) const
{
    // A reload comes back to the same output; otherwise the colour of the material says most about it.
    static const char* const byWorth[] = {"basecolor", "diffuse", "albedo", "color"};
    QVector<PackageOutput> outputs = m_package->outputsOfGraph(graphKey);
    outputs.erase(
        std::remove_if(outputs.begin(), outputs.end(),
                       [this](const PackageOutput& output) { return !m_outputs.at(output.uid).shown; }),
        outputs.end());
    for (const PackageOutput& output : qAsConst(outputs))
        if (!m_outputName.isEmpty() && output.label == m_outputName)
            return output.uid;
    for (const char* usage : byWorth)
        for (const PackageOutput& output : qAsConst(outputs))
            if (output.usages.contains(QLatin1String(usage), Qt::CaseInsensitive))
                return output.uid;
    return outputs.isEmpty() ? 0 : outputs.first().uid;
}

void ViewOutput2D::rebuildTabs(quint32 preferred)
{
    const QSignalBlocker blocker(m_outputTabs);
    while (m_outputTabs->count() > 0)
        m_outputTabs->removeTab(m_outputTabs->count() - 1);
    for (const PackageOutput& output : m_package->outputsOfGraph(m_graphCombo->currentData().toString())) {
        const OutputRecord& record = m_outputs.at(output.uid);
        if (!record.shown)
            continue;
        const int tab = m_outputTabs->addTab(record.tabLabel);
        m_outputTabs->setTabData(tab, output.uid);
        m_outputTabs->setTabToolTip(tab, record.toolTip);
        if (output.uid == preferred)
            m_outputTabs->setCurrentIndex(tab);
    }
}

void ViewOutput2D::outputsChanged(const std::set<quint32>& hidden)
{
    std::vector<quint32> uids;
    for (const auto& entry : m_outputs)
        uids.push_back(entry.first);
    for (const quint32 uid : uids)
        setOutputShown(uid, hidden.count(uid) == 0);
}

void ViewOutput2D::setOutputShown(quint32 uid, bool shown)
{
    const auto found = m_outputs.find(uid);
    if (found == m_outputs.end() || found->second.shown == shown)
        return;
    found->second.shown = shown;
    const bool hadTab = m_outputTabs->currentIndex() >= 0;
    const quint32 before = currentUid();
    const bool stays = hadTab && (shown || uid != before);
    rebuildTabs(stays ? before : bestDefaultOutput(m_graphCombo->currentData().toString()));
    if (stays)
        return;
    if (m_outputTabs->currentIndex() < 0) {
        m_outputInfoLabel->clear();
        setDisplay({}, 0);
    }
    outputChanged(m_outputTabs->currentIndex());
}

void ViewOutput2D::showOutput(quint32 uid)
{
    const auto known = m_outputs.find(uid);
    if (known == m_outputs.end() || !known->second.shown)
        return;
    const QVector<PackageOutput>& outputs = m_package->outputs();
    const auto output = std::find_if(outputs.begin(), outputs.end(),
                                     [uid](const PackageOutput& candidate) { return candidate.uid == uid; });
    const QSignalBlocker blocker(m_graphCombo);
    m_graphCombo->setCurrentIndex(m_graphCombo->findData(output->graphKey));
    m_graphName = m_graphCombo->currentText();
    rebuildTabs(uid);
    outputChanged(m_outputTabs->currentIndex());
}

quint32 ViewOutput2D::currentUid() const
{
    return m_outputTabs->currentIndex() < 0 ? 0
                                            : m_outputTabs->tabData(m_outputTabs->currentIndex()).toUInt();
}

void ViewOutput2D::outputChanged(int tabIndex)
{
    if (tabIndex < 0)
        return;
    const quint32 uid = m_outputTabs->tabData(tabIndex).toUInt();
    m_outputName = m_outputTabs->tabText(tabIndex);
    m_outputInfoLabel->setText(m_outputs.at(uid).text);
    m_outputInfoLabel->setToolTip(m_outputs.at(uid).toolTip);
    if (isFrozen())
        return;
    // What was shown belongs to another output; the one asked for now comes at once from the cache or is
    // computed.
    setDisplay({}, uid);
    emit currentOutputChanged(uid);
}

std::vector<quint32> ViewOutput2D::currentOutputs() const
{
    if (isFrozen() || m_outputTabs->currentIndex() < 0)
        return {};
    return {currentUid()};
}

void ViewOutput2D::outputComplete(const VellorOutputDesc& desc, const ValueOrSurfacePlayer& result)
{
    if (!isFrozen() && m_outputTabs->currentIndex() >= 0 && desc.uid == currentUid())
        setDisplay(result, desc.uid);
}

void ViewOutput2D::setDisplay(const ValueOrSurfacePlayer& display, quint32 uid)
{
    m_display = display;
    m_displayUid = uid;
    redisplay();
}

void ViewOutput2D::redisplay()
{
    if (m_display.isSurface())
        showPicture();
    else if (m_display.isValue())
        showNumbers();
    else {
        const bool isAwaited = m_outputTabs->currentIndex() >= 0;
        m_imageLabel->setMessage(isFrozen()  ? tr("Frozen.")
                                 : isAwaited ? tr("Computing...")
                                 : m_package ? QString()
                                             : tr("Open a package, or drop one here."));
        m_imageLabel->resize(m_scrollArea->viewport()->size());
    }
}

void ViewOutput2D::showNumbers()
{
    const auto found = m_outputs.find(m_displayUid);
    const bool isBoolean = found != m_outputs.end() && found->second.isBoolean;
    m_imageLabel->setMessage(valueText(*m_display.value(), isBoolean), 18);
    m_imageLabel->resize(128, 128);
}

void ViewOutput2D::showPicture()
{
    const auto surface = m_display.surface();
    if (!surface || surface->isEmpty())
        return;
    const QSize whole(int(surface->width()), int(surface->height()));
    if (m_fits)
        m_zoomFactor = float(Zoom::fitFactor(whole, m_scrollArea->maximumViewportSize()));
    const QSize size = Zoom::scaled(whole, m_zoomFactor);
    const bool isShrunk = size.width() < whole.width() && size.height() < whole.height();
    QImage picture = isShrunk && !m_hqZoom ? sampledImage(surface, size) : displayImage(surface);
    if (picture.isNull())
        return;
    // Ahead of any scaling, which weighs colours by alpha.
    if (m_hideAlpha && picture.hasAlphaChannel())
        picture = picture.convertToFormat(QImage::Format_RGB32);
    m_imageLabel->setPicture(picture, size, m_hqZoom, isFrozen() ? tr("Frozen.") : QString());
}

void ViewOutput2D::toggleAlpha(bool displayed)
{
    m_hideAlpha = !displayed;
    redisplay();
}

void ViewOutput2D::toggleHQ(bool smooth)
{
    m_hqZoom = smooth;
    redisplay();
}

void ViewOutput2D::toggleFreeze(bool frozen)
{
    setFrozen(frozen);
    redisplay();
    if (!frozen && m_outputTabs->currentIndex() >= 0)
        emit currentOutputChanged(currentUid());
}

void ViewOutput2D::zoomChanged(int index)
{
    const int data = m_zoomCombo->itemData(index).toInt();
    const bool fits = data >= Zoom::kFit;
    if (fits && !m_display.isSurface()) {
        m_zoomCombo->setEditText(m_zoomText);
        return;
    }
    m_fits = fits;
    if (!fits)
        m_zoomFactor = float(Zoom::factorOfItem(data));
    m_zoomText = m_zoomCombo->itemText(index);
    redisplay();
}

void ViewOutput2D::zoomEdit()
{
    const QString typed = m_zoomCombo->currentText();
    if (typed == m_zoomText)
        return;
    const int item = m_zoomCombo->findText(typed);
    if (item >= 0)
        zoomChanged(item);
    else if (const auto factor = Zoom::parse(typed))
        setZoom(*factor);
    else
        m_zoomCombo->setEditText(m_zoomText);
}

void ViewOutput2D::setZoom(double factor)
{
    m_fits = false;
    m_zoomFactor = float(factor);
    m_zoomText = Zoom::text(factor);
    m_zoomCombo->setEditText(m_zoomText);
    redisplay();
}

void ViewOutput2D::zoomByWheel(int steps, const QPoint& anchor)
{
    if (!m_display.isSurface() || steps == 0)
        return;
    const QPointF before = m_imageLabel->mapFrom(m_scrollArea->viewport(), anchor);
    const double old = m_zoomFactor;
    setZoom(qBound(0.01, old * std::pow(2.0, 0.25 * steps), 20.0));
    // The pixel under the pointer stays there.
    const QPointF shift = before * (m_zoomFactor / old) - before;
    m_scrollArea->scrollBy(QPoint(qRound(shift.x()), qRound(shift.y())));
}

void ViewOutput2D::pickColor(const QPoint& point)
{
    using namespace Orn::Surfaces;
    if (!m_display.isSurface() || !m_imageLabel->rect().contains(point))
        return;
    const Surface& source = *m_display.surface();
    const int x = int(qint64(point.x()) * source.description().width / m_imageLabel->width());
    const int y = int(qint64(point.y()) * source.description().height / m_imageLabel->height());
    Orn::Image::Core::SharedSurface pixel =
        Orn::Image::Core::makeShared(Surface(SurfaceDescription(1, 1, BGRA8), 64));
    if (!pixel || !Orn::Image::Core::embed(source, pixel, QPoint(-x, -y)))
        return;
    const auto* bgra = static_cast<const uchar*>(pixel->data());
    const QString text = QStringLiteral("R:<b>%1</b><br>G:<b>%2</b><br>B:<b>%3</b><br>A:<b>%4</b>")
                             .arg(bgra[2])
                             .arg(bgra[1])
                             .arg(bgra[0])
                             .arg(bgra[3]);
    QToolTip::showText(m_imageLabel->mapToGlobal(point) + QPoint(4, -10), text, m_imageLabel);
}

void ViewOutput2D::saveImage()
{
    if (m_display.isSurface())
        PictureSaver::saveAs(this, m_display.surface());
}

void ViewOutput2D::copyToClipboard()
{
    if (m_display.isSurface())
        QApplication::clipboard()->setImage(displayImage(m_display.surface()).copy());
}

void ViewOutput2D::splitVert()
{
    split(Qt::Vertical);
}

void ViewOutput2D::splitHorz()
{
    split(Qt::Horizontal);
}

void ViewOutput2D::split(Qt::Orientation orientation)
{
    auto* splitter = qobject_cast<QSplitter*>(parentWidget());
    if (!splitter)
        return;
    auto* added = new ViewOutput2D(host());
    if (splitter->count() < 2)
        splitter->setOrientation(orientation);
    if (splitter->orientation() == orientation) {
        splitter->insertWidget(splitter->indexOf(this) + 1, added);
    } else {
        const QList<int> sizes = splitter->sizes();
        auto* nested = new QSplitter(orientation);
        nested->setChildrenCollapsible(false);
        splitter->insertWidget(splitter->indexOf(this), nested);
        nested->addWidget(this);
        nested->addWidget(added);
        splitter->setSizes(sizes);
        splitter = nested;
    }
    splitter->setSizes(QList<int>::fromVector(QVector<int>(splitter->count(), 1000)));
    host().registerViewer(added);
}

void ViewOutput2D::closeView()
{
    if (host().viewerCount() < kViewsToClose)
        return;
    host().unregisterViewer(this);
    close();
    // A nested splitter goes with its last view, or it would hold an empty place.
    auto* splitter = qobject_cast<QSplitter*>(parentWidget());
    while (splitter && splitter->count() == 1) {
        auto* outer = qobject_cast<QSplitter*>(splitter->parentWidget());
        if (outer)
            splitter->deleteLater();
        splitter = outer;
    }
}

void ViewOutput2D::clearView()
{
    clearContent();
    setEnabled(false);
    redisplay();
}

void ViewOutput2D::clearContent()
{
    const QSignalBlocker comboBlocker(m_graphCombo), tabsBlocker(m_outputTabs);
    m_display = {};
    m_package.reset();
    m_outputs.clear();
    m_graphCombo->clear();
    while (m_outputTabs->count() > 0)
        m_outputTabs->removeTab(m_outputTabs->count() - 1);
    m_outputInfoLabel->clear();
}

} // namespace Zph::Applications::Player
