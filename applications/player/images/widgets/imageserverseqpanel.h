#pragma once

#include <QWidget>

class QDoubleSpinBox;

namespace Zph::Applications::Player {

// The rate of a sequence. What it shows counts when the host sends ImageServerBase::applyPanel.
class ImageServerSeqPanel : public QWidget
{
    Q_OBJECT

public:
    // Shows the timeline's rate.
    explicit ImageServerSeqPanel(QWidget* parent);

    void setFps(float fps);

signals:
    void fpsChanged(float fps);

protected:
    void customEvent(QEvent* event) override;

private:
    QDoubleSpinBox* m_spinBox;
};

} // namespace Zph::Applications::Player
