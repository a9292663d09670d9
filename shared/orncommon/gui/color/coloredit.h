#pragma once

#include "orncommon/core/colorrgbaf.h"

#include <QWidget>

namespace Orn::Gui {

/// Base of the widgets that edit one colour. The program sets the colour in silence; what the user does is
/// told by colorChanged.
class ColorEdit : public QWidget
{
    Q_OBJECT

public:
    explicit ColorEdit(QWidget* parent = nullptr, Qt::WindowFlags flags = {});

    Core::ColorRGBAf color() const { return m_color; }
    void setColor(const Core::ColorRGBAf& color);

Q_SIGNALS:
    void colorChanged(const Orn::Core::ColorRGBAf& color);
    /// Enclose a drag, in which colorChanged comes many times.
    void editBegun();
    void editEnded();

protected:
    /// Shows color(), which was just set.
    virtual void updateFromColor() = 0;
    /// Takes the user's colour and tells it, if it is another.
    void changeColor(const Core::ColorRGBAf& color);

private:
    Core::ColorRGBAf m_color;
};

} // namespace Orn::Gui
