#include "platform/cooker/expressioncompiler.h"

#include "platform/cooker/packagefunctions.h"
#include "platform/cooker/valuemath.h"
#include "platform/program/types.h"

#include <algorithm>
#include <cmath>

namespace vellor::cooker {

using program::Op;
using program::ValueType;
using Base = TypedValue::Base;
using Value = program::ValueBuilder::Value;

namespace {

// Expressions refer to values that refer to values, through graphs within graphs.
constexpr int kMaxDepth = 600;
// Functions that call functions unfold; small files must not take forever.
constexpr int kMostCalls = 10000;

struct SimpleFunction
{
    const char* name;
    int arguments;
    Op floatOp;
    Op intOp; // Op::Count: the function gives floats only
};

/// Functions that work component by component.
const SimpleFunction kSimpleFunctions[] = {
    {"abs", 1, Op::FAbs, Op::IAbs},
    {"floor", 1, Op::FFloor, Op::Count},
    {"ceil", 1, Op::FCeil, Op::Count},
    {"round", 1, Op::FRound, Op::Count},
    {"fract", 1, Op::FFract, Op::Count},
    {"sqrt", 1, Op::FSqrt, Op::Count},
    {"exp", 1, Op::FExp, Op::Count},
    {"exp2", 1, Op::FExp2, Op::Count},
    {"log", 1, Op::FLog, Op::Count},
    {"log2", 1, Op::FLog2, Op::Count},
    {"sin", 1, Op::FSin, Op::Count},
    {"cos", 1, Op::FCos, Op::Count},
    {"tan", 1, Op::FTan, Op::Count},
    {"asin", 1, Op::FAsin, Op::Count},
    {"acos", 1, Op::FAcos, Op::Count},
    {"atan", 1, Op::FAtan, Op::Count},
    {"atan2", 2, Op::FAtan2, Op::Count},
    {"pow", 2, Op::FPow, Op::Count},
    {"mod", 2, Op::FMod, Op::IMod},
    {"min", 2, Op::FMin, Op::IMin},
    {"max", 2, Op::FMax, Op::IMax},
    {"step", 2, Op::FStep, Op::Count},
    {"clamp", 3, Op::FClamp, Op::Count},
    {"lerp", 3, Op::FLerp, Op::Count},
    {"smoothstep", 3, Op::FSmoothstep, Op::Count},
};

const char* const kOtherFunctions[] = {
    "float", "int", "bool",   "float2",   "float3",    "float4", "int2",     "int3", "int4",  "div",
    "rand",  "dot", "length", "distance", "normalize", "cross",  "saturate", "sign", "sample"};

int indexOfComponent(char c)
{
    const std::size_t i = std::string("xyzwrgba").find(c);
    return i == std::string::npos ? -1 : static_cast<int>(i % 4);
}

} // namespace

/// One expression on its way into a program.
class ExpressionBody
{
public:
    ExpressionBody(ExpressionCompiler& compiler, const SourceText& text, const Names& names)
        : m_compiler(compiler), m_builder(compiler.m_builder), m_math(compiler.m_builder), m_text(text),
          m_names(names)
    {
    }

    /// With values for names that are there from the start: arguments.
    void define(const std::string& name, const TypedValue& value) { m_lets[name] = value; }

    TypedValue run()
    {
        const ExpressionProgram program = parseExpression(m_compiler.m_sources, m_text);
        for (const ExpressionProgram::Let& let : program.lets)
            m_lets[let.name] = evaluate(*let.expression);
        return evaluate(*program.result);
    }

private:
    [[noreturn]] void fail(const Expression& expression, const std::string& text) const
    {
        throw ExpressionError(place(expression), text);
    }

    Place place(const Expression& expression) const
    {
        return m_compiler.m_sources.within(m_text, expression.at);
    }

