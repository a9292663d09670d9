// The engine on graphs that bytes decide: kinds, links, sizes up to 32 x 32, parameters with all that floats
// can be, formats, inputs, and what the host does in between.

#include "platform/nodes/node.h"
#include "platform/program/programreader.h"
#include "platform/program/programwriter.h"
#include "tests/fuzz/entries.h"

#include <vellor/engine.h>
#include <vellor/profile.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace vellor::fuzz {
namespace {

using nodes::OperandChannels;
using nodes::ParameterType;
using nodes::ResultChannels;

/// Bytes as decisions; 0 when they are used up.
class Source
{
public:
    Source(const std::uint8_t* data, std::size_t size) : m_at(data), m_end(data + size) {}
    bool empty() const { return m_at == m_end; }
    std::uint8_t byte() { return empty() ? std::uint8_t(0) : *m_at++; }
    int below(int count) { return byte() % count; }
    std::uint32_t word()
    {
        std::uint32_t word = 0;
        for (int i = 0; i < 4; ++i)
            word = word << 8 | byte();
        return word;
    }
    std::vector<std::uint8_t> bytes(int count)
    {
        std::vector<std::uint8_t> result;
        while (count-- > 0)
            result.push_back(byte());
        return result;
    }

private:
    const std::uint8_t *m_at, *m_end;
};

std::uint32_t bitsOf(float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, 4);
    return bits;
}

std::uint32_t floatWord(Source& source)
{
    using Limits = std::numeric_limits<float>;
    static const float kSpecial[] = {0.0f,  1.0f,    -1.0f,   0.5f,
                                     1e30f, -1e30f,  1e-40f,  Limits::infinity(),
                                     1e9f,  3.0e9f,  -0.0f,   -Limits::infinity(),
                                     65536, 1048577, -2.5e5f, Limits::quiet_NaN()};
    const int choice = source.byte();
    if (choice < 64)
        return bitsOf(kSpecial[choice % 16]);
    return choice < 192 ? bitsOf(float(choice - 64) / 32.0f) : source.word();
}

std::uint32_t integerWord(Source& source)
{
    static const std::uint32_t kSpecial[] = {0x80000000u, 0x7fffffffu, 0xffffffffu, 65536u};
    const int choice = source.byte();
    return choice < 32 ? kSpecial[choice % 4] : choice < 192 ? std::uint32_t(choice % 32) : source.word();
}

bool isBlob(ParameterType type)
{
    return type == ParameterType::Text || type == ParameterType::Curve || type == ParameterType::Gradient ||
           type == ParameterType::Picture;
}

/// A package that keeps the rules, of whatever comes.
class Builder
{
public:
    explicit Builder(Source& source) : m_source(source) {}

    program::Program build()
    {
        addInput(program::ValueType::Image);
        addInput(program::ValueType::String);
        addInput(program::ValueType::Float4);
        addInput(program::ValueType::Int4);
        addValue(program::ValueType::Float4, 2, false);
        addValue(program::ValueType::Int4, 3, false);
        m_pixelValues = {addPixelValue(1), addPixelValue(4)};
        const int count = 1 + m_source.below(10);
        for (int i = 0; i < count; ++i)
            addNode();
        for (int i = 0; i < 2; ++i)
            addOutput();
        return m_program;
    }

private:
    void addInput(program::ValueType type)
    {
        program::Input input;
        input.uid = 100 + std::uint32_t(m_program.inputs.size());
        input.type = type;
        m_program.inputs.push_back(input);
    }

    int addValue(program::ValueType type, int input, bool perPixel)
    {
        program::ValueProgram value;
        value.type = type;
        value.registerCount = 4;
        value.perPixel = perPixel;
        for (std::uint16_t c = 0; c < 4; ++c)
            value.instructions.push_back({program::Op::Input, c, std::uint16_t(input), c, 0});
        m_program.values.push_back(value);
        return int(m_program.values.size()) - 1;
    }

    /// Operations of floats over the pixel's place and an input, in registers that are all written first.
    int addPixelValue(int channels)
    {
        using program::Op;
        const int index =
            addValue(channels == 1 ? program::ValueType::Float : program::ValueType::Float4, 2, true);
        program::ValueProgram& value = m_program.values[std::size_t(index)];
        value.instructions[0] = {Op::PixelX, 0, 0, 0, 0};
        value.instructions[1] = {Op::PixelY, 1, 0, 0, 0};
        for (int i = m_source.below(8); i > 0; --i) {
            const auto r = [&] { return std::uint16_t(m_source.below(4)); };
            const auto op = Op(int(Op::FAdd) + m_source.below(int(Op::FAtan) - int(Op::FAdd) + 1));
            value.instructions.push_back({op, r(), r(), r(), r()});
        }
        return index;
    }

