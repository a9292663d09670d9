#include "applications/tool/manual.h"

#include <algorithm>
#include <sstream>

namespace vellor::tool {

namespace {

constexpr std::size_t kLineWidth = 100;   // characters
constexpr std::size_t kOptionColumn = 26; // where the text of options begins

struct ExitText
{
    ExitCode code;
    const char* text;
};

constexpr ExitText kExitTexts[] = {{Done, "done"},
                                   {WrongUsage, "wrong usage"},
                                   {UnreadableFile, "a file can't be read"},
                                   {Failed, "cooking, linking or generating failed"},
                                   {Unwritable, "a result can't be written"}};

/// Words in lines that begin with `indent` blanks but for the first, which has `begun` characters already.
std::string wrapped(const std::string& text, std::size_t indent, std::size_t begun)
{
    std::istringstream words(text);
    std::string result, word;
    std::size_t column = begun;
    bool isFirst = true;
    while (words >> word) {
        if (!isFirst && column + 1 + word.size() > kLineWidth) {
            result += '\n' + std::string(indent, ' ');
            column = indent;
        } else if (!isFirst) {
            result += ' ';
            ++column;
        }
        result += word;
        column += word.size();
        isFirst = false;
    }
    return result;
}

std::string namesOf(const Option& option)
{
    const std::string value = option.value ? std::string(" ") + option.value : "";
    return (option.brief ? std::string(option.brief) + ", " : "") + option.name + value;
}

std::string firstSentence(const std::string& text)
{
    const std::string sentence = text.substr(0, text.find(". ")).substr(0, text.find(": "));
    return sentence.substr(0, sentence.find_last_not_of('.') + 1);
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

/// Hyphens that stay hyphens, and no line that reads as a request.
std::string roff(const std::string& text)
{
    const std::string escaped = replaced(replaced(text, "\\", "\\e"), "-", "\\-");
    return escaped.empty() || (escaped[0] != '.' && escaped[0] != '\'') ? escaped : "\\&" + escaped;
}

std::string manualSection(const Command& command)
{
    std::string text = std::string(".SS \"vellor ") + command.name + ' ' + roff(command.operands) + "\"\n" +
                       roff(command.help) + "\n";
    for (const Option& option : command.options) {
        text += std::string(".TP\n.B ") + (option.brief ? roff(option.brief) + ", " : "") + roff(option.name);
        text += option.value ? " \\fI" + roff(option.value) + "\\fR\n" : "\n";
        text += roff(option.help) + "\n";
    }
    return text;
}

/// What completes the value of an option: its words, or files or folders; empty for what nobody can guess.
std::string completionOf(const Option& option)
{
    const std::string value = option.value;
    if (value.find('|') != std::string::npos)
        return "COMPREPLY=($(compgen -W \"" + replaced(value, "|", " ") + "\" -- \"$current\"))";
    if (value.rfind("DIR") != std::string::npos)
        return "COMPREPLY=($(compgen -d -- \"$current\"))";
    if (value.rfind("FILE", 0) == 0 || value.rfind("OUT", 0) == 0)
        return "COMPREPLY=($(compgen -f -- \"$current\"))";
    return "COMPREPLY=()";
}

std::string completionCase(const Command& command)
{
    std::string values, words;
    for (const Option& option : command.options) {
        words += std::string(option.name) + ' ';
        if (!option.value)
            continue;
        values += std::string("        ") + command.name + ':' + option.name;
        if (option.brief)
            values += std::string(" | ") + command.name + ':' + option.brief;
        values += ") " + completionOf(option) + "; return ;;\n";
    }
    return values + "        " + command.name + ":*) options=\"" + words + "--help\" ;;\n";
}

} // namespace

const std::vector<const Command*>& allCommands()
{
    static const std::vector<const Command*> commands{&cookCommand,    &renderCommand,    &infoCommand,
                                                      &profileCommand, &templatesCommand, &nodesCommand};
    return commands;
}

std::string overview()
{
    std::string text = "usage: vellor COMMAND ...\n\n";
    for (const Command* command : allCommands()) {
        std::string name = std::string("  ") + command->name;
        name.resize(12, ' ');
        text += name + wrapped(firstSentence(command->help), 12, 12) + '\n';
    }
    return text + "\n\"vellor COMMAND --help\" tells more; --version, --man and --bash-completion print just "
                  "that.\n";
}

std::string helpOf(const Command& command)
{
    std::string text =
        std::string("usage: vellor ") + command.name + (command.options.empty() ? "" : " [OPTION]...");
    text += *command.operands ? std::string(" ") + command.operands : "";
    text += "\n\n" + wrapped(command.help, 0, 0) + "\n\n";
    for (const Option& option : command.options) {
        std::string names = "  " + namesOf(option);
        names.resize(std::max(names.size() + 2, kOptionColumn), ' ');
        text += names + wrapped(option.help, kOptionColumn, names.size()) + '\n';
    }
    return text;
}

std::string manualPage()
{
    std::string text =
        ".TH VELLOR 1 \"\" \"Vellor Player " VELLOR_VERSION "\" \"User Commands\"\n"
        ".SH NAME\nvellor \\- cooks, lists, renders and profiles procedural materials\n"
        ".SH SYNOPSIS\n.B vellor\n.I COMMAND\n[\\fIOPTION\\fR]... [\\fIFILE\\fR]...\n"
        ".SH DESCRIPTION\nThe work on packages of procedural graphs without a window.\n.SH COMMANDS\n";
    for (const Command* command : allCommands())
        text += manualSection(*command);
    text += ".SH EXIT STATUS\n";
    for (const ExitText& exit : kExitTexts)
        text += ".TP\n.B " + std::to_string(exit.code) + "\n" + roff(exit.text) + "\n";
    return text + "An interrupted command ends by the signal that it got.\n";
}

std::string bashCompletion()
{
    std::string names, cases;
    for (const Command* command : allCommands()) {
        names += std::string(command->name) + ' ';
        cases += completionCase(*command);
    }
    return "# Completion of vellor for bash, made from its options.\n"
           "_vellor()\n{\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} options=\n"
           "    COMPREPLY=()\n"
           "    if [[ $COMP_CWORD -eq 1 ]]; then\n"
           "        COMPREPLY=($(compgen -W \"" +
           names +
           "--help --version\" -- \"$current\"))\n        return\n    fi\n    case "
           "${COMP_WORDS[1]}:$previous in\n" +
           cases +
           "    esac\n"
           "    if [[ $current == -* ]]; then\n"
           "        COMPREPLY=($(compgen -W \"$options\" -- \"$current\"))\n"
           "    else\n"
           "        COMPREPLY=($(compgen -f -- \"$current\"))\n"
           "    fi\n"
           "}\n"
           "complete -o filenames -F _vellor vellor\n";
}

} // namespace vellor::tool
