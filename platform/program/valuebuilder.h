#pragma once

// Assembles value programs. Equal operations are made once, operations on constants whose result is exact by
// definition are worked out at once, and what the result doesn't need is left out.

#include "platform/program/program.h"

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <tuple>

namespace vellor::program {

/// The program would have more registers or instructions than program.h allows.
struct TooLong : std::length_error
{
    TooLong() : std::length_error("value program") {}
};

class ValueBuilder
{
public:
    /// A value of the program under construction: one 32-bit component.
    using Value = std::uint16_t;

    // All of these throw TooLong.
    Value constant(std::uint32_t bits);
    Value constant(float value);
    Value integer(std::int32_t value) { return constant(static_cast<std::uint32_t>(value)); }
    Value input(std::uint16_t index, std::uint16_t component);
    /// An operation on values. SampleGrey and SampleColour take the operand's number as a; SampleColour gives
    /// the first of four values.
    Value emit(Op op, Value a = 0, Value b = 0, Value c = 0);

    /// The bits of a value that is the same for all inputs and pixels.
    std::optional<std::uint32_t> constantBits(Value value) const;

    /// The program whose result is the given values, as many as type has components.
    ValueProgram finish(ValueType type, const std::array<Value, 4>& result, bool perPixel) const;

private:
    using Key = std::tuple<Op, std::uint32_t, std::uint16_t, std::uint16_t>;

    Value append(const Key& key, const Instruction& instruction, int results);

    std::vector<Instruction> m_instructions; // dst is the value's number
    std::vector<std::uint32_t> m_constants;
    std::map<Key, Value> m_known;
    std::map<Value, std::uint32_t> m_constantValues;
    std::size_t m_valueCount = 0;
};

/// The same program put together anew through a builder. program must be checked.
ValueProgram simplified(const ValueProgram& program);

/// The words of a program that reads nothing: all its result's components are constants.
std::optional<Words> constantResult(const ValueProgram& program);

} // namespace vellor::program
