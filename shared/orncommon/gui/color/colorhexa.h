#pragma once

#include "orncommon/gui/color/coloredit.h"

class QLineEdit;

namespace Orn::Gui {

/// A text field with a colour in eight hexadecimal digits after "#", alpha first: "#80ff0000" is red at about
/// half alpha. A text that is none goes back to the colour's own.
class ColorHexa : public ColorEdit
{
    Q_OBJECT

public:
    explicit ColorHexa(QWidget* parent = nullptr);

    static QString toText(const Core::ColorRGBAf& color);
    static bool isValid(const QString& text);

protected:
    void updateFromColor() override;

private:
    void onEditingFinished();

    QLineEdit* m_edit = nullptr;
};

} // namespace Orn::Gui
