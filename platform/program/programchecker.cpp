#include "platform/program/programchecker.h"

#include "platform/program/opinfo.h"
#include "platform/program/types.h"

#include <algorithm>
#include <unordered_set>

namespace vellor::program {

namespace {

constexpr std::size_t kMaxNameLength = 4096, kMaxTextLength = 1u << 20;
constexpr std::uint8_t kMaxMipmaps = 15;

bool isKnown(ValueType type)
{
    return isNumeric(type) || type == ValueType::Image || type == ValueType::String;
}

/// Thrown at the first broken rule and caught in checkProgram: the rules read as a plain list.
struct Broken
{
    std::string rule;
};

void require(bool kept, const char* rule)
{
    if (!kept)
        throw Broken{rule};
}

/// The operands that a value program samples, one bit each. Collected once, since many nodes may share a
/// program.
struct Samples
{
    std::uint64_t grey = 0, colour = 0;
};
static_assert(kMaxOperands <= 64, "one bit for each operand");

class Checker
{
public:
    explicit Checker(const Program& program) : m_program(program) {}

    /// Where the check stands, for the message.
    std::string place;

    void run()
    {
        place = "program";
        require(m_program.inputs.size() <= kMaxInputs, "too many inputs");
        require(m_program.values.size() <= kMaxValues, "too many value programs");
        require(m_program.nodes.size() <= kMaxNodes, "too many nodes");
        require(m_program.outputs.size() <= kMaxOutputs, "too many outputs");
        each("input", m_program.inputs, &Checker::checkInput);
        each("value program", m_program.values, &Checker::checkValue);
        each("node", m_program.nodes, &Checker::checkNode);
        m_uids.clear();
        each("output", m_program.outputs, &Checker::checkOutput);
    }

private:
    template<typename Record>
    void each(const char* name, const std::vector<Record>& records, void (Checker::*check)(const Record&))
    {
        for (m_index = 0; m_index < records.size(); ++m_index) {
            place = std::string(name) + " " + std::to_string(m_index);
            (this->*check)(records[m_index]);
        }
    }

    void checkInput(const Input& input)
    {
        require(isKnown(input.type), "unknown type");
        require(m_uids.insert(input.uid).second, "its uid is taken");
        require(input.identifier.size() <= kMaxNameLength, "its identifier is too long");
        require(input.defaultText.empty() || input.type == ValueType::String,
                "only a text has a default text");
        require(input.defaultText.size() <= kMaxTextLength, "its default text is too long");
        require(std::all_of(input.defaultText.begin(), input.defaultText.end(),
                            [](char32_t c) { return c != 0 && c < 0x110000 && (c < 0xD800 || c > 0xDFFF); }),
                "its default text holds something that is no character");
        for (int i = componentCount(input.type); i < 4; ++i)
            require(input.defaultValue[i] == 0, "its default has too many components");
    }

    void checkValue(const ValueProgram& value)
    {
        require(isNumeric(value.type), "its type is no number");
        require(value.registerCount <= kMaxRegisters, "too many registers");
        require(value.instructions.size() <= kMaxInstructions, "too many instructions");
        require(value.constants.size() <= kMaxInstructions, "too many constants");
        m_written.assign(value.registerCount, false);
        m_samples.emplace_back();
        for (const Instruction& instruction : value.instructions)
            checkInstruction(value, instruction);
        for (int i = 0; i < componentCount(value.type); ++i)
            requireWritten(value.result + i);
    }

    void checkInstruction(const ValueProgram& value, const Instruction& instruction)
    {
        require(instruction.op < Op::Count, "unknown operation");
        const OpInfo info = opInfo(instruction.op);
        require(!info.perPixelOnly || value.perPixel,
                "an operation for pixels stands outside a pixel program");
        if (info.a)
            requireWritten(instruction.a);
        if (info.b)
            requireWritten(instruction.b);
        if (info.c)
            requireWritten(instruction.c);
        if (instruction.op == Op::Constant)
            require(instruction.a < value.constants.size(), "no such constant");
        if (instruction.op == Op::Input) {
            require(instruction.a < m_program.inputs.size(), "no such input");
            require(instruction.b < componentCount(m_program.inputs[instruction.a].type),
                    "no such component");
        }
        if (instruction.op == Op::SampleGrey || instruction.op == Op::SampleColour) {
            require(instruction.a < kMaxOperands, "no such operand");
            const bool grey = instruction.op == Op::SampleGrey;
            (grey ? m_samples.back().grey : m_samples.back().colour) |= std::uint64_t{1} << instruction.a;
        }
        require(instruction.dst + info.results <= value.registerCount, "no such register");
        std::fill_n(m_written.begin() + instruction.dst, info.results, true);
    }

