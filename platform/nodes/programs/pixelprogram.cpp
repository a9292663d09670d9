#include "platform/nodes/dispatch.h"
#include "platform/nodes/form.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/valueoperations.h"
#include "platform/program/types.h"

#include <algorithm>
#include <array>

#ifndef VELLOR_PIXELPROGRAM_STATE
#define VELLOR_PIXELPROGRAM_STATE
namespace vellor::nodes {
namespace {

constexpr int kProgramChunk = 256;

struct PixelProgramState : State
{
    program::ValueProgram program;
    std::vector<std::uint32_t> inputs; // what Input operations read, by instruction
    std::vector<bool> own;             // by instruction: samples at the pixel's own position
    std::vector<bool> once;            // by instruction: gives the same for all pixels
};

/// Rows of all channels of all operands, from a chunk's first pixel on; null for those that there aren't.
using OperandRows = std::array<const float*, 4 * kMaxChannels>;

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/programs/pixelprogram.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/sampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

using program::Instruction;
using program::Op;

/// The registers of a chunk of pixels, one line for each, and the operations on whole lines.
class Machine
{
public:
    /// For pictures of a size. Operands are there for programs that sample at other positions than their own.
    Machine(const PixelProgramState& state, int width, int height, const ImageView* operands)
        : m_state(state), m_operands(operands), m_width(width), m_height(height),
          m_size((std::size_t(state.program.registerCount) + 1) * kProgramChunk),
          m_memory(new std::uint32_t[m_size + 16]), m_lines(m_memory.get())
    {
        while (reinterpret_cast<std::uintptr_t>(m_lines) % 64 != 0)
            ++m_lines;
        std::fill_n(m_lines + m_size - kProgramChunk, kProgramChunk, 0u);
        m_count = kProgramChunk;
        runWhere(true);
    }

    void run(int x, int y, int count, const OperandRows& rows)
    {
        m_rows = &rows;
        m_x = x;
        m_y = y;
        m_count = count;
        runWhere(false);
    }

    /// Channel c of the result of the last run.
    F result(int c, int i)
    {
        // One number for colour is a grey; what else is missing is 1.
        const int given = program::componentCount(m_state.program.type);
        const int from = c < given ? c : given == 1 && c < 3 ? 0 : -1;
        return from < 0 ? F(1.0f) : readFloat(m_state.program.result + from, i);
    }

private:
    /// The line of a register; one line beyond the last stands for fields that an operation doesn't use.
    std::uint32_t* words(int index)
    {
        const int line = std::min<int>(index, m_state.program.registerCount);
        return m_lines + std::size_t(line) * kProgramChunk;
    }

    void runWhere(bool once)
    {
        for (std::size_t i = 0; i < m_state.program.instructions.size(); ++i)
            if (m_state.once[i] == once)
                step(m_state.program.instructions[i], i);
    }

    F readFloat(int index, int i) { return floatOfBits(loadAt(words(index) + i)); }
    void put(F value, int index, int i) { storeAt(bitsOf(value), words(index) + i); }

    template<class Function> void fill(const Instruction& in, Function function)
    {
        for (int i = 0; i < m_count; i += kLanes)
            storeAt(function(i), words(in.dst) + i);
    }
    template<class Function> void floats(const Instruction& in, Function function)
    {
        for (int i = 0; i < m_count; i += kLanes)
            put(function(readFloat(in.a, i), readFloat(in.b, i), readFloat(in.c, i)), in.dst, i);
    }
    template<class Function> void compare(const Instruction& in, Function function)
    {
        for (int i = 0; i < m_count; i += kLanes)
            storeAt(choose(function(readFloat(in.a, i), readFloat(in.b, i)), U(1u), U(0u)),
                    words(in.dst) + i);
    }

