#pragma once

#include <QList>
#include <QObject>
#include <QSet>

class QWidget;

/// Sees when widgets have been painted.
class PaintWatch : public QObject
{
    Q_OBJECT

public:
    explicit PaintWatch(const QList<QWidget*>& widgets);

    /// Forgets what was painted until now.
    void restart() { m_painted.clear(); }
    /// Turns the event loop until every widget was painted since restart() and nothing waits to be painted.
    void wait();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int m_count;
    QSet<QObject*> m_painted;
};
