#pragma once

#include <string>

namespace Orn::ColorManagement {

/// Where the engines say what happens, in UTF-8. Any thread.
class ILogger
{
public:
    virtual ~ILogger() = default;

    virtual void logInfo(std::string const& text) const = 0;
    virtual void logWarning(std::string const& text) const = 0;
    virtual void logError(std::string const& text) const = 0;
};

} // namespace Orn::ColorManagement
