#include "platform/nodes/valueevaluator.h"

#include "platform/nodes/scalar.h"
#include "platform/nodes/valueoperations.h"
#include "platform/program/integeroperations.h"
#include "platform/program/types.h"

#include <array>
#include <vector>

namespace vellor::nodes {

using program::applyInteger;
using program::Op;
using scalar::bitsOf;
using scalar::floatOfBits;

namespace {

float applyFloat(Op op, float a, float b, float c)
{
    switch (op) {
    case Op::FAdd:
        return a + b;
    case Op::FSub:
        return a - b;
    case Op::FMul:
        return a * b;
    case Op::FDiv:
        return b == 0.0f ? 0.0f : a / b;
    case Op::FMod:
        return scalar::modOf(a, b);
    case Op::FMin:
        return scalar::minOf(a, b);
    case Op::FMax:
        return scalar::maxOf(a, b);
    case Op::FPow:
        return scalar::powOf(a, b);
    case Op::FAtan2:
        return scalar::atan2Of(a, b);
    case Op::FNeg:
        return -a;
    case Op::FAbs:
        return scalar::absOf(a);
    case Op::FFloor:
        return scalar::floorOf(a);
    case Op::FCeil:
        return -scalar::floorOf(-a);
    case Op::FRound:
        return scalar::roundOf(a);
    case Op::FFract:
        return a - scalar::floorOf(a);
    case Op::FSqrt:
        return scalar::sqrtOf(scalar::maxOf(a, 0.0f));
    case Op::FExp:
        return scalar::expOf(a);
    case Op::FExp2:
        return scalar::exp2Of(a);
    case Op::FLog:
        return scalar::logOf(a);
    case Op::FLog2:
        return scalar::log2Of(a);
    case Op::FSin:
        return scalar::sinOf(a);
    case Op::FCos:
        return scalar::cosOf(a);
    case Op::FTan:
        return scalar::tanOf(a);
    case Op::FAsin:
        return scalar::asinOf(a);
    case Op::FAcos:
        return scalar::acosOf(a);
    case Op::FAtan:
        return scalar::atanOf(a);
    case Op::FClamp:
        return scalar::clampOf(a, b, c);
    case Op::FLerp:
        return scalar::lerpOf(a, b, c);
    case Op::FStep:
        return b < a ? 0.0f : 1.0f;
    case Op::FSmoothstep:
        return scalar::smoothstepOf(a, b, c);
    default:
        return 0.0f;
    }
}

} // namespace

std::uint32_t integerOf(float value)
{
    return value >= -2147483648.0f && value < 2147483648.0f ? scalar::toInteger(value) : 0;
}

std::uint32_t applyOperation(Op op, std::uint32_t a, std::uint32_t b, std::uint32_t c)
{
    switch (op) {
    case Op::Copy:
        return a;
    case Op::FToI:
        return integerOf(floatOfBits(a));
    case Op::IToF:
        return bitsOf(scalar::toFloat(a));
    case Op::FLess:
        return floatOfBits(a) < floatOfBits(b);
    case Op::FLessEqual:
        return floatOfBits(a) <= floatOfBits(b);
    case Op::FEqual:
        return floatOfBits(a) == floatOfBits(b);
    case Op::Random:
        return bitsOf(scalar::unitOf(scalar::hashLattice(a, b, 0)));
    default:
        break;
    }
    if (op >= Op::FAdd && op <= Op::FSmoothstep)
        return bitsOf(applyFloat(op, floatOfBits(a), floatOfBits(b), floatOfBits(c)));
    return applyInteger(op, a, b, c);
}

void evaluateValue(const program::ValueProgram& program, const std::uint32_t* inputWords,
                   program::Words& result)
{
    std::array<std::uint32_t, 256> few{};
    std::vector<std::uint32_t> many;
    std::uint32_t* registers = few.data();
    if (program.registerCount > few.size()) {
        many.resize(program.registerCount);
        registers = many.data();
    }
    // Fields that an instruction does not use may hold anything.
    const auto read = [&](std::uint16_t index) {
        return index < program.registerCount ? registers[index] : 0u;
    };
    for (const program::Instruction& i : program.instructions) {
        if (i.op == Op::Constant)
            registers[i.dst] = program.constants[i.a];
        else if (i.op == Op::Input)
            registers[i.dst] = inputWords[4 * std::size_t(i.a) + i.b];
        else
            registers[i.dst] = applyOperation(i.op, read(i.a), read(i.b), read(i.c));
    }
    result = {};
    for (int c = 0; c < program::componentCount(program.type); ++c)
        result[c] = registers[program.result + c];
}

} // namespace vellor::nodes