    void step(const Instruction& in, std::size_t index)
    {
        switch (in.op) {
        case Op::Constant:
            return fill(in, [&](int) { return U(m_state.program.constants[in.a]); });
        case Op::Input:
            return fill(in, [&](int) { return U(m_state.inputs[index]); });
        case Op::Copy:
            return fill(in, [&](int i) { return loadAt(words(in.a) + i); });
        case Op::IToF:
            return fill(in, [&](int i) { return bitsOf(toFloat(loadAt(words(in.a) + i))); });
        case Op::PixelX:
            return fill(in, [&](int i) { return bitsOf(centresFrom(m_x + i, m_width)); });
        case Op::PixelY:
            return fill(in, [&](int) { return bitsOf(F(centreOf(m_y, m_height))); });
        case Op::ImageWidth:
            return fill(in, [&](int) { return U(static_cast<std::uint32_t>(m_width)); });
        case Op::ImageHeight:
            return fill(in, [&](int) { return U(static_cast<std::uint32_t>(m_height)); });
        case Op::SampleGrey:
            return sample(in, 1, m_state.own[index]);
        case Op::SampleColour:
            return sample(in, kMaxChannels, m_state.own[index]);
        case Op::FLess:
            return compare(in, [](F a, F b) { return a < b; });
        case Op::FLessEqual:
            return compare(in, [](F a, F b) { return a <= b; });
        case Op::FEqual:
            return compare(in, [](F a, F b) { return a == b; });
        case Op::Select:
            return fill(in, [&](int i) {
                const U none = loadAt(words(in.a) + i), no = loadAt(words(in.c) + i);
                return choose(none == U(0u), no, loadAt(words(in.b) + i));
            });
        default:
            return arithmetic(in);
        }
    }

    void arithmetic(const Instruction& in)
    {
        const F zero(0.0f), one(1.0f);
        switch (in.op) {
        case Op::FAdd:
            return floats(in, [](F a, F b, F) { return a + b; });
        case Op::FSub:
            return floats(in, [](F a, F b, F) { return a - b; });
        case Op::FMul:
            return floats(in, [](F a, F b, F) { return a * b; });
        case Op::FDiv:
            return floats(
                in, [&](F a, F b, F) { return choose(b == zero, zero, a / choose(b == zero, one, b)); });
        case Op::FMod:
            return floats(in, [](F a, F b, F) { return modOf(a, b); });
        case Op::FMin:
            return floats(in, [](F a, F b, F) { return minOf(a, b); });
        case Op::FMax:
            return floats(in, [](F a, F b, F) { return maxOf(a, b); });
        case Op::FPow:
            return floats(in, [](F a, F b, F) { return powOf(a, b); });
        case Op::FAtan2:
            return floats(in, [](F a, F b, F) { return atan2Of(a, b); });
        case Op::FNeg:
            return floats(in, [](F a, F, F) { return -a; });
        case Op::FAbs:
            return floats(in, [](F a, F, F) { return absOf(a); });
        case Op::FFloor:
            return floats(in, [](F a, F, F) { return floorOf(a); });
        case Op::FCeil:
            return floats(in, [](F a, F, F) { return -floorOf(-a); });
        case Op::FRound:
            return floats(in, [](F a, F, F) { return roundOf(a); });
        case Op::FFract:
            return floats(in, [](F a, F, F) { return a - floorOf(a); });
        case Op::FSqrt:
            return floats(in, [&](F a, F, F) { return sqrtOf(maxOf(a, zero)); });
        case Op::FExp:
            return floats(in, [](F a, F, F) { return expOf(a); });
        case Op::FExp2:
            return floats(in, [](F a, F, F) { return exp2Of(a); });
        case Op::FLog:
            return floats(in, [](F a, F, F) { return logOf(a); });
        case Op::FLog2:
            return floats(in, [](F a, F, F) { return log2Of(a); });
        case Op::FSin:
            return floats(in, [](F a, F, F) { return sinOf(a); });
        case Op::FCos:
            return floats(in, [](F a, F, F) { return cosOf(a); });
        case Op::FTan:
            return floats(in, [](F a, F, F) { return tanOf(a); });
        case Op::FAsin:
            return floats(in, [](F a, F, F) { return asinOf(a); });
        case Op::FAcos:
            return floats(in, [](F a, F, F) { return acosOf(a); });
        case Op::FAtan:
            return floats(in, [](F a, F, F) { return atanOf(a); });
        case Op::FClamp:
            return floats(in, [](F a, F b, F c) { return clampOf(a, b, c); });
        case Op::FLerp:
            return floats(in, [](F a, F b, F c) { return lerpOf(a, b, c); });
        case Op::FStep:
            return floats(in, [&](F a, F b, F) { return choose(b < a, zero, one); });
        case Op::FSmoothstep:
            return floats(in, [](F a, F b, F c) { return smoothstepOf(a, b, c); });
        default:
            return oneByOne(in);
        }
    }

