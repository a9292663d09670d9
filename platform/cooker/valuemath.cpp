#include "platform/cooker/valuemath.h"

namespace vellor::cooker {

using program::Op;
using Base = TypedValue::Base;
using Value = program::ValueBuilder::Value;

TypedValue ValueMath::numeric(TypedValue value)
{
    if (value.base == Base::Bool)
        value.base = Base::Int;
    return value;
}

TypedValue ValueMath::broadcast(TypedValue value, int count)
{
    if (value.count == 1)
        std::fill(value.values.begin(), value.values.begin() + count, value.values[0]);
    value.count = count;
    return value;
}

TypedValue ValueMath::floats(TypedValue value)
{
    if (value.base != Base::Float)
        mapEach(value, [&](Value v) { return m_builder.emit(Op::IToF, v); });
    value.base = Base::Float;
    return value;
}

TypedValue ValueMath::componentwise(Op op, const std::vector<TypedValue>& operands)
{
    TypedValue result = operands[0];
    for (int i = 0; i < result.count; ++i) {
        const auto at = [&](std::size_t n) { return n < operands.size() ? operands[n].values[i] : Value{0}; };
        result.values[i] = m_builder.emit(op, at(0), at(1), at(2));
    }
    return result;
}

TypedValue ValueMath::arithmetic(char op, const TypedValue& left, const TypedValue& right)
{
    const bool isFloat = left.base == Base::Float;
    const Op code = op == '+'   ? (isFloat ? Op::FAdd : Op::IAdd)
                    : op == '-' ? (isFloat ? Op::FSub : Op::ISub)
                    : op == '*' ? (isFloat ? Op::FMul : Op::IMul)
                    : op == '/' ? Op::FDiv
                                : (isFloat ? Op::FMod : Op::IMod);
    return componentwise(code, {left, right});
}

TypedValue ValueMath::comparison(const std::string& op, const TypedValue& left, const TypedValue& right)
{
    const bool isFloat = left.base == Base::Float, equality = op == "==" || op == "!=";
    const bool swapped = op == ">" || op == ">=";
    const Op code = equality                 ? (isFloat ? Op::FEqual : Op::IEqual)
                    : op == "<" || op == ">" ? (isFloat ? Op::FLess : Op::ILess)
                                             : (isFloat ? Op::FLessEqual : Op::ILessEqual);
    const TypedValue each =
        componentwise(code, swapped ? std::vector{right, left} : std::vector{left, right});
    Value all = each.values[0];
    for (int i = 1; i < each.count; ++i)
        all = m_builder.emit(Op::IAnd, all, each.values[i]);
    return scalar(Base::Bool, op == "!=" ? m_builder.emit(Op::INot, all) : all);
}

TypedValue ValueMath::saturate(TypedValue value)
{
    value = floats(value);
    const Value zero = m_builder.constant(0.0f), one = m_builder.constant(1.0f);
    mapEach(value, [&](Value v) { return m_builder.emit(Op::FClamp, v, zero, one); });
    return value;
}

TypedValue ValueMath::sign(TypedValue value)
{
    value = floats(value);
    const Value zero = m_builder.constant(0.0f);
    mapEach(value, [&](Value v) {
        const Value above = m_builder.emit(Op::FLess, zero, v), below = m_builder.emit(Op::FLess, v, zero);
        return m_builder.emit(Op::IToF, m_builder.emit(Op::ISub, above, below));
    });
    return value;
}

Value ValueMath::dot(const TypedValue& a, const TypedValue& b)
{
    Value sum = m_builder.emit(Op::FMul, a.values[0], b.values[0]);
    for (int i = 1; i < a.count; ++i)
        sum = m_builder.emit(Op::FAdd, sum, m_builder.emit(Op::FMul, a.values[i], b.values[i]));
    return sum;
}

TypedValue ValueMath::length(const TypedValue& value)
{
    return scalar(Base::Float, m_builder.emit(Op::FSqrt, dot(value, value)));
}

TypedValue ValueMath::normalize(const TypedValue& value)
{
    return componentwise(Op::FDiv, {value, broadcast(length(value), value.count)});
}

TypedValue ValueMath::cross(const TypedValue& a, const TypedValue& b)
{
    TypedValue result = a;
    for (int i = 0; i < 3; ++i) {
        const int j = (i + 1) % 3, k = (i + 2) % 3;
        result.values[i] = m_builder.emit(Op::FSub, m_builder.emit(Op::FMul, a.values[j], b.values[k]),
                                          m_builder.emit(Op::FMul, a.values[k], b.values[j]));
    }
    return result;
}

} // namespace vellor::cooker
