#pragma once

#include "platform/cooker/cookoptions.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace vellor::cooker {

struct PackageFile
{
    std::string path; // UTF-8, for messages and to find includes beside it
    std::string bytes;
};

enum class CookStage
{
    Loading,
    Flattening,
    FrontEnd,
    BackEnd
};

/// Where cooking came to an end.
enum class CookEnd
{
    Done,
    BadFile,
    BadGraph,
    BadProgram
};

struct CookResult
{
    CookEnd end = CookEnd::Done;
    std::vector<std::string> errors; // "file:line:column: text", all of them
    std::vector<std::uint8_t> assembly;
    std::string description;
};

/// Cooks packages into one assembly and one description. Any thread; progress is called on it. May throw
/// std::bad_alloc.
CookResult cook(std::vector<PackageFile> files, const NodeTable& table, const CookOptions& options,
                const std::function<void(CookStage)>& progress = {});

} // namespace vellor::cooker
