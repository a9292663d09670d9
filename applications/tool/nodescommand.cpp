#include "applications/tool/options.h"

#include "platform/nodes/node.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace vellor::tool {

namespace {

using nodes::NodeDeclaration;
using nodes::OperandChannels;
using nodes::ParameterDeclaration;
using nodes::ParameterType;
using nodes::ResultChannels;

const char* nameOf(ParameterType type)
{
    static const char* const names[] = {
        "float", "float2", "float3", "float4", "int",      "int2",          "int3",        "int4",
        "bool",  "choice", "text",   "curve",  "gradient", "pixel program", "image input", "picture file"};
    return names[static_cast<int>(type)];
}

int componentsOf(ParameterType type)
{
    const int index = static_cast<int>(type);
    return index < 8 ? index % 4 + 1 : index < 10 ? 1 : 0;
}

const char* describe(ResultChannels channels)
{
    switch (channels) {
    case ResultChannels::Grey:
        return "grey";
    case ResultChannels::Colour:
        return "colour";
    case ResultChannels::FromOperands:
        return "as its operands: colour when one of them is colour";
    case ResultChannels::Chosen:
        break;
    }
    return "`channels=\"grey\"` or `\"colour\"`, grey by default";
}

const char* describe(OperandChannels channels)
{
    switch (channels) {
    case OperandChannels::Grey:
        return "grey";
    case OperandChannels::Colour:
        return "colour";
    case OperandChannels::Any:
        return "any";
    case OperandChannels::Result:
        break;
    }
    return "as the result";
}

std::string defaultOf(const ParameterDeclaration& parameter)
{
    const int count = componentsOf(parameter.type);
    if (parameter.type == ParameterType::Choice)
        return parameter.choices.at(static_cast<std::size_t>(parameter.defaultValue[0]));
    if (parameter.type == ParameterType::Bool)
        return parameter.defaultValue[0] != 0.0 ? "on" : "off";
    std::ostringstream text;
    for (int i = 0; i < count; ++i)
        text << (i > 0 ? ", " : "") << parameter.defaultValue[i];
    return text.str();
}

std::string rangeOf(const ParameterDeclaration& parameter)
{
    std::ostringstream text;
    if (parameter.type == ParameterType::Choice) {
        for (std::size_t i = 0; i < parameter.choices.size(); ++i)
            text << (i > 0 ? ", " : "") << parameter.choices[i];
    } else if (componentsOf(parameter.type) > 0 && parameter.type != ParameterType::Bool) {
        text << parameter.minimum << " to " << parameter.maximum;
    }
    return text.str();
}

/// Text for a cell of a table.
std::string cell(const std::string& text)
{
    std::string escaped;
    for (const char c : text)
        escaped += c == '|' ? "\\|" : std::string(1, c);
    return escaped;
}

void printNode(const NodeDeclaration& node)
{
    std::printf("#### %s\n\n%s: %s\n\nResult: %s.\n", node.name, node.label, node.text,
                describe(node.result));
    if (!node.operands.empty())
        std::printf("\n| operand | picture | |\n|---|---|---|\n");
    for (const auto& operand : node.operands)
        std::printf("| `%s` | %s%s | %s |\n", operand.name, describe(operand.channels),
                    operand.required ? ", required" : "", cell(operand.text).c_str());
    if (!node.parameters.empty())
        std::printf("\n| parameter | type | default | range | |\n|---|---|---|---|---|\n");
    for (const ParameterDeclaration& parameter : node.parameters)
        std::printf("| `%s` | %s | %s | %s | %s |\n", parameter.name, nameOf(parameter.type),
                    defaultOf(parameter).c_str(), rangeOf(parameter).c_str(), cell(parameter.text).c_str());
    std::printf("\n");
}

int runNodes(const Arguments& arguments)
{
    if (!arguments.files.empty())
        throw UsageError("this command takes no file");
    std::vector<const NodeDeclaration*> all = nodes::allNodes();
    std::sort(all.begin(), all.end(), [](const NodeDeclaration* a, const NodeDeclaration* b) {
        return std::string(a->name) < b->name;
    });
    if (!arguments.has("--markdown")) {
        for (const NodeDeclaration* node : all)
            std::printf("%-20s %-14s %s\n", node->name, node->category, node->label);
        return Done;
    }
    for (const char* category :
         {"Sources", "Patterns", "Tone", "Combining", "Neighbourhood", "Geometry", "Surface", "Programs"}) {
        const auto belongs = [&](const NodeDeclaration* node) {
            return std::string(node->category) == category;
        };
        if (std::none_of(all.begin(), all.end(), belongs))
            continue;
        std::printf("### %s\n\n", category);
        for (const NodeDeclaration* node : all) {
            if (belongs(node))
                printNode(*node);
        }
    }
    return Done;
}

} // namespace

const Command nodesCommand{"nodes",
                           "",
                           "Lists the kinds of nodes that authoring files may use.",
                           {{"--markdown", nullptr, nullptr, "the whole reference, as in docs/authoring.md"}},
                           runNodes};

} // namespace vellor::tool
