#include "applications/tool/options.h"

#include <algorithm>

namespace vellor::tool {

namespace {

const Option& findOption(const Command& command, const std::string& name)
{
    const auto found =
        std::find_if(command.options.begin(), command.options.end(), [&](const Option& option) {
            return name == option.name || (option.brief && name == option.brief);
        });
    if (found == command.options.end())
        throw UsageError("unknown option '" + name + "'");
    return *found;
}

} // namespace

std::string Arguments::value(const std::string& name, const std::string& fallback) const
{
    const auto found = options.find(name);
    return found == options.end() ? fallback : found->second.back();
}

Arguments parseArguments(const Command& command, const std::vector<std::string>& words)
{
    Arguments arguments;
    bool onlyFiles = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (onlyFiles || word.size() < 2 || word[0] != '-') {
            arguments.files.push_back(word);
            continue;
        }
        if (word == "--") {
            onlyFiles = true;
            continue;
        }
        const std::size_t equals = word.compare(0, 2, "--") == 0 ? word.find('=') : std::string::npos;
        const Option& option = findOption(command, word.substr(0, equals));
        const bool attached = equals != std::string::npos;
        if (attached && !option.value)
            throw UsageError(std::string("the option '") + option.name + "' takes no value");
        if (option.value && !attached && i + 1 == words.size())
            throw UsageError(std::string("the option '") + option.name + "' needs " + option.value);
        arguments.options[option.name].push_back(!option.value ? ""
                                                 : attached    ? word.substr(equals + 1)
                                                               : words[++i]);
    }
    return arguments;
}

} // namespace vellor::tool