    /// Integers: rare, and division has no vector form.
    void oneByOne(const Instruction& in)
    {
        const std::uint32_t *a = words(in.a), *b = words(in.b), *c = words(in.c);
        std::uint32_t* dst = words(in.dst);
        for (int i = 0; i < m_count; ++i)
            dst[i] = applyOperation(in.op, a[i], b[i], c[i]);
    }

    /// An operand that isn't connected is 0 everywhere. Grey spreads over colours, colour adds up to its
    /// luminance.
    void sample(const Instruction& in, int channels, bool own)
    {
        const float* const* rows = m_rows->data() + in.a * kMaxChannels;
        const int given = !rows[0] ? 0 : rows[1] ? kMaxChannels : 1;
        for (int i = 0; i < m_count; i += kLanes) {
            F values[kMaxChannels] = {F(0.0f), F(0.0f), F(0.0f), F(0.0f)};
            if (own)
                for (int c = 0; c < given; ++c)
                    values[c] = load(rows[c] + i);
            else if (given > 0)
                sampleFreely(in, i, values);
            if (channels == 1 && given > 1)
                values[0] = values[0] * F(0.2126f) + values[1] * F(0.7152f) + values[2] * F(0.0722f);
            if (channels > 1 && given == 1) {
                values[1] = values[2] = values[0];
                values[3] = F(1.0f);
            }
            for (int c = 0; c < channels; ++c)
                put(values[c], in.dst + c, i);
        }
    }

    void sampleFreely(const Instruction& in, int i, F* values)
    {
        const ImageView& image = m_operands[in.a];
        const BilinearTaps taps(image, readFloat(in.b, i), readFloat(in.c, i));
        for (int c = 0; c < image.channels; ++c)
            values[c] = taps.read(image.planes[c]);
    }

