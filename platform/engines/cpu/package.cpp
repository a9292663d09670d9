#include "platform/engines/cpu/package.h"

#include "platform/engines/cpu/pixelformat.h"

#include <algorithm>

namespace vellor::cpu {
namespace {

using nodes::ParameterType;
using program::ParameterSource;

bool sourceFits(ParameterSource source, ParameterType type)
{
    switch (type) {
    case ParameterType::Text:
        return source == ParameterSource::Blob || source == ParameterSource::Input;
    case ParameterType::Curve:
    case ParameterType::Gradient:
    case ParameterType::Picture:
        return source == ParameterSource::Blob;
    case ParameterType::PixelProgram:
        return source == ParameterSource::Program;
    case ParameterType::ImageInput:
        return source == ParameterSource::Input;
    default:
        return source == ParameterSource::Constant || source == ParameterSource::Program;
    }
}

bool channelsFit(nodes::OperandChannels wanted, int operand, int result)
{
    switch (wanted) {
    case nodes::OperandChannels::Grey:
        return operand == 1;
    case nodes::OperandChannels::Colour:
        return operand == 4;
    case nodes::OperandChannels::Result:
        return operand == result;
    case nodes::OperandChannels::Any:
        return true;
    }
    return false;
}

bool programFits(const program::ValueProgram& value, ParameterType type, int channels)
{
    if (type != ParameterType::PixelProgram)
        return !value.perPixel;
    return value.type == (channels == 1 ? program::ValueType::Float : program::ValueType::Float4);
}

Key keyOf(const program::ValueProgram& value)
{
    Hasher hasher(0x76616c7565ull);
    for (const program::Instruction& instruction : value.instructions) {
        hasher.add(std::uint64_t(instruction.op) << 32 | std::uint64_t(instruction.dst) << 16 |
                   instruction.a);
        hasher.add(std::uint64_t(instruction.b) << 16 | instruction.c);
    }
    hasher.add(value.constants.data(), value.constants.size() * sizeof value.constants[0]);
    hasher.add(std::uint64_t(value.result) << 32 | std::uint64_t(value.type));
    return hasher.key();
}

std::vector<std::uint32_t> inputsRead(const program::ValueProgram& value)
{
    std::vector<std::uint32_t> inputs;
    for (const program::Instruction& instruction : value.instructions)
        if (instruction.op == program::Op::Input)
            inputs.push_back(instruction.a);
    std::sort(inputs.begin(), inputs.end());
    inputs.erase(std::unique(inputs.begin(), inputs.end()), inputs.end());
    return inputs;
}

} // namespace

std::unique_ptr<Package> Package::make(program::Program program, const KindLookup& lookup)
{
    std::unique_ptr<Package> package(new Package);
    package->program_ = std::move(program);
    for (const program::Output& output : package->program_.outputs)
        if (output.type == program::ValueType::Image && !RawFormat::isRaw(output.pixelFormat))
            return nullptr;
    if (!package->resolveKinds(lookup))
        return nullptr;
    package->describeContents();
    return package;
}

int Package::outputWithUid(std::uint32_t uid) const
{
    const auto found = outputs_.find(uid);
    return found == outputs_.end() ? -1 : found->second;
}

bool Package::resolveKinds(const KindLookup& lookup)
{
    kinds_.reserve(program_.nodes.size());
    for (const program::Node& node : program_.nodes) {
        const nodes::NodeDeclaration* kind = lookup(node.kind);
        if (!kind || !fits(node, *kind))
            return false;
        kinds_.push_back(kind);
    }
    return true;
}

bool Package::fits(const program::Node& node, const nodes::NodeDeclaration& kind) const
{
    if (node.operands.size() > kind.operands.size())
        return false;
    for (std::size_t i = 0; i < kind.operands.size(); ++i) {
        const nodes::OperandDeclaration& operand = kind.operands[i];
        const int from = i < node.operands.size() ? node.operands[i] : program::kNone;
        if (from == program::kNone) {
            if (operand.required)
                return false;
            continue;
        }
        if (!channelsFit(operand.channels, program_.nodes[from].channels, node.channels))
            return false;
    }
    return parametersFit(node, kind);
}

bool Package::parametersFit(const program::Node& node, const nodes::NodeDeclaration& kind) const
{
    for (const nodes::ParameterDeclaration& declared : kind.parameters) {
        const std::uint32_t id = program::stableId(declared.name);
        for (const program::Parameter& parameter : node.parameters) {
            if (parameter.id != id)
                continue;
            if (!sourceFits(parameter.source, declared.type))
                return false;
            if (parameter.source == ParameterSource::Program &&
                !programFits(program_.values[parameter.index], declared.type, node.channels))
                return false;
            if (parameter.source == ParameterSource::Input) {
                const auto type = program_.inputs[parameter.index].type;
                const auto wanted = declared.type == ParameterType::Text ? program::ValueType::String
                                                                         : program::ValueType::Image;
                if (type != wanted)
                    return false;
            }
        }
    }
    return true;
}

void Package::describeContents()
{
    for (const program::ValueProgram& value : program_.values) {
        valueInputs_.push_back(inputsRead(value));
        valueKeys_.push_back(keyOf(value));
    }
    for (const std::vector<std::uint8_t>& blob : program_.blobs) {
        Hasher hasher(0x626c6f62ull);
        hasher.add(blob.data(), blob.size());
        blobKeys_.push_back(hasher.key());
    }
    for (std::size_t i = 0; i < program_.outputs.size(); ++i)
        outputs_.emplace(program_.outputs[i].uid, static_cast<int>(i));
}

} // namespace vellor::cpu
