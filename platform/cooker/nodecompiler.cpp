#include "platform/cooker/nodecompiler.h"

#include "platform/cooker/literals.h"
#include "platform/cooker/packageloader.h"
#include "platform/cooker/pngreader.h"
#include "platform/program/bytes.h"
#include "platform/program/types.h"

#include <algorithm>
#include <cstring>

namespace vellor::cooker {

using nodes::NodeDeclaration;
using nodes::OperandChannels;
using nodes::ParameterDeclaration;
using nodes::ParameterType;
using nodes::ResultChannels;
using program::kNone;
using program::ValueType;

namespace {

constexpr int kGrey = 1, kColour = 4;

/// The numeric type that a parameter's values have; Bool and Choice are integers.
std::optional<ValueType> numericType(ParameterType type)
{
    switch (type) {
    case ParameterType::Float:
        return ValueType::Float;
    case ParameterType::Float2:
        return ValueType::Float2;
    case ParameterType::Float3:
        return ValueType::Float3;
    case ParameterType::Float4:
        return ValueType::Float4;
    case ParameterType::Int:
    case ParameterType::Bool:
    case ParameterType::Choice:
        return ValueType::Int;
    case ParameterType::Int2:
        return ValueType::Int2;
    case ParameterType::Int3:
        return ValueType::Int3;
    case ParameterType::Int4:
        return ValueType::Int4;
    default:
        return std::nullopt;
    }
}

std::vector<std::uint8_t> curveBlob(std::vector<CurveKey> keys)
{
    std::stable_sort(keys.begin(), keys.end(),
                     [](const CurveKey& a, const CurveKey& b) { return a.x < b.x; });
    program::ByteWriter out;
    for (const CurveKey& key : keys) {
        out.put(program::floatBits(key.x));
        out.put(program::floatBits(key.y));
    }
    return out.bytes();
}

std::vector<std::uint8_t> gradientBlob(std::vector<GradientStop> stops)
{
    std::stable_sort(stops.begin(), stops.end(),
                     [](const GradientStop& a, const GradientStop& b) { return a.at < b.at; });
    program::ByteWriter out;
    for (const GradientStop& stop : stops) {
        out.put(program::floatBits(stop.at));
        for (const float component : stop.color)
            out.put(program::floatBits(component));
    }
    return out.bytes();
}

template<typename Declarations> std::vector<std::string> namesOf(const Declarations& declarations)
{
    std::vector<std::string> names;
    for (const auto& declaration : declarations)
        names.emplace_back(declaration.name);
    return names;
}

std::string listOrNone(const std::vector<std::string>& names)
{
    return names.empty() ? "none" : quotedList(names);
}

/// The outputs of an instance, or all pictures when owner is none; not more than a message can hold.
std::vector<std::string> similarPictures(const Scope& scope, const std::string& owner)
{
    constexpr std::size_t kMost = 50;
    std::vector<std::string> names;
    const std::string prefix = owner + ".";
    for (auto i = scope.results.lower_bound(prefix); i != scope.results.end() && names.size() < kMost; ++i) {
        if (i->first.compare(0, prefix.size(), prefix) != 0)
            break;
        names.push_back(i->first);
    }
    const bool isInstance = !names.empty();
    for (auto i = scope.results.begin(); i != scope.results.end() && names.size() < kMost && !isInstance; ++i)
        names.push_back(i->first);
    return names;
}

} // namespace

struct NodeCompiler::Job
{
    const Scope& scope;
    const NodeSource& source;
    const NodeDeclaration& declaration;
    program::Node node;
    std::int32_t alias = kNone; // the picture that stands for the whole node
    bool isUnbound = false;     // an image input that nobody binds
    bool failed = false;
};

NodeCompiler::NodeCompiler(const Sources& sources, Diagnostics& diagnostics, const NodeTable& table,
                           const CookOptions& options, program::Program& program)
    : m_sources(sources), m_diagnostics(diagnostics), m_table(table), m_options(options), m_program(program),
      m_pool(program)
{
}

void NodeCompiler::error(Job& job, Place place, const std::string& text)
{
    job.failed = true;
    m_diagnostics.error(place, text);
}

const NodeDeclaration* NodeCompiler::find(const std::string& name) const
{
    const auto found = std::find_if(m_table.begin(), m_table.end(),
                                    [&](const NodeDeclaration* kind) { return name == kind->name; });
    return found == m_table.end() ? nullptr : *found;
}

std::vector<std::string> NodeCompiler::kindNames() const
{
    std::vector<std::string> names;
    for (const NodeDeclaration* kind : m_table)
        names.emplace_back(kind->name);
    std::sort(names.begin(), names.end());
    return names;
}

std::int32_t NodeCompiler::compile(const Scope& scope, const NodeSource& source)
{
    const NodeDeclaration* declaration = find(source.type.text);
    if (!declaration) {
        if (source.type)
            m_diagnostics.error(source.type.place, "unknown node type '" + source.type.text + "'; expected " +
                                                       quotedList(kindNames()));
        return kNone;
    }
    Job job{scope, source, *declaration, {}, kNone, false, false};
    job.node.kind = declaration->id();
    constexpr std::size_t kLongestName = 1024;
    job.node.name = scope.path + "/" + source.id.text;
    if (job.node.name.size() > kLongestName)
        job.node.name.erase(0, job.node.name.size() - kLongestName);
    connect(job);
    settleChannels(job);
    convertOperands(job);
    setParameters(job);
    setSizeAndSeed(job);
    if (job.failed)
        return kNone;
    return job.alias != kNone ? withChannels(job.alias, job.node.channels) : m_pool.node(std::move(job.node));
}

void NodeCompiler::connect(Job& job)
{
    const auto& operands = job.declaration.operands;
    job.node.operands.assign(operands.size(), kNone);
    std::vector<bool> named(operands.size(), false);
    for (const LinkSource& link : job.source.links) {
        const auto found = std::find_if(operands.begin(), operands.end(),
                                        [&](const auto& operand) { return link.name.text == operand.name; });
        const std::int32_t from = resolve(job.scope, link.from);
        job.failed = job.failed || from == kNone;
        if (found == operands.end()) {
            if (link.name)
                error(job, link.name.place,
                      std::string("a ") + job.declaration.name + " has no operand '" + link.name.text +
                          "'; expected " + listOrNone(namesOf(operands)));
            continue;
        }
        const auto index = static_cast<std::size_t>(found - operands.begin());
        if (named[index])
            error(job, link.name.place, "the operand '" + link.name.text + "' is connected twice");
        named[index] = true;
        job.node.operands[index] = from;
    }
    for (std::size_t i = 0; i < operands.size(); ++i) {
        if (operands[i].required && !named[i])
            error(job, job.source.place,
                  "'" + job.source.id.text + "' needs a link to its operand '" + operands[i].name + "'");
    }
}

void NodeCompiler::settleChannels(Job& job)
{
    const ResultChannels rule = job.declaration.result;
    const SourceText& chosen = job.source.channels;
    if (chosen && rule != ResultChannels::Chosen)
        error(job, chosen.place, std::string("a ") + job.declaration.name + " has no choice of channels");
    int channels =
        rule == ResultChannels::Colour || (rule == ResultChannels::Chosen && chosen.text == "colour")
            ? kColour
            : kGrey;
    for (std::size_t i = 0; i < job.node.operands.size() && rule == ResultChannels::FromOperands; ++i) {
        const std::int32_t operand = job.node.operands[i];
        const bool counts =
            operand != kNone && job.declaration.operands[i].channels == OperandChannels::Result;
        channels = counts ? std::max<int>(channels, m_program.nodes[operand].channels) : channels;
    }
    job.node.channels = static_cast<std::uint8_t>(channels);
    const std::string depths[] = {"u8", "u16", "f16", "f32"};
    const auto depth = std::find(std::begin(depths), std::end(depths), job.source.depth.text);
    if (job.source.depth && depth != std::end(depths))
        job.node.depth = static_cast<program::Depth>(depth - std::begin(depths));
}

void NodeCompiler::convertOperands(Job& job)
{
    for (std::size_t i = 0; i < job.node.operands.size(); ++i) {
        const OperandChannels wanted = job.declaration.operands[i].channels;
        std::int32_t& operand = job.node.operands[i];
        if (operand == kNone || wanted == OperandChannels::Any)
            continue;
        operand = withChannels(operand, wanted == OperandChannels::Grey     ? kGrey
                                        : wanted == OperandChannels::Colour ? kColour
                                                                            : job.node.channels);
    }
}

std::int32_t NodeCompiler::withChannels(std::int32_t index, int channels)
{
    if (m_program.nodes[index].channels == channels)
        return index;
    program::Node conversion;
    const program::Node& from = m_program.nodes[index];
    conversion.kind = program::stableId(channels == kGrey ? "greyconversion" : "colourconversion");
    conversion.channels = static_cast<std::uint8_t>(channels);
    conversion.depth = from.depth;
    conversion.operands = {index};
    conversion.size = from.size;
    conversion.name = from.name + (channels == kGrey ? " (grey)" : " (colour)");
    return m_pool.node(std::move(conversion));
}

void NodeCompiler::setParameters(Job& job)
{
    std::vector<std::string> given;
    for (const ParameterSource& source : job.source.parameters) {
        const auto& declarations = job.declaration.parameters;
        const auto found = std::find_if(declarations.begin(), declarations.end(),
                                        [&](const auto& d) { return source.name.text == d.name; });
        if (found == declarations.end()) {
            if (source.name)
                error(job, source.name.place,
                      std::string("a ") + job.declaration.name + " has no parameter '" + source.name.text +
                          "'; expected " + listOrNone(namesOf(declarations)));
            continue;
        }
        if (std::find(given.begin(), given.end(), source.name.text) != given.end())
            error(job, source.name.place, "the parameter '" + source.name.text + "' is given twice");
        given.push_back(source.name.text);
        setParameter(job, *found, source);
    }
    for (const ParameterDeclaration& declaration : job.declaration.parameters) {
        const bool isGiven = std::find(given.begin(), given.end(), declaration.name) != given.end();
        const bool needed = declaration.type == ParameterType::PixelProgram ||
                            declaration.type == ParameterType::ImageInput ||
                            declaration.type == ParameterType::Picture;
        if (!isGiven && needed)
            error(job, job.source.place,
                  "'" + job.source.id.text + "' needs the parameter '" + declaration.name + "'");
    }
}

void NodeCompiler::setParameter(Job& job, const ParameterDeclaration& declaration,
                                const ParameterSource& source)
{
    program::Parameter parameter;
    parameter.id = program::stableId(declaration.name);
    if (declaration.type == ParameterType::Choice && source.value)
        setChoice(job, declaration, source, parameter);
    else if (numericType(declaration.type) || declaration.type == ParameterType::PixelProgram)
        setNumber(job, declaration, source, parameter);
    else if (source.input)
        setResource(job, declaration, source, parameter);
    else
        setBlob(job, declaration, source, parameter);
    if (!job.failed && job.alias == kNone && !job.isUnbound)
        job.node.parameters.push_back(parameter);
}

void NodeCompiler::setChoice(Job& job, const ParameterDeclaration& declaration, const ParameterSource& source,
                             program::Parameter& parameter)
{
    const auto& choices = declaration.choices;
    const auto found = std::find(choices.begin(), choices.end(), trimmed(source.value.text));
    if (found == choices.end())
        return error(job, source.value.place,
                     "'" + source.value.text + "' does not fit; expected " +
                         quotedList({choices.begin(), choices.end()}));
    parameter.words[0] = static_cast<std::uint32_t>(found - choices.begin());
}

void NodeCompiler::setNumber(Job& job, const ParameterDeclaration& declaration, const ParameterSource& source,
                             program::Parameter& parameter)
{
    const bool isPixelProgram = declaration.type == ParameterType::PixelProgram;
    const ValueType type = numericType(declaration.type)
                               .value_or(job.node.channels == kColour ? ValueType::Float4 : ValueType::Float);
    if (source.value && !isPixelProgram) {
        const auto words = parseWords(type, trimmed(source.value.text));
        if (!words)
            error(job, source.value.place,
                  "'" + source.value.text + "' does not fit; expected " + expectedWords(type));
        parameter.words = words.value_or(parameter.words);
        return;
    }
    SourceText text = source.expression;
    if (source.input) {
        text = source.input;
        text.text = (text.text.substr(0, 1) == "$" ? "" : "input.") + text.text;
    }
    if (!text)
        return error(job, source.place, "the parameter '" + source.name.text + "' needs 'value' or 'expr'");
    if (isPixelProgram && job.failed)
        return; // an operand may be missing for reasons that were told
    std::vector<SampledOperand> operands;
    for (std::size_t i = 0; i < job.node.operands.size(); ++i) {
        const std::int32_t operand = job.node.operands[i];
        operands.push_back(
            {job.declaration.operands[i].name, operand == kNone ? 0 : m_program.nodes[operand].channels});
    }
    const auto program = value(job.scope, text, type, isPixelProgram ? &operands : nullptr);
    if (!program) {
        job.failed = true;
        return;
    }
    const auto constant = isPixelProgram ? std::nullopt : program::constantResult(*program);
    parameter.words = constant.value_or(program::Words{});
    parameter.source = constant ? program::ParameterSource::Constant : program::ParameterSource::Program;
    parameter.index = constant ? kNone : m_pool.value(*program);
}

std::optional<program::ValueProgram> NodeCompiler::value(const Scope& scope, const SourceText& text,
                                                         ValueType type,
                                                         const std::vector<SampledOperand>* operands)
{
    std::optional<program::ValueProgram> result;
    guarded(text.place, [&] {
        ExpressionCompiler compiler(m_sources);
        if (operands)
            compiler.setPixelProgram(*operands);
        result =
            compiler.finish(compiler.converted(compiler.compile(text, scope), type, text.place, true), type);
    });
    return result;
}

void NodeCompiler::setResource(Job& job, const ParameterDeclaration& declaration,
                               const ParameterSource& source, program::Parameter& parameter)
{
    const bool isImage = declaration.type == ParameterType::ImageInput;
    const InputBinding* binding = job.scope.resource(source.input.text);
    const ValueType wanted = isImage ? ValueType::Image : ValueType::String;
    if ((!isImage && declaration.type != ParameterType::Text) || !binding || binding->type.type != wanted) {
        const bool takesInput = isImage || declaration.type == ParameterType::Text;
        return error(job, source.input.place,
                     takesInput ? "there is no " + typeName(wanted) + " input '" + source.input.text + "'"
                                : "the parameter '" + source.name.text + "' takes no input");
    }
    switch (binding->kind) {
    case InputBinding::Kind::Exposed:
        parameter.source = program::ParameterSource::Input;
        parameter.index = binding->index;
        break;
    case InputBinding::Kind::Picture:
        job.alias = binding->index;
        break;
    case InputBinding::Kind::Nothing:
        job.isUnbound = true;
        break;
    default:
        parameter.source = program::ParameterSource::Blob;
        parameter.index = m_pool.blob({binding->text.begin(), binding->text.end()});
    }
}

void NodeCompiler::setBlob(Job& job, const ParameterDeclaration& declaration, const ParameterSource& source,
                           program::Parameter& parameter)
{
    parameter.source = program::ParameterSource::Blob;
    if (declaration.type == ParameterType::Curve && !source.keys.empty())
        parameter.index = m_pool.blob(curveBlob(source.keys));
    else if (declaration.type == ParameterType::Gradient && !source.stops.empty())
        parameter.index = m_pool.blob(gradientBlob(source.stops));
    else if (declaration.type == ParameterType::Text && source.value)
        parameter.index = m_pool.blob({source.value.text.begin(), source.value.text.end()});
    else if (declaration.type == ParameterType::Picture && source.file)
        setPicture(job, source, parameter);
    else
        error(job, source.place,
              "the parameter '" + source.name.text + "' needs " +
                  (declaration.type == ParameterType::Curve      ? "<key> elements"
                   : declaration.type == ParameterType::Gradient ? "<stop> elements"
                   : declaration.type == ParameterType::Text     ? "'value' or 'input'"
                   : declaration.type == ParameterType::Picture  ? "'file'"
                                                                 : "'input'"));
}

void NodeCompiler::setPicture(Job& job, const ParameterSource& source, program::Parameter& parameter)
{
    const auto path =
        resolveUrl(source.file, m_sources.name(source.file.place.file), m_options, m_diagnostics);
    job.failed = job.failed || !path;
    if (!path)
        return;
    const auto [known, isNew] = m_pictures.try_emplace(*path, kNone);
    if (isNew) {
        const std::optional<std::string> bytes = readFile(*path);
        std::string why = "it can't be read";
        std::vector<std::uint8_t> blob;
        if (bytes)
            blob = pictureOfPng(*bytes, why);
        if (blob.empty())
            m_diagnostics.error(source.file.place, "the picture '" + *path + "': " + why);
        else
            known->second = m_pool.blob(std::move(blob));
    }
    parameter.index = known->second;
    job.failed = job.failed || parameter.index == kNone;
}

void NodeCompiler::setSizeAndSeed(Job& job)
{
    const bool good = guarded(job.source.place, [&] {
        ExpressionCompiler sizes(m_sources), seeds(m_sources);
        job.node.size = m_pool.value(sizes.finish(job.scope.size(sizes, job.source.size), ValueType::Int2));
        // An expression for a seed that nobody reads is still checked.
        const program::ValueProgram seed =
            seeds.finish(job.scope.seed(seeds, job.source.seed), ValueType::Int);
        const auto constant = program::constantResult(seed);
        if (job.declaration.chance == nodes::Chance::Seeded && (!constant || (*constant)[0] != 0))
            job.node.seed = m_pool.value(seed);
    });
    job.failed = job.failed || !good;
}

std::int32_t NodeCompiler::resolve(const Scope& scope, const SourceText& from)
{
    if (!from)
        return kNone;
    const std::string prefix = "input.";
    if (from.text.compare(0, prefix.size(), prefix) == 0)
        return pictureInput(scope, from, from.text.substr(prefix.size()));
    const auto found = scope.results.find(from.text);
    if (found != scope.results.end()) {
        if (found->second.isNumeric)
            m_diagnostics.error(from.place, "'" + from.text + "' is a number; expected a picture");
        return found->second.isNumeric ? kNone : found->second.node;
    }
    const std::string owner = from.text.substr(0, from.text.find('.'));
    if (scope.pending.count(owner))
        return kNone;
    const std::vector<std::string> similar = similarPictures(scope, owner);
    m_diagnostics.error(from.place, "there is no picture '" + from.text + "'" +
                                        (similar.empty() ? "" : "; expected " + quotedList(similar)));
    return kNone;
}

std::int32_t NodeCompiler::pictureInput(const Scope& scope, const SourceText& from, const std::string& name)
{
    const NodeDeclaration* kind = find("imageinput");
    const InputBinding* binding = scope.resource(name);
    if (!kind || !binding || binding->type.type != ValueType::Image) {
        m_diagnostics.error(from.place, "there is no image input '" + name + "'");
        return kNone;
    }
    NodeSource source;
    source.id = {"input." + name, from.place, true};
    source.type = {"imageinput", from.place, true};
    source.place = from.place;
    if (kind->result == ResultChannels::Chosen)
        source.channels = {"colour", from.place, true};
    for (const ParameterDeclaration& declaration : kind->parameters) {
        if (declaration.type != ParameterType::ImageInput)
            continue;
        ParameterSource parameter;
        parameter.name = {declaration.name, from.place, true};
        parameter.input = {name, from.place, true};
        parameter.place = from.place;
        source.parameters.push_back(parameter);
    }
    return compile(scope, source);
}

} // namespace vellor::cooker