    const PixelProgramState& m_state;
    const ImageView* m_operands;
    const OperandRows* m_rows = nullptr;
    int m_width, m_height;
    std::size_t m_size;
    std::unique_ptr<std::uint32_t[]> m_memory;
    std::uint32_t* m_lines;
    int m_x = 0, m_y = 0, m_count = 0;
};

void pixelProgramArea(const AreaJob& job)
{
    const auto& state = static_cast<const PixelProgramState&>(*job.state);
    Machine machine(state, job.result.width, job.result.height, job.operands);
    OperandRows rows{};
    for (int y = job.y0; y < job.y1; ++y) {
        for (int x = 0; x < job.result.width; x += kProgramChunk) {
            const int count = std::min(kProgramChunk, job.result.width - x);
            for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
                const ImageView& image = job.operands[i / kMaxChannels];
                const int c = i % kMaxChannels;
                rows[i] = c < image.channels ? rowOf(image, c, y) + x : nullptr;
            }
            machine.run(x, y, count, rows);
            for (int c = 0; c < job.result.channels; ++c)
                for (int i = 0; i < count; i += kLanes)
                    store(machine.result(c, i), rowOf(job.result, c, y) + x + i);
        }
    }
}

void pixelProgramRow(const RowJob& job)
{
    const auto& state = static_cast<const PixelProgramState&>(*job.state);
    Machine machine(state, job.width, job.height, nullptr);
    OperandRows rows{};
    for (int x = 0; x < job.count; x += kProgramChunk) {
        const int count = std::min(kProgramChunk, job.count - x);
        for (std::size_t i = 0; i < rows.size(); ++i)
            rows[i] = job.operands[i] ? job.operands[i] + x : nullptr;
        machine.run(job.x + x, job.y, count, rows);
        for (int c = 0; c < job.channels; ++c)
            for (int i = 0; i < count; i += kLanes)
                store(machine.result(c, i), job.result[c] + x + i);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(pixelProgramArea)
NODES_ROW_KERNEL(pixelProgramRow)

static bool isSample(const program::Instruction& in)
{
    return in.op == program::Op::SampleGrey || in.op == program::Op::SampleColour;
}

/// Which instructions sample at the pixel's own position, whose interpolation is the pixel itself.
static std::vector<bool> ownSamples(const program::ValueProgram& program)
{
    using program::Op;
    std::vector<Op> writer(std::size_t(program.registerCount) + kMaxChannels, Op::Constant); // by register
    std::vector<bool> own;
    for (const program::Instruction& in : program.instructions) {
        own.push_back(isSample(in) && writer[in.b] == Op::PixelX && writer[in.c] == Op::PixelY);
        const Op origin = in.op == Op::Copy ? writer[in.a] : in.op;
        std::fill_n(writer.begin() + in.dst, in.op == Op::SampleColour ? kMaxChannels : 1, origin);
    }
    return own;
}

/// Which instructions give the same for all pixels, in registers that nothing else writes.
static std::vector<bool> onceAndForAll(const program::ValueProgram& program)
{
    using program::Op;
    std::vector<int> writes(std::size_t(program.registerCount) + kMaxChannels, 0); // by register
    for (const program::Instruction& in : program.instructions)
        for (int c = 0; c < (in.op == Op::SampleColour ? kMaxChannels : 1); ++c)
            ++writes[in.dst + c];
    std::vector<bool> once;
    for (const program::Instruction& in : program.instructions)
        once.push_back(writes[in.dst] == 1 && (in.op == Op::Constant || in.op == Op::Input ||
                                               in.op == Op::ImageWidth || in.op == Op::ImageHeight));
    return once;
}

/// Whether no picture is read at another place than the pixel's own.
static bool readsOwnPixel(const program::ValueProgram* program)
{
    if (!program)
        return true;
    const std::vector<bool> own = ownSamples(*program);
    for (std::size_t i = 0; i < own.size(); ++i)
        if (isSample(program->instructions[i]) && !own[i])
            return false;
    return true;
}

/// Without a program, the result is 0.
static program::ValueProgram emptyProgram()
{
    program::ValueProgram empty;
    empty.instructions = {{program::Op::Constant, 0, 0, 0, 0}};
    empty.constants = {0};
    empty.registerCount = 1;
    return empty;
}

static std::unique_ptr<State> preparePixelProgram(const Setup& setup)
{
    auto state = std::make_unique<PixelProgramState>();
    state->program = setup.parameters[0].program ? *setup.parameters[0].program : emptyProgram();
    for (const program::Instruction& in : state->program.instructions)
        state->inputs.push_back(in.op == program::Op::Input ? setup.inputWords[4 * std::size_t(in.a) + in.b]
                                                            : 0u);
    state->own = ownSamples(state->program);
    state->once = onceAndForAll(state->program);
    return state;
}

const NodeDeclaration pixelprogramNode{
    "pixelprogram",
    "Pixel Program",
    "Programs",
    "An expression worked out for every pixel, which may read the position and up to four pictures at any "
    "place.",
    ResultChannels::Chosen,
    Chance::None,
    {{"input0", OperandChannels::Any, false, "Picture 0; 0 everywhere when not connected."},
     {"input1", OperandChannels::Any, false, "Picture 1; 0 everywhere when not connected."},
     {"input2", OperandChannels::Any, false, "Picture 2; 0 everywhere when not connected."},
     {"input3", OperandChannels::Any, false, "Picture 3; 0 everywhere when not connected."}},
    {{"program",
      ParameterType::PixelProgram,
      {},
      0,
      1,
      "The expression: one number for grey, four for colour."}},
    preparePixelProgram,
    nullptr,
    runpixelProgramArea};

const NodeDeclaration& formFor(const NodeDeclaration& kind, const ParameterValue* parameters)
{
    static const NodeDeclaration point = [] {
        NodeDeclaration form = pixelprogramNode;
        form.row = runpixelProgramRow;
        form.area = nullptr;
        return form;
    }();
    return &kind == &pixelprogramNode && readsOwnPixel(parameters[0].program) ? point : kind;
}

} // namespace vellor::nodes
#endif
