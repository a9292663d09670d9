#pragma once

#include "platform/cooker/expressioncompiler.h"

#include <algorithm>
#include <vector>

namespace vellor::cooker {

/// Operations on typed values: conversions and what is made of several instructions. Operands fit together
/// already.
class ValueMath
{
public:
    explicit ValueMath(program::ValueBuilder& builder) : m_builder(builder) {}

    static TypedValue scalar(TypedValue::Base base, program::ValueBuilder::Value value)
    {
        return {base, 1, {value, 0, 0, 0}};
    }

    /// A bool as the int that it is.
    static TypedValue numeric(TypedValue value);
    /// One component as so many equal ones.
    static TypedValue broadcast(TypedValue value, int count);
    TypedValue floats(TypedValue value);

    template<typename Function> static void mapEach(TypedValue& value, const Function& function)
    {
        for (int i = 0; i < value.count; ++i)
            value.values[i] = function(value.values[i]);
    }

    /// op for each component of operands of one type.
    TypedValue componentwise(program::Op op, const std::vector<TypedValue>& operands);
    /// One of + - * / %, both sides being of one type; / takes floats.
    TypedValue arithmetic(char op, const TypedValue& left, const TypedValue& right);
    /// A bool: one of == != < <= > >=, both sides being of one type. Vectors are equal when all components
    /// are.
    TypedValue comparison(const std::string& op, const TypedValue& left, const TypedValue& right);

    TypedValue saturate(TypedValue value);
    TypedValue sign(TypedValue value);
    program::ValueBuilder::Value dot(const TypedValue& a, const TypedValue& b);
    TypedValue length(const TypedValue& value);
    TypedValue normalize(const TypedValue& value);
    TypedValue cross(const TypedValue& a, const TypedValue& b);

private:
    program::ValueBuilder& m_builder;
};

} // namespace vellor::cooker
