#include "applications/tool/progressbar.h"

#include <algorithm>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace vellor::tool {

namespace {

constexpr int kBarWidth = 24; // characters

int terminalWidth()
{
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

} // namespace

ProgressBar::ProgressBar() : m_isTerminal(isatty(STDERR_FILENO) == 1)
{
}

ProgressBar::~ProgressBar()
{
    hide();
}

void ProgressBar::show(double share, const QString& text)
{
    if (!m_isTerminal)
        return;
    const double part = std::clamp(share, 0.0, 1.0);
    const int filled = int(part * kBarWidth + 0.5);
    const QString line = QStringLiteral("[%1%2] %3 %  %4")
                             .arg(QString(filled, '#'), QString(kBarWidth - filled, '.'))
                             .arg(int(part * 100), 3)
                             .arg(text)
                             .left(terminalWidth() - 1);
    std::fprintf(stderr, "\r\033[K%s", qUtf8Printable(line));
    m_isShown = true;
}

void ProgressBar::hide()
{
    if (m_isShown)
        std::fputs("\r\033[K", stderr);
    m_isShown = false;
}

} // namespace vellor::tool
