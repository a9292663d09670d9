#pragma once

// The compiled form of a package: what the cooker writes, the linker merges and the engine runs.
//
// A program is a list of image nodes in dependency order (an operand is always an earlier node), a list of value
// programs that compute numbers from the inputs, and the outputs that hang on either. All graphs of a package lie in
// one program. Names are there for messages only; everything is tied together by index, and inputs and outputs are
// known to the outside by uid.
//
// The structs here are the form in memory, free of any file layout. programreader.h and programwriter.h turn them into
// bytes and back; programchecker.h says whether one keeps the rules stated here. An engine runs checked programs only.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vellor::program {

/// Index that stands for "none".
constexpr std::int32_t kNone = -1;

/// The engine interface's value types, by its numbers.
enum class ValueType : std::uint32_t {
    Float = 0, Float2 = 1, Float3 = 2, Float4 = 3,
    Int = 4, Image = 5, String = 6,
    Int2 = 8, Int3 = 9, Int4 = 10
};

/// Up to four 32-bit components; floats by their bit pattern. Components beyond the type's count are 0.
using Words = std::array<std::uint32_t, 4>;

/// One exposed input.
struct Input
{
    std::uint32_t uid = 0;
    ValueType type = ValueType::Float;
    Words defaultValue{};
    std::u32string defaultText; // type String
    std::string identifier;
};

/// Operations of value programs. f... work on floats, i... on signed 32-bit integers (two's complement, wrapping).
/// A register holds one 32-bit component; a vector value lies in consecutive registers.
enum class Op : std::uint16_t {
    Constant,   // dst = constants[a]
    Input,      // dst = component b of inputs[a] (numeric types)
    Copy,       // dst = a
    FToI,       // dst = truncated a; out of range and NaN give 0
    IToF,       // dst = float(a)
    FAdd, FSub, FMul, FDiv, FMod, FMin, FMax, FPow, FAtan2, // dst = a op b; FDiv and FMod by 0 give 0
    FNeg, FAbs, FFloor, FCeil, FRound, FFract, FSqrt, FExp, FExp2, FLog, FLog2, FSin, FCos, FTan, FAsin, FAcos, FAtan,
    FClamp,     // dst = min(max(a, b), c)
    FLerp,      // dst = a + (b - a) * c
    FStep,      // dst = b < a ? 0 : 1
    FSmoothstep,// edges a, b; position c
    FLess, FLessEqual, FEqual,                              // dst = 1 or 0, an integer
    IAdd, ISub, IMul, IDiv, IMod, IMin, IMax,               // IDiv and IMod by 0 give 0
    INeg, IAbs, IAnd, IOr, IXor, IShiftLeft, IShiftRight,   // shifts by b & 31; right shift is arithmetic
    ILess, ILessEqual, IEqual,
    INot,       // dst = a == 0 ? 1 : 0
    Select,     // dst = a != 0 ? b : c, a an integer
    Random,     // dst = float in [0, 1) hashed from the integers a and b
    // The following are for per-pixel programs alone.
    PixelX, PixelY,      // dst = position of the pixel's centre in [0, 1), x to the right, y down
    ImageWidth, ImageHeight, // dst = size of the result in pixels, an integer
    SampleGrey,          // dst = operand a of the node at position (register b, register c), bilinear, wrapping
    SampleColour,        // dst..dst+3 = the same for a colour operand
    Count
};

/// dst, a, b and c are registers unless the operation says otherwise.
struct Instruction
{
    Op op = Op::Constant;
    std::uint16_t dst = 0, a = 0, b = 0, c = 0;
};

/// A straight-line program: no jumps, so it always ends. Registers are written before they are read.
struct ValueProgram
{
    std::vector<Instruction> instructions;
    std::vector<std::uint32_t> constants; // bit patterns
    std::uint16_t registerCount = 0;
    std::uint16_t result = 0;             // first register of the result
    ValueType type = ValueType::Float;    // numeric type of the result
    bool perPixel = false;                // may use the operations for per-pixel programs
};

enum class ParameterSource : std::uint8_t {
    Constant, // words
    Program,  // index into Program::values
    Blob,     // index into Program::blobs: curve keys, gradient stops, embedded images, constant text (UTF-8)
    Input     // index into Program::inputs: image and text inputs
};

/// The value of one parameter of a node. Parameters that are absent have their declared default.
struct Parameter
{
    std::uint32_t id = 0; // parameterId(name)
    ParameterSource source = ParameterSource::Constant;
    Words words{};
    std::int32_t index = kNone;
};

enum class Depth : std::uint8_t { U8, U16, F16, F32 };

/// One image node. Its result has 1 (grey) or 4 (colour, R G B A) channels.
struct Node
{
    std::uint32_t kind = 0; // nodeId(name of the node kind)
    std::uint8_t channels = 1;
    Depth depth = Depth::F32; // least precision that the result must be kept with
    std::vector<std::int32_t> operands; // earlier nodes by the order of the kind's operands; kNone: not connected
    std::vector<Parameter> parameters;
    std::int32_t size = kNone; // value program of type Int2: base-2 logarithms of width and height, 0 to 14
    std::int32_t seed = kNone; // value program of type Int: the random seed of the node; kNone: 0
    std::string name;          // "graph/node", for messages and profiles
};

/// One output. An image output hangs on a node, a numeric one on a value program.
struct Output
{
    std::uint32_t uid = 0;
    ValueType type = ValueType::Image;
    std::int32_t node = kNone;
    std::int32_t value = kNone;
    std::uint8_t pixelFormat = 0;  // the engine interface's format byte; raw formats only
    std::uint8_t mipmaps = 1;      // number of levels asked for
    std::uint16_t fixedWidth = 0, fixedHeight = 0; // 0: the size depends on inputs
    std::string identifier;
};

struct Program
{
    std::vector<Input> inputs;
    std::vector<ValueProgram> values;
    std::vector<std::vector<std::uint8_t>> blobs;
    std::vector<Node> nodes;
    std::vector<Output> outputs;
};

/// Limits that the checker holds every program to.
constexpr std::size_t kMaxInputs = 1u << 16, kMaxOutputs = 1u << 16, kMaxNodes = 1u << 20, kMaxValues = 1u << 20;
constexpr std::size_t kMaxInstructions = 1u << 14, kMaxRegisters = 1u << 14, kMaxOperands = 64, kMaxParameters = 256;
constexpr std::uint32_t kMaxLog2Size = 14;

/// 32-bit FNV-1a of a name: the stable identifier of a node kind or parameter.
constexpr std::uint32_t stableId(const char* name)
{
    std::uint32_t hash = 2166136261u;
    for (; *name; ++name)
        hash = (hash ^ static_cast<std::uint8_t>(*name)) * 16777619u;
    return hash;
}

} // namespace vellor::program
