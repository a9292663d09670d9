#include "platform/program/valuebuilder.h"

#include "platform/program/integeroperations.h"
#include "platform/program/opinfo.h"
#include "platform/program/types.h"

#include <algorithm>
#include <cmath>

namespace vellor::program {

namespace {

// Float arithmetic here must give the bits that every engine gives. So only operations that IEEE 754 defines
// to the last bit are folded, and none whose operands or result are NaN.

std::optional<std::uint32_t> foldFloat(Op op, float a, float b)
{
    float result = 0.0f;
    switch (op) {
    case Op::FAdd:
        result = a + b;
        break;
    case Op::FSub:
        result = a - b;
        break;
    case Op::FMul:
        result = a * b;
        break;
    case Op::FDiv:
        result = b == 0.0f ? 0.0f : a / b;
        break;
    case Op::FNeg:
        return floatBits(a) ^ 0x80000000u;
    case Op::FAbs:
        return floatBits(a) & 0x7FFFFFFFu;
    case Op::FFloor:
        result = std::floor(a);
        break;
    case Op::FCeil:
        result = std::ceil(a);
        break;
    case Op::FSqrt:
        if (!(a > 0.0f))
            return std::nullopt;
        result = std::sqrt(a);
        break;
    case Op::FLess:
        return a < b;
    case Op::FLessEqual:
        return a <= b;
    case Op::FEqual:
        return a == b;
    case Op::FMin:
    case Op::FMax:
        if (a == b)
            return std::nullopt; // zeros of both signs
        result = (op == Op::FMin) == (a < b) ? a : b;
        break;
    default:
        return std::nullopt;
    }
    return std::isfinite(result) ? std::optional(floatBits(result)) : std::nullopt;
}

std::optional<std::uint32_t> foldInteger(Op op, std::uint32_t a, std::uint32_t b)
{
    switch (op) {
    case Op::IToF:
        return floatBits(static_cast<float>(static_cast<std::int32_t>(a)));
    case Op::FToI: {
        const float value = bitsFloat(a);
        if (!(std::fabs(value) < 2147483648.0f))
            return std::nullopt;
        return static_cast<std::uint32_t>(static_cast<std::int32_t>(value));
    }
    default:
        return op >= Op::IAdd && op <= Op::INot ? std::optional(applyInteger(op, a, b, 0)) : std::nullopt;
    }
}

std::optional<std::uint32_t> fold(Op op, std::uint32_t a, std::uint32_t b)
{
    if (op >= Op::FAdd && op <= Op::FEqual) {
        const float x = bitsFloat(a), y = bitsFloat(b);
        return std::isnan(x) || std::isnan(y) ? std::nullopt : foldFloat(op, x, y);
    }
    return foldInteger(op, a, b);
}

} // namespace

ValueBuilder::Value ValueBuilder::append(const Key& key, const Instruction& instruction, int results)
{
    const auto known = m_known.find(key);
    if (known != m_known.end())
        return known->second;
    // The result may have to be copied into consecutive registers.
    constexpr std::size_t kSpare = 4;
    if (m_valueCount + results > kMaxRegisters - kSpare || m_instructions.size() >= kMaxInstructions - kSpare)
        throw TooLong();
    const auto value = static_cast<Value>(m_valueCount);
    m_instructions.push_back(instruction);
    m_instructions.back().dst = value;
    m_valueCount += results;
    m_known.emplace(key, value);
    return value;
}

ValueBuilder::Value ValueBuilder::constant(std::uint32_t bits)
{
    const auto index = static_cast<std::uint16_t>(m_constants.size());
    const Value value = append({Op::Constant, bits, 0, 0}, {Op::Constant, 0, index, 0, 0}, 1);
    if (m_constantValues.emplace(value, bits).second)
        m_constants.push_back(bits);
    return value;
}

ValueBuilder::Value ValueBuilder::constant(float value)
{
    return constant(floatBits(value));
}

ValueBuilder::Value ValueBuilder::input(std::uint16_t index, std::uint16_t component)
{
    return append({Op::Input, index, component, 0}, {Op::Input, 0, index, component, 0}, 1);
}

ValueBuilder::Value ValueBuilder::emit(Op op, Value a, Value b, Value c)
{
    const OpInfo info = opInfo(op);
    if (op == Op::Copy)
        return a;
    if (op == Op::Select) {
        if (const auto condition = constantBits(a))
            return *condition != 0 ? b : c;
    }
    const auto x = info.a ? constantBits(a) : std::nullopt;
    const auto y = info.b ? constantBits(b) : std::optional<std::uint32_t>(0u);
    if (x && y && !info.c && !info.perPixelOnly) {
        if (const auto folded = fold(op, *x, *y))
            return constant(*folded);
    }
    return append({op, a, b, c}, {op, 0, a, b, c}, info.results);
}

std::optional<std::uint32_t> ValueBuilder::constantBits(Value value) const
{
    const auto found = m_constantValues.find(value);
    return found == m_constantValues.end() ? std::nullopt : std::optional(found->second);
}

ValueProgram ValueBuilder::finish(ValueType type, const std::array<Value, 4>& result, bool perPixel) const
{
    const int count = componentCount(type);
    std::vector<bool> needed(m_valueCount, false);
    for (int i = 0; i < count; ++i)
        needed[result[i]] = true;
    for (auto i = m_instructions.rbegin(); i != m_instructions.rend(); ++i) {
        const OpInfo info = opInfo(i->op);
        const auto first = needed.begin() + i->dst;
        if (std::find(first, first + info.results, true) == first + info.results)
            continue;
        needed[i->dst] = true;
        const auto need = [&](bool reads, Value value) { needed[value] = needed[value] || reads; };
        need(info.a, info.a ? i->a : 0);
        need(info.b, info.b ? i->b : 0);
        need(info.c, info.c ? i->c : 0);
    }

    ValueProgram program;
    program.type = type;
    program.perPixel = perPixel;
    std::vector<std::uint16_t> registers(m_valueCount, 0);
    for (Instruction instruction : m_instructions) {
        if (!needed[instruction.dst])
            continue;
        const OpInfo info = opInfo(instruction.op);
        for (int i = 0; i < info.results; ++i)
            registers[instruction.dst + i] = static_cast<std::uint16_t>(program.registerCount + i);
        if (instruction.op == Op::Constant) {
            program.constants.push_back(m_constants[instruction.a]);
            instruction.a = static_cast<std::uint16_t>(program.constants.size() - 1);
        }
        instruction.a = info.a ? registers[instruction.a] : instruction.a;
        instruction.b = info.b ? registers[instruction.b] : instruction.b;
        instruction.c = info.c ? registers[instruction.c] : instruction.c;
        instruction.dst = program.registerCount;
        program.registerCount = static_cast<std::uint16_t>(program.registerCount + info.results);
        program.instructions.push_back(instruction);
    }

    bool consecutive = true;
    for (int i = 1; i < count; ++i)
        consecutive = consecutive && registers[result[i]] == registers[result[0]] + i;
    program.result = consecutive ? registers[result[0]] : program.registerCount;
    for (int i = 0; i < count && !consecutive; ++i)
        program.instructions.push_back({Op::Copy, program.registerCount++, registers[result[i]], 0, 0});
    return program;
}

namespace {

ValueProgram rebuilt(const ValueProgram& program)
{
    ValueBuilder builder;
    std::vector<ValueBuilder::Value> values(program.registerCount, 0);
    for (const Instruction& instruction : program.instructions) {
        const OpInfo info = opInfo(instruction.op);
        ValueBuilder::Value value = 0;
        if (instruction.op == Op::Constant)
            value = builder.constant(program.constants[instruction.a]);
        else if (instruction.op == Op::Input)
            value = builder.input(instruction.a, instruction.b);
        else
            value = builder.emit(instruction.op, info.a ? values[instruction.a] : instruction.a,
                                 info.b ? values[instruction.b] : 0, info.c ? values[instruction.c] : 0);
        for (int i = 0; i < info.results; ++i)
            values[instruction.dst + i] = static_cast<ValueBuilder::Value>(value + i);
    }
    std::array<ValueBuilder::Value, 4> result{};
    for (int i = 0; i < componentCount(program.type); ++i)
        result[i] = values[program.result + i];
    return builder.finish(program.type, result, program.perPixel);
}

} // namespace

ValueProgram simplified(const ValueProgram& program)
{
    try {
        return rebuilt(program);
    } catch (const TooLong&) {
        return program; // it reuses registers up to the limit
    }
}

std::optional<Words> constantResult(const ValueProgram& program)
{
    std::vector<std::optional<std::uint32_t>> values(program.registerCount);
    for (const Instruction& instruction : program.instructions) {
        if (instruction.op == Op::Constant)
            values[instruction.dst] = program.constants[instruction.a];
        else if (instruction.op == Op::Copy)
            values[instruction.dst] = values[instruction.a];
        else
            return std::nullopt;
    }
    Words words{};
    for (int i = 0; i < componentCount(program.type); ++i)
        words[i] = values[program.result + i].value_or(0);
    return words;
}

} // namespace vellor::program
