#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace vellor::fuzz {

/// Ends the process where a promise is broken.
inline void require(bool kept, const char* promise, const std::string& error)
{
    if (kept)
        return;
    std::fprintf(stderr, "broken promise: %s (%s)\n", promise, error.c_str());
    std::abort();
}

} // namespace vellor::fuzz