    TypedValue evaluate(const Expression& expression)
    {
        struct Depth
        {
            explicit Depth(int& depth) : m_depth(++depth) {}
            ~Depth() { --m_depth; }
            int& m_depth;
        } depth(m_compiler.m_depth);
        if (m_compiler.m_depth > kMaxDepth)
            fail(expression, "values refer to each other too deeply");

        switch (expression.kind) {
        case Expression::Kind::Float:
            return scalar(Base::Float, m_builder.constant(static_cast<float>(expression.number)));
        case Expression::Kind::Int:
            return scalar(Base::Int, m_builder.integer(static_cast<std::int32_t>(expression.number)));
        case Expression::Kind::Bool:
            return scalar(Base::Bool, m_builder.integer(expression.number != 0.0));
        case Expression::Kind::Input:
        case Expression::Kind::Value:
            return reference(expression);
        case Expression::Kind::Instance:
            return m_names.instanceNumber(expression.text, place(expression), m_compiler);
        case Expression::Kind::Name:
            return name(expression);
        case Expression::Kind::String:
            fail(expression, "a string may stand in sample() only");
        case Expression::Kind::Call:
            return call(expression);
        case Expression::Kind::Swizzle:
            return swizzle(expression);
        case Expression::Kind::Unary:
            return unary(expression);
        case Expression::Kind::Binary:
            return binary(expression);
        case Expression::Kind::Conditional:
            return conditional(expression);
        }
        fail(expression, "unknown expression");
    }

    static TypedValue scalar(Base base, Value value) { return ValueMath::scalar(base, value); }

    TypedValue reference(const Expression& expression)
    {
        const bool isInput = expression.kind == Expression::Kind::Input;
        const auto found =
            isInput ? m_names.input(expression.text, m_compiler) : m_names.value(expression.text, m_compiler);
        if (found)
            return *found;
        const auto known = isInput ? m_names.knownInputs() : m_names.knownValues();
        fail(expression, std::string("no ") + (isInput ? "input" : "value") + " '" + expression.text + "'; " +
                             (known.empty() ? "there are none" : "there are " + quotedList(known)));
    }

    TypedValue name(const Expression& expression)
    {
        const auto let = m_lets.find(expression.text);
        if (let != m_lets.end())
            return let->second;
        if (expression.text == "pi" || expression.text == "tau")
            return scalar(Base::Float,
                          m_builder.constant(expression.text == "pi" ? 3.14159265f : 6.28318531f));
        if (m_compiler.m_perPixel && expression.text == "pos")
            return {Base::Float, 2, {m_builder.emit(Op::PixelX), m_builder.emit(Op::PixelY), 0, 0}};
        if (m_compiler.m_perPixel && expression.text == "size")
            return {Base::Int, 2, {m_builder.emit(Op::ImageWidth), m_builder.emit(Op::ImageHeight), 0, 0}};
        fail(expression, "unknown name '" + expression.text + "'; inputs are written input." +
                             expression.text + ", values value." + expression.text);
    }

    TypedValue swizzle(const Expression& expression)
    {
        const TypedValue value = evaluate(*expression.parts[0]);
        TypedValue picked{value.base, 0, {}};
        if (expression.text.size() > 4)
            fail(expression, "a value has at most 4 components");
        for (const char c : expression.text) {
            const int index = indexOfComponent(c);
            if (index < 0 || index >= value.count)
                fail(expression,
                     std::string("no component '") + c + "' in a value of type " + typeName(value));
            picked.values[picked.count++] = value.values[index];
        }
        return picked;
    }

    TypedValue unary(const Expression& expression)
    {
        TypedValue value = evaluate(*expression.parts[0]);
        if (expression.text == "!")
            return scalar(Base::Bool, m_builder.emit(Op::INot, condition(value, *expression.parts[0])));
        value = ValueMath::numeric(value);
        if (expression.text == "-")
            ValueMath::mapEach(value, [&](Value v) {
                return m_builder.emit(value.base == Base::Float ? Op::FNeg : Op::INeg, v);
            });
        return value;
    }

    TypedValue binary(const Expression& expression)
    {
        const std::string& op = expression.text;
        TypedValue left = evaluate(*expression.parts[0]), right = evaluate(*expression.parts[1]);
        if (op == "&&" || op == "||") {
            const Value a = condition(left, *expression.parts[0]), b = condition(right, *expression.parts[1]);
            return scalar(Base::Bool, m_builder.emit(op == "&&" ? Op::IAnd : Op::IOr, a, b));
        }
        left = ValueMath::numeric(left);
        right = ValueMath::numeric(right);
        const bool asFloats = op == "/" || left.base == Base::Float || right.base == Base::Float;
        unify(expression, left, right, asFloats);
        if (op == "+" || op == "-" || op == "*" || op == "/" || op == "%")
            return m_math.arithmetic(op[0], left, right);
        if (left.count > 1 && op != "==" && op != "!=")
            fail(expression, "'" + op + "' compares single numbers, not a " + typeName(left));
        return m_math.comparison(op, left, right);
    }

