#pragma once

// Command lines of the tool. A command declares its options once; parsing, help and usage errors come from
// there.

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace vellor::tool {

/// What the program exits with.
enum ExitCode
{
    Done = 0,
    WrongUsage = 1,
    UnreadableFile = 2,
    Failed = 3,
    Unwritable = 4
};

struct Option
{
    const char* name;  // "--alias"
    const char* brief; // "-a", or null
    const char* value; // what stands behind it, for the help; null for a switch
    const char* help;
};

struct UsageError : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

struct Arguments
{
    std::vector<std::string> files;
    std::map<std::string, std::vector<std::string>> options; // by the long name, in the order given

    bool has(const std::string& name) const { return options.count(name) != 0; }
    /// The last value given, or fallback.
    std::string value(const std::string& name, const std::string& fallback = {}) const;
};

struct Command
{
    const char* name;
    const char* operands; // for the help: "FILE.vlr..."
    const char* help;
    std::vector<Option> options;
    int (*run)(const Arguments&); // returns an ExitCode; may throw UsageError
};

/// Throws UsageError. "--" ends the options; "--name=value" is taken as well.
Arguments parseArguments(const Command& command, const std::vector<std::string>& words);

extern const Command cookCommand;
extern const Command infoCommand;
extern const Command nodesCommand;
extern const Command profileCommand;
extern const Command renderCommand;
extern const Command templatesCommand;

} // namespace vellor::tool
