#include "platform/linker/linker.h"

#include "platform/program/programchecker.h"
#include "platform/program/recordpool.h"
#include "platform/program/types.h"
#include "platform/program/valuebuilder.h"

#include <algorithm>

namespace vellor::linker {

using program::kNone;
using program::Node;
using program::Op;
using program::Output;
using program::Parameter;
using program::ParameterSource;
using program::Program;
using program::ValueProgram;

namespace {

class Linker
{
public:
    explicit Linker(int sizeLimit) : m_sizeLimit(sizeLimit), m_pool(m_linked) {}

    void add(const Program& program)
    {
        m_source = &program;
        m_firstInput = m_linked.inputs.size();
        m_values.assign(program.values.size(), kNone);
        m_sizes.assign(program.values.size(), kNone);
        m_nodes.assign(program.nodes.size(), kNone);
        m_linked.inputs.insert(m_linked.inputs.end(), program.inputs.begin(), program.inputs.end());
        const std::vector<bool> needed = neededNodes(program);
        for (std::size_t i = 0; i < program.nodes.size(); ++i) {
            if (needed[i])
                m_nodes[i] = m_pool.node(linked(program.nodes[i]));
        }
        for (const Output& output : program.outputs)
            m_linked.outputs.push_back(linked(output));
    }

    Program take() { return std::move(m_linked); }

private:
    static std::vector<bool> neededNodes(const Program& program)
    {
        std::vector<bool> needed(program.nodes.size(), false);
        for (const Output& output : program.outputs) {
            if (output.node != kNone)
                needed[output.node] = true;
        }
        for (std::size_t i = needed.size(); i-- > 0;) {
            for (const std::int32_t operand : program.nodes[i].operands) {
                if (needed[i] && operand != kNone)
                    needed[operand] = true;
            }
        }
        return needed;
    }

    Node linked(Node node)
    {
        for (std::int32_t& operand : node.operands)
            operand = operand == kNone ? kNone : m_nodes[operand];
        for (Parameter& parameter : node.parameters)
            relink(parameter);
        std::sort(node.parameters.begin(), node.parameters.end(),
                  [](const Parameter& a, const Parameter& b) { return a.id < b.id; });
        node.size = size(node.size);
        node.seed = value(node.seed);
        if (node.seed != kNone && program::constantResult(m_linked.values[node.seed]) == program::Words{})
            node.seed = kNone;
        return node;
    }

    void relink(Parameter& parameter)
    {
        if (parameter.source == ParameterSource::Blob)
            parameter.index = m_pool.blob(m_source->blobs[parameter.index]);
        if (parameter.source == ParameterSource::Input)
            parameter.index += static_cast<std::int32_t>(m_firstInput);
        if (parameter.source != ParameterSource::Program)
            return;
        const ValueProgram& program = m_source->values[parameter.index];
        const auto constant = program.perPixel ? std::nullopt : program::constantResult(shifted(program));
        if (constant)
            parameter = {parameter.id, ParameterSource::Constant, *constant, kNone};
        else
            parameter.index = value(parameter.index);
    }

    Output linked(Output output)
    {
        const std::uint16_t largest = static_cast<std::uint16_t>(1u << m_sizeLimit);
        output.node = output.node == kNone ? kNone : m_nodes[output.node];
        output.value = value(output.value);
        output.fixedWidth = std::min(output.fixedWidth, largest);
        output.fixedHeight = std::min(output.fixedHeight, largest);
        return output;
    }

    /// A value program whose inputs count from the first package on, as short as it can be.
    ValueProgram shifted(ValueProgram program) const
    {
        for (program::Instruction& instruction : program.instructions) {
            if (instruction.op == Op::Input)
                instruction.a = static_cast<std::uint16_t>(instruction.a + m_firstInput);
        }
        return program::simplified(program);
    }

    std::int32_t value(std::int32_t index)
    {
        if (index == kNone)
            return kNone;
        if (m_values[index] == kNone)
            m_values[index] = m_pool.value(shifted(m_source->values[index]));
        return m_values[index];
    }

    std::int32_t size(std::int32_t index)
    {
        if (index == kNone || m_sizeLimit == static_cast<int>(program::kMaxLog2Size))
            return value(index);
        if (m_sizes[index] == kNone)
            m_sizes[index] = m_pool.value(limited(m_source->values[index]));
        return m_sizes[index];
    }

    /// The same size, but at most the limit. A program that has no room for this is left as it is.
    ValueProgram limited(ValueProgram program) const
    {
        constexpr int kAddedRegisters = 3;
        if (program.registerCount + kAddedRegisters > static_cast<int>(program::kMaxRegisters) ||
            program.instructions.size() + kAddedRegisters > program::kMaxInstructions)
            return shifted(std::move(program));
        const std::uint16_t limit = program.registerCount, from = program.result;
        program.constants.push_back(static_cast<std::uint32_t>(m_sizeLimit));
        program.instructions.push_back(
            {Op::Constant, limit, static_cast<std::uint16_t>(program.constants.size() - 1), 0, 0});
        program.result = static_cast<std::uint16_t>(limit + 1);
        for (std::uint16_t i = 0; i < 2; ++i)
            program.instructions.push_back({Op::IMin, static_cast<std::uint16_t>(program.result + i),
                                            static_cast<std::uint16_t>(from + i), limit, 0});
        program.registerCount = static_cast<std::uint16_t>(program.registerCount + kAddedRegisters);
        return shifted(std::move(program));
    }

    int m_sizeLimit;
    Program m_linked;
    program::RecordPool m_pool;
    const Program* m_source = nullptr; // the package under way, and what its indexes have become
    std::size_t m_firstInput = 0;
    std::vector<std::int32_t> m_values, m_sizes, m_nodes;
};

} // namespace

std::optional<Program> link(const std::vector<Program>& programs, int sizeLimit, std::string& error)
{
    Linker linker(sizeLimit);
    std::size_t inputs = 0;
    for (const Program& program : programs) {
        inputs += program.inputs.size();
        if (inputs > program::kMaxInputs) {
            error = "too many inputs";
            return std::nullopt;
        }
        linker.add(program);
    }
    Program linked = linker.take();
    if (!program::checkProgram(linked, error)) // uids of different packages may meet
        return std::nullopt;
    return linked;
}

} // namespace vellor::linker