    TypedValue conditional(const Expression& expression)
    {
        const Value chosen = condition(evaluate(*expression.parts[0]), *expression.parts[0]);
        TypedValue yes = evaluate(*expression.parts[1]), no = evaluate(*expression.parts[2]);
        if (yes.base != no.base || yes.count != no.count) {
            yes = ValueMath::numeric(yes);
            no = ValueMath::numeric(no);
            unify(expression, yes, no, yes.base == Base::Float || no.base == Base::Float);
        }
        for (int i = 0; i < yes.count; ++i)
            yes.values[i] = m_builder.emit(Op::Select, chosen, yes.values[i], no.values[i]);
        return yes;
    }

    /// 1 or 0: a bool as it is, a number by whether it isn't 0.
    Value condition(const TypedValue& value, const Expression& expression)
    {
        if (value.count != 1)
            fail(expression, "expected a condition, found a " + typeName(value));
        if (value.base == Base::Bool)
            return value.values[0];
        const Value zero = m_builder.integer(0); // the float 0.0 has the same bits
        return m_builder.emit(Op::INot, m_builder.emit(value.base == Base::Float ? Op::FEqual : Op::IEqual,
                                                       value.values[0], zero));
    }

    void unify(const Expression& expression, TypedValue& left, TypedValue& right, bool asFloats)
    {
        if (left.count != right.count && left.count != 1 && right.count != 1)
            fail(expression, "a " + typeName(left) + " and a " + typeName(right) + " don't go together");
        const int count = std::max(left.count, right.count);
        left = ValueMath::broadcast(asFloats ? m_math.floats(left) : left, count);
        right = ValueMath::broadcast(asFloats ? m_math.floats(right) : right, count);
    }

    TypedValue call(const Expression& expression)
    {
        if (expression.text == "sample")
            return sample(expression);
        std::vector<TypedValue> arguments;
        for (const auto& part : expression.parts)
            arguments.push_back(evaluate(*part));
        for (const SimpleFunction& function : kSimpleFunctions) {
            if (expression.text == function.name) {
                requireArguments(expression, function.arguments);
                return simple(expression, function, arguments);
            }
        }
        if (const OwnFunction function = m_names.function(expression.text); function.source)
            return own(expression, function, arguments);
        return special(expression, arguments);
    }

    /// The function's expression, put in the place of the call.
    TypedValue own(const Expression& expression, const OwnFunction& function,
                   const std::vector<TypedValue>& arguments)
    {
        const FunctionSource& source = *function.source;
        requireArguments(expression, source.arguments.size());
        std::vector<const FunctionSource*>& calls = m_compiler.m_calls;
        if (std::find(calls.begin(), calls.end(), &source) != calls.end())
            fail(expression, "the function '" + source.id.text + "' calls itself");
        if (++m_compiler.m_callCount > kMostCalls)
            fail(expression, "this calls too many functions, once they are put in");
        const PackageFunctions names(*function.package);
        ExpressionBody body(m_compiler, source.expression, names);
        for (std::size_t i = 0; i < arguments.size(); ++i)
            body.define(source.arguments[i].text, arguments[i]);
        calls.push_back(&source);
        TypedValue result;
        try {
            result = body.run();
        } catch (...) {
            calls.pop_back();
            throw;
        }
        calls.pop_back();
        return result;
    }

    void requireArguments(const Expression& expression, std::size_t count) const
    {
        if (expression.parts.size() != count)
            fail(expression, expression.text + "() takes " + std::to_string(count) +
                                 (count == 1 ? " argument" : " arguments") + ", found " +
                                 std::to_string(expression.parts.size()));
    }

