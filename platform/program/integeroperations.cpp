#include "platform/program/integeroperations.h"

namespace vellor::program {

std::uint32_t applyInteger(Op op, std::uint32_t a, std::uint32_t b, std::uint32_t c)
{
    const auto sa = static_cast<std::int32_t>(a), sb = static_cast<std::int32_t>(b);
    const bool wraps = sb == -1; // the lowest integer has no opposite
    switch (op) {
    case Op::IAdd:
        return a + b;
    case Op::ISub:
        return a - b;
    case Op::IMul:
        return a * b;
    case Op::IDiv:
        return sb == 0 ? 0 : wraps ? 0u - a : static_cast<std::uint32_t>(sa / sb);
    case Op::IMod:
        return sb == 0 || wraps ? 0 : static_cast<std::uint32_t>(sa % sb);
    case Op::IMin:
        return sa < sb ? a : b;
    case Op::IMax:
        return sa > sb ? a : b;
    case Op::INeg:
        return 0u - a;
    case Op::IAbs:
        return sa < 0 ? 0u - a : a;
    case Op::IAnd:
        return a & b;
    case Op::IOr:
        return a | b;
    case Op::IXor:
        return a ^ b;
    case Op::IShiftLeft:
        return a << (b & 31u);
    case Op::IShiftRight:
        return static_cast<std::uint32_t>(sa >> (b & 31u));
    case Op::ILess:
        return sa < sb;
    case Op::ILessEqual:
        return sa <= sb;
    case Op::IEqual:
        return a == b;
    case Op::INot:
        return a == 0;
    case Op::Select:
        return a != 0 ? b : c;
    default:
        return 0;
    }
}

} // namespace vellor::program
