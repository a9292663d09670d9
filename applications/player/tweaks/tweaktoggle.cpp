#include "applications/player/tweaks/tweaktoggle.h"

#include "applications/player/tweaks/numberwidgets.h"

#include <QDomElement>
#include <QHBoxLayout>
#include <QPushButton>

namespace Zph::Applications::Player {

namespace {

// A button takes "&" for the mark of its shortcut.
QString buttonText(QString text)
{
    return text.replace('&', QLatin1String("&&"));
}

} // namespace

TweakToggle::TweakToggle(quint32 type, const TweakContext& context, QWidget* parent)
    : TweakBase(type, context, parent), m_button(new QPushButton(tr("On/Off"), this)), m_offText(tr("Off")),
      m_onText(tr("On"))
{
    m_button->setCheckable(true);
    firstRow()->addWidget(m_button);
    adopt(m_button);
    connect(m_button, &QPushButton::toggled, this, [this] {
        updateText();
        onWidgetValue();
    });
}

void TweakToggle::parseInputGui(const QDomElement& element)
{
    const QDomElement labels = inputGuiChild(element, "guibutton");
    m_offText = labels.attribute(QStringLiteral("label0"), tr("Off"));
    m_onText = labels.attribute(QStringLiteral("label1"), tr("On"));
    updateText();
}

void TweakToggle::updateInputFromWidget()
{
    const bool checked = m_button->isChecked();
    if (isFloatType(type()))
        setValue(checked ? 1.0f : 0.0f, 0.0f, 0.0f, 0.0f);
    else
        setValue(checked ? 1 : 0, 0, 0, 0);
}

void TweakToggle::updateWidgetFromInput()
{
    // Not-a-number is not 0 either.
    m_button->setChecked(isFloatType(type()) ? value().floatAt(0) != 0.0f : value().intAt(0) != 0);
    updateText();
}

void TweakToggle::updateText()
{
    m_button->setText(buttonText(m_button->isChecked() ? m_onText : m_offText));
}

} // namespace Zph::Applications::Player