    TypedValue simple(const Expression& expression, const SimpleFunction& function,
                      std::vector<TypedValue> arguments)
    {
        bool whole = function.intOp != Op::Count;
        int count = 1;
        for (TypedValue& argument : arguments) {
            argument = ValueMath::numeric(argument);
            whole = whole && argument.base == Base::Int;
            if (argument.count != 1 && count != 1 && argument.count != count)
                fail(expression,
                     "the arguments of " + expression.text + "() differ in their number of components");
            count = std::max(count, argument.count);
        }
        for (TypedValue& argument : arguments)
            argument = ValueMath::broadcast(whole ? argument : m_math.floats(argument), count);
        return m_math.componentwise(whole ? function.intOp : function.floatOp, arguments);
    }

    TypedValue special(const Expression& expression, std::vector<TypedValue>& arguments)
    {
        const std::string& name = expression.text;
        const bool toFloat = name.compare(0, 5, "float") == 0, toInt = name.compare(0, 3, "int") == 0;
        if ((toFloat || toInt) && name.size() <= (toFloat ? 6 : 4))
            return construct(expression, arguments, toFloat,
                             name.size() == (toFloat ? 5 : 3) ? 1 : name.back() - '0');
        if (name == "bool") {
            requireArguments(expression, 1);
            return scalar(Base::Bool, condition(arguments[0], *expression.parts[0]));
        }
        if (name == "div" || name == "rand")
            return ofTwoInts(expression, arguments);
        if (name == "saturate" || name == "sign") {
            requireArguments(expression, 1);
            const TypedValue value = ValueMath::numeric(arguments[0]);
            return name == "sign" ? m_math.sign(value) : m_math.saturate(value);
        }
        if (name == "dot" || name == "length" || name == "distance" || name == "normalize" || name == "cross")
            return geometric(expression, arguments);
        std::vector<std::string> known = functionNames();
        for (const std::string& own : m_names.knownFunctions())
            known.push_back(own);
        fail(expression, "unknown function '" + name + "'; there are " + quotedList(known));
    }

    TypedValue construct(const Expression& expression, const std::vector<TypedValue>& arguments, bool toFloat,
                         int count)
    {
        if (count < 1 || count > 4)
            fail(expression, "unknown function '" + expression.text + "'");
        TypedValue result{toFloat ? Base::Float : Base::Int, 0, {}};
        for (const TypedValue& argument : arguments) {
            for (int i = 0; i < argument.count; ++i) {
                if (result.count == count)
                    fail(expression, expression.text + "() has too many components");
                const bool fits = (argument.base == Base::Float) == toFloat;
                const Value value = argument.values[i];
                result.values[result.count++] =
                    fits ? value : m_builder.emit(toFloat ? Op::IToF : Op::FToI, value);
            }
        }
        if (result.count == 1)
            return ValueMath::broadcast(result, count);
        if (result.count != count)
            fail(expression, expression.text + "() needs " + std::to_string(count) + " components, found " +
                                 std::to_string(result.count));
        return result;
    }

    TypedValue ofTwoInts(const Expression& expression, const std::vector<TypedValue>& arguments)
    {
        requireArguments(expression, 2);
        for (std::size_t i = 0; i < 2; ++i) {
            if (arguments[i].base == Base::Float || arguments[i].count != 1)
                fail(*expression.parts[i],
                     expression.text + "() takes whole numbers, found a " + typeName(arguments[i]));
        }
        const bool isRandom = expression.text == "rand";
        return scalar(
            isRandom ? Base::Float : Base::Int,
            m_builder.emit(isRandom ? Op::Random : Op::IDiv, arguments[0].values[0], arguments[1].values[0]));
    }

    TypedValue geometric(const Expression& expression, std::vector<TypedValue>& arguments)
    {
        const std::string& name = expression.text;
        const bool one = name == "length" || name == "normalize";
        requireArguments(expression, one ? 1 : 2);
        for (TypedValue& argument : arguments)
            argument = m_math.floats(ValueMath::numeric(argument));
        if (!one)
            unify(expression, arguments[0], arguments[1], true);
        if (name == "cross" && arguments[0].count != 3)
            fail(expression, "cross() takes values of type float3, found a " + typeName(arguments[0]));
        if (name == "cross")
            return m_math.cross(arguments[0], arguments[1]);
        if (name == "dot")
            return scalar(Base::Float, m_math.dot(arguments[0], arguments[1]));
        if (name == "distance")
            return m_math.length(m_math.arithmetic('-', arguments[0], arguments[1]));
        return name == "length" ? m_math.length(arguments[0]) : m_math.normalize(arguments[0]);
    }