    int addSize()
    {
        program::ValueProgram value;
        value.type = program::ValueType::Int2;
        value.registerCount = 2;
        value.constants = {std::uint32_t(m_source.below(7)), std::uint32_t(m_source.below(7))};
        value.instructions = {{program::Op::Constant, 0, 0, 0, 0}, {program::Op::Constant, 1, 1, 0, 0}};
        m_program.values.push_back(value);
        return int(m_program.values.size()) - 1;
    }

    void addNode()
    {
        const auto& kinds = nodes::allNodes();
        const nodes::NodeDeclaration& kind = *kinds[m_source.byte() % kinds.size()];
        program::Node node;
        node.kind = kind.id();
        node.name = kind.name;
        const bool colour = m_source.below(2) == 1;
        node.channels = kind.result == ResultChannels::Grey               ? 1
                        : kind.result == ResultChannels::Colour || colour ? 4
                                                                          : 1;
        if (m_source.below(2) == 0 || m_program.nodes.empty())
            node.size = addSize();
        for (const nodes::OperandDeclaration& operand : kind.operands) {
            const int from = findOperand(operand.channels, node.channels);
            if (operand.required && from == program::kNone)
                return;
            node.operands.push_back(from);
        }
        for (const nodes::ParameterDeclaration& parameter : kind.parameters)
            addParameter(node, parameter);
        m_program.nodes.push_back(node);
    }

    int findOperand(OperandChannels channels, int result)
    {
        std::vector<int> fitting;
        for (std::size_t i = 0; i < m_program.nodes.size(); ++i) {
            const int have = m_program.nodes[i].channels;
            const int wanted = channels == OperandChannels::Grey     ? 1
                               : channels == OperandChannels::Colour ? 4
                               : channels == OperandChannels::Result ? result
                                                                     : have;
            if (have == wanted)
                fitting.push_back(int(i));
        }
        if (fitting.empty())
            return program::kNone;
        return fitting[std::size_t(m_source.byte()) % fitting.size()];
    }

    void addParameter(program::Node& node, const nodes::ParameterDeclaration& declared)
    {
        program::Parameter parameter;
        parameter.id = program::stableId(declared.name);
        const bool isFloat = declared.type <= ParameterType::Float4;
        if (declared.type == ParameterType::PixelProgram) {
            parameter.source = program::ParameterSource::Program;
            parameter.index = m_pixelValues[node.channels == 1 ? 0 : 1];
        } else if (declared.type == ParameterType::ImageInput) {
            parameter.source = program::ParameterSource::Input;
            parameter.index = 0;
        } else if (declared.type == ParameterType::Text && m_source.below(2) == 0) {
            parameter.source = program::ParameterSource::Input;
            parameter.index = 1;
        } else if (isBlob(declared.type)) {
            if (m_source.below(2) == 0)
                return;
            parameter.source = program::ParameterSource::Blob;
            parameter.index = int(m_program.blobs.size());
            m_program.blobs.push_back(m_source.bytes(m_source.below(80)));
        } else if (m_source.below(3) == 0) {
            return;
        } else {
            for (std::uint32_t& word : parameter.words)
                word = isFloat ? floatWord(m_source) : integerWord(m_source);
        }
        node.parameters.push_back(parameter);
    }

    void addOutput()
    {
        if (m_program.nodes.empty())
            return;
        static const int kLayouts[] = {VELLOR_FORMAT_RGBA, VELLOR_FORMAT_RGBX, VELLOR_FORMAT_RGB,
                                       VELLOR_FORMAT_GRAYSCALE};
        static const int kDepths[] = {VELLOR_FORMAT_8BITS, VELLOR_FORMAT_16BITS, VELLOR_FORMAT_16FLOAT,
                                      VELLOR_FORMAT_32FLOAT};
        program::Output output;
        output.uid = 200 + std::uint32_t(m_program.outputs.size());
        output.node = int(m_program.nodes.size()) - 1 - m_source.below(int(m_program.nodes.size()));
        output.pixelFormat = std::uint8_t(kLayouts[m_source.below(4)] | kDepths[m_source.below(4)]);
        output.mipmaps = std::uint8_t(1 + m_source.below(8));
        m_program.outputs.push_back(output);
    }

    Source& m_source;
    program::Program m_program;
    std::array<int, 2> m_pixelValues{};
};

