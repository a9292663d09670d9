#pragma once

#include "applications/player/output/exportsettings.h"

#include <QWidget>

class QComboBox;
class QDoubleSpinBox;
class QSpinBox;

namespace Zph::Applications::Player {

/// The range of frames of an animation. Whoever owns it connects the signals to the operations.
class TimeControls : public QWidget
{
    Q_OBJECT

public:
    explicit TimeControls(QWidget* parent = nullptr);

    /// Takes and gives unit, start, end and rate.
    void read(const ExportSettings& settings);
    void write(ExportSettings& settings) const;

    /// Turns start and end into the unit of this index.
    void convertTo(int unit);
    /// Start, end or rate changed: the count follows.
    void updateCount();
    /// The count changed: the end follows.
    void updateEnd();

signals:
    void unitChanged(int unit);
    void timeModified();
    void countModified();

private:
    template<class Widget> Widget* add(const QString& label, Widget* widget, const QString& toolTip);
    ExportSettings::TimeUnit unit() const;
    double rate() const;
    void applyUnit();

    QComboBox* m_unit;
    QDoubleSpinBox* m_start;
    QDoubleSpinBox* m_end;
    QSpinBox* m_count;
    QDoubleSpinBox* m_rate;
};

} // namespace Zph::Applications::Player
