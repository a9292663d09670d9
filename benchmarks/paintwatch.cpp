#include "benchmarks/paintwatch.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QWidget>

namespace {

constexpr int kPatience = 60000; // ms

}

PaintWatch::PaintWatch(const QList<QWidget*>& widgets) : m_count(widgets.size())
{
    for (QWidget* widget : widgets)
        widget->installEventFilter(this);
}

void PaintWatch::wait()
{
    QElapsedTimer waited;
    waited.start();
    while (m_painted.size() < m_count) {
        QCoreApplication::processEvents();
        if (waited.elapsed() > kPatience)
            qFatal("A widget that is measured never got painted");
    }
}

bool PaintWatch::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Paint)
        m_painted.insert(watched);
    return false;
}
