#pragma once

#include <functional>
#include <string>
#include <utility>

namespace Orn {

/// The logger of the libraries that know no Qt: a callback, nothing more. Without one, messages are dropped.
class Logger
{
public:
    enum Severity
    {
        Info = 0,
        Warning = 1,
        Error = 2
    };

    /// Severity (a value outside the enumeration counts as an error), sub-channel, text; both in UTF-8.
    using Callback =
        std::function<void(int severity, const std::string& subChannel, const std::string& text)>;

    void setCallback(Callback callback) { m_callback = std::move(callback); }

    void log(int severity, const std::string& subChannel, const std::string& text) const
    {
        if (m_callback)
            m_callback(severity, subChannel, text);
    }

private:
    Callback m_callback;
};

} // namespace Orn