    TypedValue sample(const Expression& expression)
    {
        if (!m_compiler.m_perPixel)
            fail(expression, "sample() works in pixel programs only");
        requireArguments(expression, 2);
        const std::uint16_t operand = operandOf(*expression.parts[0]);
        const TypedValue at = m_math.floats(ValueMath::numeric(evaluate(*expression.parts[1])));
        if (at.count != 2)
            fail(*expression.parts[1], "expected a position of type float2, found a " + typeName(at));
        const bool colour = m_compiler.m_operands[operand].channels == 4;
        const Value first =
            m_builder.emit(colour ? Op::SampleColour : Op::SampleGrey, operand, at.values[0], at.values[1]);
        TypedValue result{Base::Float, colour ? 4 : 1, {}};
        for (int i = 0; i < result.count; ++i)
            result.values[i] = static_cast<Value>(first + i);
        return result;
    }

    std::uint16_t operandOf(const Expression& expression) const
    {
        const std::vector<SampledOperand>& operands = m_compiler.m_operands;
        std::size_t index = operands.size();
        std::vector<std::string> names;
        for (std::size_t i = 0; i < operands.size(); ++i) {
            names.push_back(operands[i].name);
            const bool named =
                expression.kind == Expression::Kind::Name || expression.kind == Expression::Kind::String;
            if (named && operands[i].name == expression.text)
                index = i;
            if (expression.kind == Expression::Kind::Int && expression.number == static_cast<double>(i))
                index = i;
        }
        if (index == operands.size())
            fail(expression, "expected the name of an operand: " + quotedList(names));
        if (operands[index].channels == 0)
            fail(expression, "nothing is connected to the operand '" + operands[index].name + "'");
        return static_cast<std::uint16_t>(index);
    }

    ExpressionCompiler& m_compiler;
    program::ValueBuilder& m_builder;
    ValueMath m_math;
    const SourceText& m_text;
    const Names& m_names;
    std::map<std::string, TypedValue> m_lets;
};

std::string typeName(const TypedValue& value)
{
    const std::string base = value.base == Base::Bool ? "bool" : value.base == Base::Int ? "int" : "float";
    return value.count == 1 ? base : base + std::to_string(value.count);
}

void ExpressionCompiler::setPixelProgram(std::vector<SampledOperand> operands)
{
    m_perPixel = true;
    m_operands = std::move(operands);
}

TypedValue ExpressionCompiler::compile(const SourceText& text, const Names& names)
{
    return ExpressionBody(*this, text, names).run();
}

TypedValue ExpressionCompiler::converted(const TypedValue& value, ValueType type, Place place, bool opaque)
{
    const int count = program::componentCount(type);
    const bool toFloat = program::isFloat(type);
    TypedValue result = value;
    const bool addsAlpha = opaque && type == ValueType::Float4 && value.count == 3;
    if ((value.count != 1 && value.count != count && !addsAlpha) || (!toFloat && value.base == Base::Float)) {
        const std::string hint = value.base == Base::Float && !toFloat ? "; int() makes whole numbers" : "";
        const std::string wanted =
            count == 1 ? (toFloat ? "float" : "int") : (toFloat ? "float" : "int") + std::to_string(count);
        throw ExpressionError(place, "expected a value of type " + wanted + ", found a " +
                                         cooker::typeName(value) + hint);
    }
    result.base = toFloat ? Base::Float : Base::Int;
    result.count = count;
    for (int i = 0; i < count; ++i) {
        if (addsAlpha && i == 3) {
            result.values[i] = m_builder.constant(1.0f);
            continue;
        }
        const Value from = value.values[value.count == 1 ? 0 : i];
        result.values[i] = toFloat && value.base != Base::Float ? m_builder.emit(Op::IToF, from) : from;
    }
    return result;
}

program::ValueProgram ExpressionCompiler::finish(const TypedValue& value, ValueType type)
{
    return m_builder.finish(type, value.values, m_perPixel);
}

const std::vector<std::string>& functionNames()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> list;
        for (const SimpleFunction& function : kSimpleFunctions)
            list.emplace_back(function.name);
        list.insert(list.end(), std::begin(kOtherFunctions), std::end(kOtherFunctions));
        return list;
    }();
    return names;
}

} // namespace vellor::cooker
