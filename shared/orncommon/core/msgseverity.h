#pragma once

namespace Orn::Core::Log {

enum MsgSeverity
{
    Info = 0,
    Warning = 1,
    Error = 2
};

} // namespace Orn::Core::Log