    void requireWritten(std::size_t index) const
    {
        require(index < m_written.size() && m_written[index], "a register is read before it is written");
    }

    void checkNode(const Node& node)
    {
        require(node.channels == 1 || node.channels == 4, "a picture has 1 or 4 channels");
        require(node.depth <= Depth::F32, "unknown depth");
        require(node.name.size() <= kMaxNameLength, "its name is too long");
        require(node.operands.size() <= kMaxOperands, "too many operands");
        require(node.parameters.size() <= kMaxParameters, "too many parameters");
        for (const std::int32_t operand : node.operands)
            require(operand >= kNone && operand < static_cast<std::int64_t>(m_index),
                    "an operand is no earlier node");
        checkPlainValue(node.size, ValueType::Int2, "its size is no program of type int2");
        checkPlainValue(node.seed, ValueType::Int, "its seed is no program of type int");
        m_ids.clear();
        for (const Parameter& parameter : node.parameters) {
            require(m_ids.insert(parameter.id).second, "a parameter is given twice");
            checkParameter(node, parameter);
        }
    }

    void checkPlainValue(std::int32_t value, ValueType type, const char* rule) const
    {
        if (value == kNone)
            return;
        require(isIndex(value, m_program.values.size()), rule);
        require(m_program.values[value].type == type && !m_program.values[value].perPixel, rule);
    }

    void checkParameter(const Node& node, const Parameter& parameter) const
    {
        switch (parameter.source) {
        case ParameterSource::Constant:
            return;
        case ParameterSource::Program:
            require(isIndex(parameter.index, m_program.values.size()),
                    "a parameter has no such value program");
            return checkSamples(node, m_samples[parameter.index]);
        case ParameterSource::Blob:
            return require(isIndex(parameter.index, m_program.blobs.size()), "a parameter has no such blob");
        case ParameterSource::Input:
            require(isIndex(parameter.index, m_program.inputs.size()), "a parameter has no such input");
            return require(!isNumeric(m_program.inputs[parameter.index].type),
                           "a parameter is bound to an input that is neither image nor text");
        }
        throw Broken{"a parameter has an unknown source"};
    }

    /// A pixel program samples operands of its node that are connected and have the channels that it takes
    /// them for.
    void checkSamples(const Node& node, const Samples& samples) const
    {
        for (std::size_t i = 0; (samples.grey | samples.colour) >> i != 0 && i < kMaxOperands; ++i) {
            const bool grey = samples.grey >> i & 1, colour = samples.colour >> i & 1;
            if (!grey && !colour)
                continue;
            require(i < node.operands.size() && node.operands[i] != kNone,
                    "its pixel program samples an operand that is not connected");
            require(m_program.nodes[node.operands[i]].channels == (grey ? 1 : 4) && grey != colour,
                    "its pixel program samples an operand with the wrong channels");
        }
    }

    void checkOutput(const Output& output)
    {
        require(m_uids.insert(output.uid).second, "its uid is taken");
        require(output.identifier.size() <= kMaxNameLength, "its identifier is too long");
        if (output.type == ValueType::Image) {
            require(output.value == kNone && isIndex(output.node, m_program.nodes.size()),
                    "it has no such node");
            require((output.pixelFormat & 0x83) == 0, "its pixel format is not a raw one");
            require(output.mipmaps >= 1 && output.mipmaps <= kMaxMipmaps,
                    "its number of mipmaps is out of range");
            require((output.fixedWidth == 0) == (output.fixedHeight == 0),
                    "only one side of its size is fixed");
            require(isSide(output.fixedWidth) && isSide(output.fixedHeight),
                    "its size is no power of two in range");
            return;
        }
        require(isNumeric(output.type), "its type is neither image nor number");
        require(output.node == kNone && isIndex(output.value, m_program.values.size()),
                "it has no such value program");
        checkPlainValue(output.value, output.type, "its value program has another type");
    }

    static bool isIndex(std::int32_t index, std::size_t count)
    {
        return index >= 0 && static_cast<std::size_t>(index) < count;
    }

    static bool isSide(unsigned side) { return side <= (1u << kMaxLog2Size) && (side & (side - 1)) == 0; }

    const Program& m_program;
    std::size_t m_index = 0;
    std::unordered_set<std::uint32_t> m_uids;
    std::unordered_set<std::uint32_t> m_ids;
    std::vector<bool> m_written;
    std::vector<Samples> m_samples;
};

} // namespace

bool checkProgram(const Program& program, std::string& error)
{
    Checker checker(program);
    try {
        checker.run();
        return true;
    } catch (const Broken& broken) {
        error = checker.place + ": " + broken.rule;
        return false;
    }
}

} // namespace vellor::program
