#include "orncommon/gui/applicationeventfilterproxy.h"

#include <QApplication>
#include <QFileOpenEvent>

namespace Orn::Gui {

ApplicationEventFilterProxy::ApplicationEventFilterProxy(QApplication* application)
{
    application->installEventFilter(this);
}

bool ApplicationEventFilterProxy::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::FileOpen || watched != qApp)
        return false;
    const QString file = static_cast<QFileOpenEvent*>(event)->file();
    if (!file.isEmpty())
        Q_EMIT fileOpenRequested(file);
    return true;
}

} // namespace Orn::Gui
