#include "orncommon/gui/color/colorhexa.h"

#include "orncommon/gui/color/checkerboard.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QRegExpValidator>

namespace Orn::Gui {

namespace {
const QRegExp hexaPattern(QStringLiteral("^#[0-9a-fA-F]{8}$"));
} // namespace

ColorHexa::ColorHexa(QWidget* parent) : ColorEdit(parent)
{
    m_edit = new QLineEdit(this);
    m_edit->setValidator(new QRegExpValidator(hexaPattern, m_edit));
    m_edit->setToolTip(tr("Alpha, red, green and blue in hexadecimal digits: #AARRGGBB."));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_edit);
    connect(m_edit, &QLineEdit::editingFinished, this, &ColorHexa::onEditingFinished);
    setFocusProxy(m_edit);
    updateFromColor();
}

QString ColorHexa::toText(const Core::ColorRGBAf& color)
{
    return toQColor(color).name(QColor::HexArgb);
}

bool ColorHexa::isValid(const QString& text)
{
    return hexaPattern.exactMatch(text);
}

void ColorHexa::updateFromColor()
{
    m_edit->setText(toText(color()));
}

void ColorHexa::onEditingFinished()
{
    // The text is rounded to 8 bits: left as it is, it must not change the colour.
    if (m_edit->text() == toText(color()))
        return;
    QColor named;
    named.setNamedColor(m_edit->text());
    changeColor({static_cast<float>(named.redF()), static_cast<float>(named.greenF()),
                 static_cast<float>(named.blueF()), static_cast<float>(named.alphaF())});
}

} // namespace Orn::Gui
