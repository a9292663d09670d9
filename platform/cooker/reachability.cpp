#include "platform/cooker/reachability.h"

#include <algorithm>

namespace vellor::cooker {

using program::kNone;
using program::Program;

namespace {

/// Sixty-four outputs at a time: a mask of them flows from the outputs back to the inputs.
class Pass
{
public:
    Pass(const Program& program, std::size_t firstOutput)
        : m_nodes(program.nodes.size(), 0), m_values(program.values.size(), 0),
          m_inputs(program.inputs.size(), 0)
    {
        const std::size_t end = std::min(program.outputs.size(), firstOutput + 64);
        for (std::size_t i = firstOutput; i < end; ++i) {
            const program::Output& output = program.outputs[i];
            const std::uint64_t bit = std::uint64_t{1} << (i - firstOutput);
            mark(m_nodes, output.node, bit);
            mark(m_values, output.value, bit);
        }
        for (std::size_t i = m_nodes.size(); i-- > 0;)
            fromNode(program.nodes[i], m_nodes[i]);
        for (std::size_t i = 0; i < m_values.size(); ++i)
            fromValue(program.values[i], m_values[i]);
    }

    const std::vector<std::uint64_t>& inputs() const { return m_inputs; }

private:
    static void mark(std::vector<std::uint64_t>& masks, std::int32_t index, std::uint64_t mask)
    {
        if (index != kNone)
            masks[index] |= mask;
    }

    void fromNode(const program::Node& node, std::uint64_t mask)
    {
        if (mask == 0)
            return;
        for (const std::int32_t operand : node.operands)
            mark(m_nodes, operand, mask);
        mark(m_values, node.size, mask);
        mark(m_values, node.seed, mask);
        for (const program::Parameter& parameter : node.parameters) {
            if (parameter.source == program::ParameterSource::Program)
                mark(m_values, parameter.index, mask);
            if (parameter.source == program::ParameterSource::Input)
                mark(m_inputs, parameter.index, mask);
        }
    }

    void fromValue(const program::ValueProgram& value, std::uint64_t mask)
    {
        if (mask == 0)
            return;
        for (const program::Instruction& instruction : value.instructions) {
            if (instruction.op == program::Op::Input)
                m_inputs[instruction.a] |= mask;
        }
    }

    std::vector<std::uint64_t> m_nodes, m_values, m_inputs;
};

} // namespace

std::vector<std::vector<std::int32_t>> alteredOutputs(const Program& program)
{
    std::vector<std::vector<std::int32_t>> altered(program.inputs.size());
    for (std::size_t first = 0; first < program.outputs.size(); first += 64) {
        const Pass pass(program, first);
        for (std::size_t input = 0; input < altered.size(); ++input) {
            for (int bit = 0; bit < 64; ++bit) {
                if (pass.inputs()[input] >> bit & 1)
                    altered[input].push_back(static_cast<std::int32_t>(first) + bit);
            }
        }
    }
    return altered;
}

} // namespace vellor::cooker
