#pragma once

#include <QString>

namespace vellor::tool {

/// One line on standard error that tells how far the work is; nothing where that is no terminal. Main thread.
class ProgressBar
{
public:
    ProgressBar();
    /// Takes the line away.
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// `share` of the whole, 0 to 1, and what is going on.
    void show(double share, const QString& text);
    /// Takes the line away until the next show(), for a line of output.
    void hide();

private:
    bool m_isTerminal;
    bool m_isShown = false;
};

} // namespace vellor::tool
