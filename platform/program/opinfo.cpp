#include "platform/program/opinfo.h"

namespace vellor::program {

OpInfo opInfo(Op op)
{
    const OpInfo none{}, unary{true}, binary{true, true}, ternary{true, true, true};
    switch (op) {
    case Op::Constant:
    case Op::Input:
        return none;
    case Op::PixelX:
    case Op::PixelY:
    case Op::ImageWidth:
    case Op::ImageHeight:
        return {false, false, false, 1, true};
    case Op::SampleGrey:
        return {false, true, true, 1, true};
    case Op::SampleColour:
        return {false, true, true, 4, true};
    case Op::FClamp:
    case Op::FLerp:
    case Op::FSmoothstep:
    case Op::Select:
        return ternary;
    case Op::FAdd:
    case Op::FSub:
    case Op::FMul:
    case Op::FDiv:
    case Op::FMod:
    case Op::FMin:
    case Op::FMax:
    case Op::FPow:
    case Op::FAtan2:
    case Op::FStep:
    case Op::FLess:
    case Op::FLessEqual:
    case Op::FEqual:
    case Op::IAdd:
    case Op::ISub:
    case Op::IMul:
    case Op::IDiv:
    case Op::IMod:
    case Op::IMin:
    case Op::IMax:
    case Op::IAnd:
    case Op::IOr:
    case Op::IXor:
    case Op::IShiftLeft:
    case Op::IShiftRight:
    case Op::ILess:
    case Op::ILessEqual:
    case Op::IEqual:
    case Op::Random:
        return binary;
    default:
        return unary;
    }
}

} // namespace vellor::program
