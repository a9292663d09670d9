#pragma once

#include "orncommon/gui/layoutwidget.h"

class QLabel;
class QSlider;

namespace Zph::Applications::Player {

/// The panel of the timeline: a slider over the frames that gives the time, in seconds, to the inputs that
/// move with it. Enabled while the package has such inputs. Length, rate and the time itself are those of
/// Static.
class Timeline : public Orn::Gui::LayoutWidget
{
    Q_OBJECT

public:
    explicit Timeline(QWidget* parent = nullptr);

public slots:
    /// Shows a time that was set elsewhere; raises nothing.
    void setCurrentTime(float seconds);

signals:
    void timeChanged(float seconds);
    /// The slider is taken and let go.
    void timeChangeBegun();
    void timeChangeEnded();

private:
    void onFrameChanged(int frame);
    void showTime();

    QSlider* m_slider;
    QLabel* m_label;
};

} // namespace Zph::Applications::Player
