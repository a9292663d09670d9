#pragma once

#include <QObject>

class QApplication;

namespace Orn::Gui {

/// Watches the application's own events and tells those that concern the program as a whole. GUI thread.
class ApplicationEventFilterProxy : public QObject
{
    Q_OBJECT

public:
    explicit ApplicationEventFilterProxy(QApplication* application);

Q_SIGNALS:
    /// The desktop asks the running program to open a file.
    void fileOpenRequested(const QString& file);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace Orn::Gui
