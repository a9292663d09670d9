#include "orncommon/gui/color/coloredit.h"

namespace Orn::Gui {

ColorEdit::ColorEdit(QWidget* parent, Qt::WindowFlags flags) : QWidget(parent, flags)
{
}

void ColorEdit::setColor(const Core::ColorRGBAf& color)
{
    m_color = color;
    updateFromColor();
}

void ColorEdit::changeColor(const Core::ColorRGBAf& color)
{
    if (m_color == color)
        return;
    m_color = color;
    updateFromColor();
    Q_EMIT colorChanged(color);
}

} // namespace Orn::Gui
