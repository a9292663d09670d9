#pragma once

#include "orncommon/colormanagement/ilogger.h"

#include <memory>

namespace Orn::ColorManagement {

/// Drops everything.
class NullLogger : public ILogger
{
public:
    static std::shared_ptr<NullLogger> create() { return std::make_shared<NullLogger>(); }

    void logInfo(std::string const&) const override {}
    void logWarning(std::string const&) const override {}
    void logError(std::string const&) const override {}
};

} // namespace Orn::ColorManagement