void require(bool kept, const char* promise)
{
    if (kept)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

std::map<std::uint32_t, std::vector<char>>& parked()
{
    static std::map<std::uint32_t, std::vector<char>> store;
    return store;
}

void fetch(VellorHandle* handle, std::uint32_t output, void*)
{
    VellorTexture texture{};
    if (vellorHandleGetOutputs(handle, 0, output, 1, &texture) == VELLOR_OK)
        std::free(texture.buffer);
}

void keepBlock(VellorHandle*, std::uint32_t flags, std::uint32_t entry, char* buffer, std::uint64_t size)
{
    if (flags & VELLOR_CACHE_WRITE)
        parked()[entry].assign(buffer, buffer + size);
    else if (flags & VELLOR_CACHE_READ)
        std::memcpy(buffer, parked()[entry].data(), std::min<std::size_t>(size, parked()[entry].size()));
    if (flags & VELLOR_CACHE_REMOVE)
        parked().erase(entry);
}

template<class Function> VellorFunction function(Function* pointer)
{
    return reinterpret_cast<VellorFunction>(pointer);
}

void pushInputs(VellorHandle* handle, Source& source)
{
    const int width = 1 + source.below(20), height = 1 + source.below(20);
    std::vector<std::uint8_t> pixels(std::size_t(width * height) * 16);
    for (std::uint8_t& pixel : pixels)
        pixel = source.byte();
    const VellorTexture texture{pixels.data(), std::uint16_t(width), std::uint16_t(height),
                                source.byte(), source.byte(),        {}};
    vellorHandlePushSetInput(handle, 0, 0, VELLOR_TYPE_IMAGE, &texture, nullptr);
    std::u32string text;
    for (const std::uint8_t byte : source.bytes(source.below(12)))
        text.push_back(byte < 200 ? char32_t(byte) : char32_t(byte) * 5000);
    vellorHandlePushSetInput(handle, 0, 1, VELLOR_TYPE_STRING, text.c_str(), nullptr);
    std::uint32_t words[4] = {};
    for (std::uint32_t& word : words)
        word = floatWord(source);
    vellorHandlePushSetInput(handle, 0, 2, VELLOR_TYPE_FLOAT4, words, nullptr);
}

void generate(VellorHandle* handle, Source& source)
{
    const std::uint32_t uids[] = {200, 201};
    vellorHandlePushOutputs(handle, VELLOR_PUSH_UIDS, uids, 2, nullptr);
    vellorHandlePushSetInput(handle, VELLOR_PUSH_HINT, std::uint32_t(source.below(4)), 0, nullptr, nullptr);
    vellorHandleSyncSetLabel(handle, 7, nullptr);
    const std::uint32_t result = vellorHandleStart(handle, 0);
    require(result == VELLOR_OK || result == VELLOR_ERROR_OUT_OF_MEMORY, "a checked package computes");
    std::uint32_t label = 0;
    vellorHandleSyncGetLabel(handle, &label);
    require(result != VELLOR_OK || label == 7, "a mark is reached");
}

void run(VellorContext* context, const std::vector<std::uint8_t>& image, Source& source)
{
    VellorHardResources resources{};
    // One thread for most: waking another one costs more than pictures of this size.
    const std::uint32_t words[3] = {source.below(8) == 7 ? 2u : 1u, std::uint32_t(source.below(9)),
                                    std::uint32_t(source.below(2) | source.below(4) << 8)};
    std::memcpy(resources.reserved0, words, sizeof words);
    resources.memoryBudget = source.below(2) ? 20000 + 1000 * source.byte() : 0;
    VellorHandle *handle = nullptr, *other = nullptr;
    require(vellorHandleInit(&handle, context, image.data(), image.size(), &resources) == VELLOR_OK,
            "a package of fitting nodes is taken");
    vellorHandleInit(&other, context, image.data(), image.size(), &resources);
    vellorHandleSetProfile(
        handle, [](VellorHandle*, const VellorProfileStep*, void*) {}, nullptr);
    generate(handle, source);
    pushInputs(handle, source);
    generate(handle, source);
    vellorHandleTransferCache(other, handle, 0);
    pushInputs(other, source);
    generate(other, source);
    vellorHandleRelease(other);
    vellorHandleRelease(handle);
}

/// One for all inputs: threads and memory are dearer than most graphs.
VellorContext* sharedContext()
{
    static VellorContext* const shared = [] {
        VellorDevice device{};
        VellorContext* context = nullptr;
        vellorContextInitImpl(&context, &device, VELLOR_API_VERSION, 0);
        vellorContextSetCallback(context, VELLOR_CALLBACK_OUTPUT_COMPLETE, function(&fetch));
        vellorContextSetCallback(context, VELLOR_CALLBACK_CACHE_STORE, function(&keepBlock));
        return context;
    }();
    return shared;
}

} // namespace

void engine(const std::uint8_t* data, std::size_t size)
{
    Source source(data, size);
    const program::Program program = Builder(source).build();
    if (program.outputs.size() < 2)
        return;
    const std::vector<std::uint8_t> image = program::writeProgram(program);
    std::string error;
    require(program::readProgram(image, error).has_value(), "the package that was built keeps the rules");
    run(sharedContext(), image, source);
    parked().clear();
}

} // namespace vellor::fuzz
