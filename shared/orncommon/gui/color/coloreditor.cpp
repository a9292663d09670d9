#include "orncommon/gui/color/coloreditor.h"

#include "orncommon/core/settingkey.h"
#include "orncommon/gui/color/colorhexa.h"
#include "orncommon/gui/color/colorslider.h"
#include "orncommon/gui/color/previewcoloredit.h"
#include "orncommon/gui/color/sliderscoloredit.h"
#include "orncommon/gui/color/spectrumcoloredit.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPoint>
#include <QScreen>
#include <QVBoxLayout>

namespace Orn::Gui {

namespace {
const Core::SettingKey<QPoint> storedPosition{QStringLiteral("session/dialogs/coloreditor/position"), {}};
} // namespace

ColorEditor::ColorEditor(QWidget* parent) : ColorEdit(parent, Qt::Tool)
{
    setWindowTitle(tr("Color Editor"));
    build();
    updateFromColor();
}

void ColorEditor::build()
{
    m_spectrum = new SpectrumColorEdit(this);
    m_value = new ColorSlider(ColorSlider::Channel::Value, Qt::Vertical, this);
    m_sliders = new SlidersColorEdit(this);
    m_hexa = new ColorHexa(this);
    m_preview = new PreviewColorEdit(this);
    for (ColorEdit* part :
         std::initializer_list<ColorEdit*>{m_spectrum, m_value, m_sliders, m_hexa, m_preview})
        join(*part);

    auto* top = new QHBoxLayout;
    top->setSpacing(8);
    top->addWidget(m_spectrum, 1);
    top->addWidget(m_value);
    auto* bottom = new QHBoxLayout;
    bottom->setSpacing(8);
    bottom->addWidget(m_preview, 1);
    bottom->addWidget(m_hexa, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 10, 10, 10);
    layout->setSpacing(10);
    layout->addLayout(top, 1);
    layout->addWidget(m_sliders);
    layout->addLayout(bottom);
}

void ColorEditor::join(ColorEdit& part)
{
    connect(&part, &ColorEdit::colorChanged, this, &ColorEditor::onPartChanged);
    connect(&part, &ColorEdit::editBegun, this, &ColorEdit::editBegun);
    connect(&part, &ColorEdit::editEnded, this, &ColorEdit::editEnded);
}

void ColorEditor::onPartChanged(const Core::ColorRGBAf& color)
{
    Core::ColorRGBAf changed = color;
    if (!m_alphaEnabled)
        changed.a = 1.0F;
    changeColor(changed);
}

void ColorEditor::setColor(const Core::ColorRGBAf& color)
{
    m_preview->setOldColor(color);
    ColorEdit::setColor(color);
}

void ColorEditor::setAlphaEnabled(bool enabled)
{
    m_alphaEnabled = enabled;
    m_sliders->setAlphaVisible(enabled);
}

void ColorEditor::updateFromColor()
{
    for (ColorEdit* part :
         std::initializer_list<ColorEdit*>{m_spectrum, m_value, m_sliders, m_hexa, m_preview})
        part->setColor(color());
}

void ColorEditor::showEvent(QShowEvent* event)
{
    const QPoint position = storedPosition.read();
    if (storedPosition.isStored() && QGuiApplication::screenAt(position))
        move(position);
    ColorEdit::showEvent(event);
}

void ColorEditor::hideEvent(QHideEvent* event)
{
    if (!event->spontaneous())
        storedPosition.write(pos());
    ColorEdit::hideEvent(event);
}

void ColorEditor::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        ColorEdit::keyPressEvent(event);
}

} // namespace Orn::Gui
