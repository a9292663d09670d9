#pragma once

#include "orncommon/gui/color/coloredit.h"

namespace Orn::Gui {

/// The old colour beside the new one, over a checkerboard. A click on the old colour takes it back.
class PreviewColorEdit : public ColorEdit
{
    Q_OBJECT

public:
    explicit PreviewColorEdit(QWidget* parent = nullptr);

    void setOldColor(const Core::ColorRGBAf& color);

    QSize sizeHint() const override { return {96, 28}; }

protected:
    void updateFromColor() override { update(); }
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QRect oldRect() const;

    Core::ColorRGBAf m_oldColor;
};

} // namespace Orn::Gui
