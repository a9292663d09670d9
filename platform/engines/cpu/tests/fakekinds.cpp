#include "platform/engines/cpu/tests/fakekinds.h"

#include <chrono>
#include <cstring>
#include <memory>
#include <new>
#include <thread>
#include <vector>

namespace vellor::cpu::testing {
namespace {

using namespace nodes;

struct Numbers : State
{
    float amount = 0.0f;
    std::int32_t seed = 0;
    ImageView image;
};

std::unique_ptr<State> prepareNumbers(const Setup& setup)
{
    auto state = std::make_unique<Numbers>();
    state->amount = setup.parameters[0].f[0];
    state->seed = setup.seed;
    return state;
}

std::unique_ptr<State> prepareFail(const Setup&)
{
    throw std::bad_alloc();
}

std::unique_ptr<State> prepareLetter(const Setup& setup)
{
    auto state = std::make_unique<Numbers>();
    const auto text = setup.parameters[0].text;
    state->amount = text.empty() ? 0.0f : static_cast<float>(text.front());
    return state;
}

std::unique_ptr<State> preparePhoto(const Setup& setup)
{
    auto state = std::make_unique<Numbers>();
    if (setup.image.width == setup.width && setup.image.height == setup.height)
        state->image = setup.image;
    return state;
}

std::unique_ptr<State> prepareProgram(const Setup& setup)
{
    auto state = std::make_unique<Numbers>();
    const program::ValueProgram& program = *setup.parameters[0].program;
    float number = 0.0f, input = 0.0f;
    std::memcpy(&number, &program.constants.at(0), 4);
    for (const program::Instruction& instruction : program.instructions)
        if (instruction.op == program::Op::Input)
            std::memcpy(&input, setup.inputWords + 4 * instruction.a, 4);
    state->amount = number + input;
    return state;
}

const Numbers& numbers(const RowJob& job)
{
    return *static_cast<const Numbers*>(job.state);
}

void rampRow(const RowJob& job)
{
    for (int c = 0; c < job.channels; ++c)
        for (int i = 0; i < job.count; ++i)
            job.result[c][i] = static_cast<float>(job.x + i + 100 * job.y + numbers(job).seed) +
                               numbers(job).amount + 0.25f * static_cast<float>(c);
    counters().ramp += job.count;
}

void addRow(const RowJob& job)
{
    // Whole vectors beyond count are written on purpose: the rows' padding must bear it.
    for (int c = 0; c < job.channels; ++c)
        for (int i = 0; i < (job.count + 15) / 16 * 16; ++i)
            job.result[c][i] = job.operands[c][i] + numbers(job).amount;
    counters().add += job.count;
}

void sumRow(const RowJob& job)
{
    for (int c = 0; c < job.channels; ++c)
        for (int i = 0; i < job.count; ++i)
            job.result[c][i] = job.operands[c][i] + job.operands[kMaxChannels + c][i];
    counters().sum += job.count;
}

void slowRow(const RowJob& job)
{
    std::this_thread::sleep_for(std::chrono::microseconds(200));
    rampRow(job);
}

void constantRow(const RowJob& job)
{
    for (int c = 0; c < job.channels; ++c)
        for (int i = 0; i < job.count; ++i)
            job.result[c][i] = numbers(job).amount;
}

void photoRow(const RowJob& job)
{
    const ImageView& image = numbers(job).image;
    for (int c = 0; c < job.channels; ++c)
        for (int i = 0; i < job.count; ++i)
            job.result[c][i] = c < image.channels ? image.planes[c][job.y * image.stride + job.x + i] : -1.0f;
}

std::vector<ScratchShape> spreadScratch(const State*, const Setup& setup)
{
    return {{setup.width, setup.height, setup.channels}};
}

void spreadArea(const AreaJob& job)
{
    const ImageView& in = job.operands[0];
    for (int c = 0; c < job.result.channels; ++c) {
        for (int y = job.y0; y < job.y1; ++y) {
            float* out = job.result.planes[c] + y * job.result.stride;
            const float* row = in.planes[c] + y * in.stride;
            const float* above = in.planes[c] + (y + in.height - 1) % in.height * in.stride;
            const float* below = in.planes[c] + (y + 1) % in.height * in.stride;
            for (int x = 0; x < in.width; ++x) {
                if (job.pass == 0)
                    out[x] = row[(x + in.width - 1) % in.width] + row[(x + 1) % in.width];
                else
                    out[x] = job.scratch[0].planes[c][y * job.scratch[0].stride + x] + (above[x] + below[x]);
            }
            counters().spread += job.pass * in.width;
        }
    }
}

NodeDeclaration point(const char* name, int operands, std::unique_ptr<State> (*prepare)(const Setup&),
                      void (*row)(const RowJob&), ParameterDeclaration parameter)
{
    NodeDeclaration kind{};
    kind.name = name;
    for (int i = 0; i < operands; ++i)
        kind.operands.push_back({i == 0 ? "first" : "second", OperandChannels::Result, true, ""});
    kind.parameters.push_back(parameter);
    kind.prepare = prepare;
    kind.row = row;
    return kind;
}

std::vector<NodeDeclaration> makeKinds()
{
    const ParameterDeclaration amount{"amount", ParameterType::Float, {}, 0, 1, "", {}};
    std::vector<NodeDeclaration> kinds{
        point("ramp", 0, prepareNumbers, rampRow, amount),
        point("add", 1, prepareNumbers, addRow, amount),
        point("sum", 2, prepareNumbers, sumRow, amount),
        point("slow", 0, prepareNumbers, slowRow, amount),
        point("fail", 0, prepareFail, rampRow, amount),
        point("letter", 0, prepareLetter, constantRow, {"text", ParameterType::Text, {}, 0, 1, "", {}}),
        point("photo", 0, preparePhoto, photoRow, {"image", ParameterType::ImageInput, {}, 0, 1, "", {}}),
        point("program", 0, prepareProgram, constantRow,
              {"program", ParameterType::PixelProgram, {}, 0, 1, "", {}}),
    };
    NodeDeclaration spread = point("spread", 1, nullptr, nullptr, amount);
    spread.area = spreadArea;
    spread.scratch = spreadScratch;
    kinds.push_back(spread);
    return kinds;
}

} // namespace

Counters& counters()
{
    static Counters counters;
    return counters;
}

const nodes::NodeDeclaration* findFakeKind(std::uint32_t id)
{
    static const std::vector<NodeDeclaration> kinds = makeKinds();
    for (const NodeDeclaration& kind : kinds)
        if (kind.id() == id)
            return &kind;
    return nullptr;
}

} // namespace vellor::cpu::testing
