#include "platform/cooker/scope.h"

#include "platform/cooker/literals.h"
#include "platform/cooker/packagefunctions.h"
#include "platform/program/types.h"

namespace vellor::cooker {

using program::Op;
using program::ValueType;
using Base = TypedValue::Base;

namespace {

/// The base-2 logarithm of a power of two, or -1.
int log2Of(std::int32_t side)
{
    for (int i = 0; i <= static_cast<int>(program::kMaxLog2Size); ++i) {
        if (side == 1 << i)
            return i;
    }
    return -1;
}

TypedValue pairOf(program::ValueBuilder::Value x, program::ValueBuilder::Value y)
{
    return {Base::Int, 2, {x, y, 0, 0}};
}

[[noreturn]] void failSize(const SourceText& text)
{
    throw ExpressionError(text.place,
                          "'" + text.text +
                              "' is no size; expected pixels like 512x256, powers of two up to 16384, or "
                              "steps from the graph's size like -1,0");
}

} // namespace

Scope::Scope(const PackageSource& package_, const GraphSource& graph_, const CookOptions& options,
             const Open& open, const Scope* outer_, const NodeSource* instance_)
    : package(package_), graph(graph_), outer(outer_), instance(instance_),
      path(outer_ ? outer_->path + "/" + instance_->id.text : graph_.identifier.text), m_options(options),
      m_open(open)
{
    for (const ValueSource& value : graph.values)
        m_values.emplace(value.id.text, &value);
}

std::optional<TypedValue> Scope::input(const std::string& name, ExpressionCompiler& compiler) const
{
    const auto found = inputs.find(name);
    if (found == inputs.end() || !program::isNumeric(found->second.type.type))
        return std::nullopt;
    const ExpressionCompiler::Key key{this, "input." + name};
    const auto known = compiler.memory().find(key);
    if (known != compiler.memory().end())
        return known->second;
    TypedValue value = bound(found->second, compiler);
    if (found->second.type.isBool)
        value.base = Base::Bool;
    compiler.memory()[key] = value;
    return value;
}

TypedValue Scope::bound(const InputBinding& binding, ExpressionCompiler& compiler) const
{
    const ValueType type = binding.type.type;
    TypedValue value{program::isFloat(type) ? Base::Float : Base::Int, program::componentCount(type), {}};
    switch (binding.kind) {
    case InputBinding::Kind::Expression:
        return compiler.converted(compiler.compile(*binding.expression, *outer), type,
                                  binding.expression->place, true);
    case InputBinding::Kind::Outer:
        return compiler.converted(*outer->input(binding.outerName, compiler), type, instance->place, true);
    case InputBinding::Kind::Size:
        return outer->size(compiler, instance->size);
    case InputBinding::Kind::Seed:
        return outer->seed(compiler, instance->seed);
    default:
        break;
    }
    for (int i = 0; i < value.count; ++i) {
        const auto component = static_cast<std::uint16_t>(i);
        value.values[i] = binding.kind == InputBinding::Kind::Exposed
                              ? compiler.builder().input(static_cast<std::uint16_t>(binding.index), component)
                              : compiler.builder().constant(binding.words[i]);
    }
    return value;
}

std::optional<TypedValue> Scope::value(const std::string& name, ExpressionCompiler& compiler) const
{
    const auto found = m_values.find(name);
    if (found == m_values.end())
        return std::nullopt;
    const ExpressionCompiler::Key key{this, "value." + name};
    const auto known = compiler.memory().find(key);
    if (known != compiler.memory().end()) {
        if (!known->second)
            throw ExpressionError(found->second->id.place, "the value '" + name + "' depends on itself");
        return known->second;
    }
    const auto failure = m_failures.find(name);
    if (failure != m_failures.end())
        throw failure->second;
    compiler.memory()[key] = std::nullopt;
    try {
        compiler.memory()[key] = compiler.compile(found->second->expression, *this);
    } catch (const ExpressionError& error) {
        m_failures.emplace(name, error);
        throw;
    }
    return compiler.memory()[key];
}

Scope* Scope::inner(const NodeSource& node) const
{
    const auto [entry, isNew] = m_inner.try_emplace(&node);
    Inner& inner = entry->second;
    if (inner.underWay)
        throw ExpressionError(node.place, "the instance '" + node.id.text + "' depends on itself");
    if (isNew) {
        inner.underWay = true;
        std::unique_ptr<Scope> scope = m_open(*this, node);
        inner.underWay = false;
        inner.scope = std::move(scope);
    }
    return inner.scope.get();
}

TypedValue Scope::instanceNumber(const std::string& name, Place place, ExpressionCompiler& compiler) const
{
    const std::size_t dot = name.find('.');
    const std::string id = name.substr(0, dot), outputName = name.substr(dot + 1);
    std::vector<std::string> known;
    const NodeSource* found = nullptr;
    for (const NodeSource& node : graph.nodes) {
        if (!node.isInstance())
            continue;
        known.push_back(node.id.text);
        if (node.id.text == id)
            found = &node;
    }
    if (!found)
        throw ExpressionError(place,
                              "no instance '" + id + "'; " +
                                  (known.empty() ? "there are none" : "there are " + quotedList(known)));
    const Scope* scope = inner(*found);
    if (!scope)
        throw ExpressionError(found->place, "the instance '" + id + "' can't be used");
    known.clear();
    for (const OutputSource& output : scope->graph.outputs) {
        if (!output.value)
            continue;
        known.push_back(output.identifier.text);
        if (output.identifier.text == outputName)
            return scope->number(output, compiler);
    }
    throw ExpressionError(place, "the instance '" + id + "' has no number '" + outputName + "'; " +
                                     (known.empty() ? "there are none" : "there are " + quotedList(known)));
}

TypedValue Scope::number(const OutputSource& output, ExpressionCompiler& compiler) const
{
    const ExpressionCompiler::Key key{this, "output." + output.identifier.text};
    const auto known = compiler.memory().find(key);
    if (known != compiler.memory().end()) {
        if (!known->second)
            throw ExpressionError(output.identifier.place,
                                  "the output '" + output.identifier.text + "' depends on itself");
        return *known->second;
    }
    compiler.memory()[key] = std::nullopt;
    TypedValue value = compiler.compile(output.value, *this);
    const auto type = parseInputType(output.type.text);
    if (type && program::isNumeric(type->type)) {
        value = compiler.converted(value, type->type, output.value.place);
        if (type->isBool)
            value.base = Base::Bool;
    }
    compiler.memory()[key] = value;
    return value;
}

OwnFunction Scope::function(const std::string& name) const
{
    return PackageFunctions(package).function(name);
}

std::vector<std::string> Scope::knownFunctions() const
{
    return PackageFunctions(package).knownFunctions();
}

std::vector<std::string> Scope::knownInputs() const
{
    std::vector<std::string> names;
    for (const auto& [name, binding] : inputs) {
        if (program::isNumeric(binding.type.type))
            names.push_back(name);
    }
    return names;
}

std::vector<std::string> Scope::knownValues() const
{
    std::vector<std::string> names;
    for (const auto& entry : m_values)
        names.push_back(entry.first);
    return names;
}

TypedValue Scope::size(ExpressionCompiler& compiler) const
{
    if (outer)
        return outer->size(compiler, instance->size);
    if (const auto declared = input("$outputsize", compiler))
        return clampedSize(compiler, *declared);
    if (graph.size && graph.size.text.find('x') == std::string::npos)
        throw ExpressionError(graph.size.place, "expected pixels like 512x256");
    const int standard = 9;
    program::ValueBuilder& builder = compiler.builder();
    if (!graph.size)
        return clampedSize(compiler, pairOf(builder.integer(standard), builder.integer(standard)));
    return size(compiler, graph.size);
}

TypedValue Scope::size(ExpressionCompiler& compiler, const SourceText& text) const
{
    if (!text)
        return size(compiler);
    program::ValueBuilder& builder = compiler.builder();
    const std::size_t cross = text.text.find('x');
    if (cross != std::string::npos) {
        const auto width = parseInt(trimmed(text.text.substr(0, cross)));
        const auto height = parseInt(trimmed(text.text.substr(cross + 1)));
        const int x = width ? log2Of(*width) : -1, y = height ? log2Of(*height) : -1;
        if (x < 0 || y < 0)
            failSize(text);
        return clampedSize(compiler, pairOf(builder.integer(x), builder.integer(y)));
    }
    const std::vector<std::string> parts = splitList(text.text);
    TypedValue result = size(compiler);
    for (std::size_t i = 0; i < 2; ++i) {
        const auto step = parts.size() == 2 ? parseInt(parts[i]) : std::nullopt;
        if (!step || *step < -static_cast<int>(program::kMaxLog2Size) ||
            *step > static_cast<int>(program::kMaxLog2Size))
            failSize(text);
        result.values[i] = builder.emit(Op::IAdd, result.values[i], builder.integer(*step));
    }
    return clampedSize(compiler, result);
}

TypedValue Scope::clampedSize(ExpressionCompiler& compiler, TypedValue size) const
{
    program::ValueBuilder& builder = compiler.builder();
    for (int i = 0; i < 2; ++i) {
        const auto atMost = builder.emit(Op::IMin, size.values[i], builder.integer(m_options.sizeLimit));
        size.values[i] = builder.emit(Op::IMax, atMost, builder.integer(0));
    }
    return size;
}

TypedValue Scope::seed(ExpressionCompiler& compiler) const
{
    if (const auto declared = input("$randomseed", compiler))
        return *declared;
    if (outer)
        return outer->seed(compiler, instance->seed);
    return {Base::Int, 1, {compiler.builder().integer(0), 0, 0, 0}};
}

TypedValue Scope::seed(ExpressionCompiler& compiler, const SourceText& text) const
{
    TypedValue result = seed(compiler);
    if (text) {
        const TypedValue added =
            compiler.converted(compiler.compile(text, *this), ValueType::Int, text.place);
        result.values[0] = compiler.builder().emit(Op::IAdd, result.values[0], added.values[0]);
    }
    return result;
}

const InputBinding* Scope::resource(const std::string& name) const
{
    const auto found = inputs.find(name);
    if (found == inputs.end() || program::isNumeric(found->second.type.type))
        return nullptr;
    if (found->second.kind == InputBinding::Kind::Outer)
        return outer->resource(found->second.outerName);
    return &found->second;
}

} // namespace vellor::cooker
