#pragma once

// From expressions to value programs.
//
// Types are bool, int and float, with 1 to 4 components for the last two. An int fits where a float is
// wanted, and one component where several are; never the other way round. "/" always divides as floats.

#include "platform/cooker/expression.h"
#include "platform/cooker/package.h"
#include "platform/program/valuebuilder.h"

#include <map>
#include <optional>

namespace vellor::cooker {

struct TypedValue
{
    enum class Base
    {
        Bool,
        Int,
        Float
    };

    Base base = Base::Float;
    int count = 1;
    std::array<program::ValueBuilder::Value, 4> values{};
};

std::string typeName(const TypedValue& value);

class ExpressionCompiler;

/// A function of an author's, and the package that it belongs to, whose functions it may call.
struct OwnFunction
{
    const FunctionSource* source = nullptr;
    const PackageSource* package = nullptr;
};

/// What the names in an expression stand for.
class Names
{
public:
    virtual ~Names() = default;
    /// The value of input.name or value.name, made with the compiler's builder; nullopt when there is none,
    /// and known lists what there is. May throw ExpressionError.
    virtual std::optional<TypedValue> input(const std::string& name, ExpressionCompiler& compiler) const = 0;
    virtual std::optional<TypedValue> value(const std::string& name, ExpressionCompiler& compiler) const = 0;
    /// The numeric output "id.output" of a graph instance; fails by ExpressionError alone, at this place.
    virtual TypedValue instanceNumber(const std::string& name, Place place,
                                      ExpressionCompiler& compiler) const = 0;
    /// The function "name" or "include.name"; none: a null source.
    virtual OwnFunction function(const std::string& name) const = 0;
    virtual std::vector<std::string> knownFunctions() const = 0;
    virtual std::vector<std::string> knownInputs() const = 0;
    virtual std::vector<std::string> knownValues() const = 0;
};

/// The pictures that a pixel program may sample: operand by operand its name and channels, 0 where none is
/// connected.
struct SampledOperand
{
    std::string name;
    int channels = 0;
};

/// Compiles into one value program. All members throw ExpressionError or program::TooLong.
class ExpressionCompiler
{
public:
    explicit ExpressionCompiler(const Sources& sources) : m_sources(sources) {}

    /// Allows pos, size and sample.
    void setPixelProgram(std::vector<SampledOperand> operands);

    TypedValue compile(const SourceText& text, const Names& names);
    /// The value as a type; place is told when it does not fit. A float3 fits float4 with 1 as the last
    /// component when opaque is set.
    TypedValue converted(const TypedValue& value, program::ValueType type, Place place, bool opaque = false);
    program::ValueProgram finish(const TypedValue& value, program::ValueType type);

    program::ValueBuilder& builder() { return m_builder; }

    /// A value that was made for this key before, so that shared expressions are compiled once for each
    /// program. The entry is empty while it is being made.
    using Key = std::pair<const void*, std::string>;
    std::map<Key, std::optional<TypedValue>>& memory() { return m_memory; }

private:
    friend class ExpressionBody;

    const Sources& m_sources;
    program::ValueBuilder m_builder;
    std::map<Key, std::optional<TypedValue>> m_memory;
    bool m_perPixel = false;
    std::vector<SampledOperand> m_operands;
    std::vector<const FunctionSource*> m_calls; // under way, the innermost last
    int m_depth = 0, m_callCount = 0;
};

/// Names of the functions of the language, with their arguments, for the documentation and its test.
const std::vector<std::string>& functionNames();

} // namespace vellor::cooker
