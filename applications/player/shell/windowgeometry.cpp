#include "windowgeometry.h"

#include "applications/player/shell/shellsettings.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace Zph::Applications::Player::WindowGeometry {

namespace {

constexpr int kTopMargin = 10; // keeps the title bar of a window that came from elsewhere within reach

int clampedStart(int start, int length, int areaStart, int areaEnd)
{
    if (start < areaStart)
        return std::min(areaStart + kTopMargin, std::max(areaEnd - length, areaStart));
    return std::min(start, std::max(areaEnd - length, areaStart));
}

} // namespace

QRect clamped(QRect frame, const QRect& area)
{
    frame.setSize(frame.size().boundedTo(area.size()));
    frame.moveTo(clampedStart(frame.x(), frame.width(), area.x(), area.x() + area.width()),
                 clampedStart(frame.y(), frame.height(), area.y(), area.y() + area.height()));
    return frame;
}

QRect screensArea()
{
    QRect area;
    for (const QScreen* screen : QGuiApplication::screens())
        area |= screen->availableGeometry();
    return area;
}

QSize initialSize()
{
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    return {9 * (available.width() + 1) / 10, 9 * (available.height() + 1) / 10};
}

void save(const QWidget& window)
{
    ShellSettings::position.write(window.pos());
    ShellSettings::size.write(window.frameGeometry().size());
    ShellSettings::frame.write(window.frameGeometry().size() - window.size());
    ShellSettings::state.write(int(window.windowState()));
}

void restore(QWidget& window)
{
    const QSize stored = ShellSettings::size.read();
    const QSize size = stored.isValid() ? stored : initialSize();
    const QPoint position =
        ShellSettings::position.isStored() ? ShellSettings::position.read() : screensArea().topLeft();
    const QRect frame = clamped(QRect(position, size), screensArea());
    // There is no frame before the window is shown: the one that it had is what it will have.
    window.resize(frame.size() - ShellSettings::frame.read());
    window.move(frame.topLeft());
    const int state = ShellSettings::state.read();
    window.setWindowState(state == Qt::WindowMinimized ? Qt::WindowMaximized : Qt::WindowStates(state));
}

} // namespace Zph::Applications::Player::WindowGeometry
