#include "applications/player/tweaks/tweakbase.h"

#include "applications/player/tweaks/sharedicon.h"
#include "orncommon/gui/elidedlabel.h"

#include <QAbstractSlider>
#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QSignalBlocker>
#include <QToolButton>

namespace Zph::Applications::Player {

namespace {

QToolButton* makePinButton(QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setIcon(pinIcon());
    button->setCheckable(true);
    button->setAutoRaise(true);
    button->setToolTip(TweakBase::tr("Make this tweak to be cached."));
    return button;
}

} // namespace

TweakBase::TweakBase(quint32 type, const TweakContext& context, QWidget* parent, bool initialPinned)
    : QFrame(parent), Input(type), m_pinButton(makePinButton(this)),
      m_captionLabel(new Orn::Gui::ElidedLabel(QString(), this)), m_rightColumn(new QVBoxLayout),
      m_firstRow(new QHBoxLayout), m_pinned(initialPinned), m_context(context)
{
    auto* row = new QHBoxLayout(this);
    row->setSpacing(0);
    row->setContentsMargins(15, 1, 2, 1);
    row->addWidget(m_pinButton, 0, Qt::AlignVCenter); // or its height would be the row's
    row->addWidget(m_captionLabel, 2, Qt::AlignLeft);
    row->addLayout(m_rightColumn, 5);
    m_rightColumn->setSpacing(1);
    m_rightColumn->setContentsMargins(3, 0, 0, 0);
    m_rightColumn->addLayout(m_firstRow);
    m_firstRow->setSpacing(2);
    m_firstRow->setContentsMargins(0, 0, 0, 0);

    m_pinButton->setChecked(m_pinned);
    connect(this, &TweakBase::setActiveTweakSignal, m_pinButton, &QToolButton::setChecked);
    connect(m_pinButton, &QToolButton::toggled, this, &TweakBase::toggleActive);
}

void TweakBase::resetToDefault()
{
    applyValue(defaultValue());
}

void TweakBase::initFromDescription(int index, const VellorInputDesc& record, const QDomElement& element)
{
    const bool first = this->index() == -1;
    if (first)
        bind(record);
    describe(index, element);
    if (element.isNull())
        setPlainCaption(tr("Input uid:%1").arg(uid()));
    else
        readTexts(element);
    parseInputGui(element);
    nameWidgets();
    if (!first)
        return;
    const InputValue bound = value();
    writeWidgets([this] {
        setValue(defaultValue());
        updateWidgetFromInput();
    });
    setValue(bound);
}

void TweakBase::readTexts(const QDomElement& element)
{
    const QDomElement gui = element.firstChildElement(QStringLiteral("inputgui"));
    const QString label = gui.attribute(QStringLiteral("label"));
    const QString description = gui.attribute(QStringLiteral("description"));
    m_group = gui.attribute(QStringLiteral("group"));
    m_visibleIf = gui.attribute(QStringLiteral("visibleif"));
    setPlainCaption(label.isEmpty() ? identifier() : label);
    const QString toolTip =
        m_context.diagnostics ? diagnosticToolTip(element, !label.isEmpty(), description) : description;
    m_captionLabel->setToolTip(plainToolTip(toolTip));
}

QString TweakBase::diagnosticToolTip(const QDomElement& element, bool labelled,
                                     const QString& description) const
{
    QString text = QStringLiteral("%1\nuid:[%2]").arg(m_caption, QString::number(uid()));
    if (labelled)
        text += QStringLiteral(" - identifier:%1").arg(identifier());
    const QString userTag = QStringLiteral("usertag");
    if (element.hasAttribute(userTag))
        text += QStringLiteral("\nusertag: '%1'").arg(element.attribute(userTag));
    if (!description.isEmpty())
        text += QStringLiteral("\ndescription: '%1'").arg(description);
    return text;
}

void TweakBase::applyValue(const InputValue& value)
{
    const bool changed = !setValue(value);
    writeWidgets([this] { updateWidgetFromInput(); });
    if (changed)
        emit tweakChangedSignal(index());
}

void TweakBase::onWidgetValue()
{
    if (m_applying)
        return;
    // The mark of an earlier change that the engine wasn't told of yet must not pass for a change of now.
    const bool wasDirty = isDirty();
    setDirty(false);
    updateInputFromWidget();
    const bool changed = isDirty();
    setDirty(wasDirty || changed);
    if (changed)
        emit tweakChangedSignal(index());
}

void TweakBase::setPinned(bool pinned)
{
    if (m_pinned == pinned)
        return;
    m_pinned = pinned;
    const QSignalBlocker blocker(m_pinButton);
    m_pinButton->setChecked(pinned);
}

void TweakBase::setPinVisible(bool visible)
{
    m_pinButton->setVisible(visible);
}

void TweakBase::getActiveTweak(std::list<size_t>& indexList)
{
    if (m_pinned)
        indexList.push_back(size_t(index()));
}

void TweakBase::toggleSlidersTracking(bool tracking)
{
    m_context.trackSliders = tracking;
}

void TweakBase::setTimeChanged(float)
{
}

void TweakBase::toggleActive(bool active)
{
    setPinned(active);
}

void TweakBase::beginUserInteract()
{
    if (m_pinned)
        return;
    m_pinnedByInteraction = true;
    emit setActiveTweakSignal(true);
}

void TweakBase::endUserInteract()
{
    if (!m_pinnedByInteraction)
        return;
    m_pinnedByInteraction = false;
    emit setActiveTweakSignal(false);
}

void TweakBase::adopt(QWidget* widget)
{
    widget->installEventFilter(this);
    auto* slider = qobject_cast<QAbstractSlider*>(widget);
    if (!slider)
        return;
    slider->setTracking(m_context.trackSliders);
    connect(slider, &QAbstractSlider::sliderPressed, this, &TweakBase::beginUserInteract);
    connect(slider, &QAbstractSlider::sliderReleased, this, &TweakBase::endUserInteract);
}

bool TweakBase::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonDblClick && qobject_cast<QAbstractSlider*>(watched)) {
        resetToDefault();
        return true;
    }
    return QFrame::eventFilter(watched, event);
}

void TweakBase::contextMenuEvent(QContextMenuEvent* event)
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* reset = menu->addAction(tr("Reset to default"));
    reset->setEnabled(!isDefault());
    connect(reset, &QAction::triggered, this, [this] { resetToDefault(); });
    menu->popup(event->globalPos());
    event->accept();
}

void TweakBase::setPlainCaption(const QString& caption)
{
    m_caption = caption;
    m_captionLabel->setTextFormat(Qt::PlainText);
    m_captionLabel->setText(caption);
}

void TweakBase::setRichCaption(const QString& richText, const QString& plainText)
{
    m_caption = plainText;
    m_captionLabel->setTextFormat(Qt::RichText);
    m_captionLabel->setText(richText);
}

void TweakBase::nameWidgets()
{
    setAccessibleName(m_caption);
    m_pinButton->setAccessibleName(tr("Cache '%1'").arg(m_caption));
    const auto widgets = findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget* widget : widgets)
        if (widget != m_pinButton && widget->focusPolicy() != Qt::NoFocus)
            widget->setAccessibleName(m_caption);
}

} // namespace Zph::Applications::Player
