#include "platform/program/sections.h"

namespace vellor::program {

namespace {

template<typename Integer> std::uint32_t asWord(Integer value)
{
    return static_cast<std::uint32_t>(value);
}

void write(const Input& input, ByteWriter& out)
{
    out.put(input.uid);
    out.put(asWord(input.type));
    for (const std::uint32_t word : input.defaultValue)
        out.put(word);
    out.put(asWord(input.defaultText.size()));
    for (const char32_t character : input.defaultText)
        out.put(asWord(character));
    out.putText(input.identifier);
}

void read(Input& input, ByteReader& in)
{
    input.uid = in.get<std::uint32_t>();
    input.type = static_cast<ValueType>(in.get<std::uint32_t>());
    for (std::uint32_t& word : input.defaultValue)
        word = in.get<std::uint32_t>();
    input.defaultText.resize(in.getCount(4));
    for (char32_t& character : input.defaultText)
        character = in.get<std::uint32_t>();
    input.identifier = in.getText();
}

void write(const ValueProgram& value, ByteWriter& out)
{
    out.put(asWord(value.type));
    out.put(value.registerCount);
    out.put(value.result);
    out.put(asWord(value.perPixel));
    out.put(asWord(value.constants.size()));
    for (const std::uint32_t constant : value.constants)
        out.put(constant);
    out.put(asWord(value.instructions.size()));
    for (const Instruction& instruction : value.instructions) {
        out.put(static_cast<std::uint16_t>(instruction.op));
        out.put(instruction.dst);
        out.put(instruction.a);
        out.put(instruction.b);
        out.put(instruction.c);
    }
    out.align(4);
}

void read(ValueProgram& value, ByteReader& in)
{
    value.type = static_cast<ValueType>(in.get<std::uint32_t>());
    value.registerCount = in.get<std::uint16_t>();
    value.result = in.get<std::uint16_t>();
    const auto perPixel = in.get<std::uint32_t>();
    if (perPixel > 1)
        in.fail();
    value.perPixel = perPixel == 1;
    value.constants.resize(in.getCount(4));
    for (std::uint32_t& constant : value.constants)
        constant = in.get<std::uint32_t>();
    value.instructions.resize(in.getCount(sizeof(Instruction)));
    for (Instruction& instruction : value.instructions) {
        instruction.op = static_cast<Op>(in.get<std::uint16_t>());
        instruction.dst = in.get<std::uint16_t>();
        instruction.a = in.get<std::uint16_t>();
        instruction.b = in.get<std::uint16_t>();
        instruction.c = in.get<std::uint16_t>();
    }
    in.align(4);
}

void write(const std::vector<std::uint8_t>& blob, ByteWriter& out)
{
    out.put(static_cast<std::uint64_t>(blob.size()));
    out.putBytes(blob);
    out.align(4);
}

void read(std::vector<std::uint8_t>& blob, ByteReader& in)
{
    const auto size = in.get<std::uint64_t>();
    const ByteView bytes = in.getBytes(static_cast<std::size_t>(size));
    blob.assign(bytes.begin(), bytes.end());
    in.align(4);
}

void write(const Parameter& parameter, ByteWriter& out)
{
    out.put(parameter.id);
    out.put(asWord(parameter.source));
    for (const std::uint32_t word : parameter.words)
        out.put(word);
    out.put(parameter.index);
}

void read(Parameter& parameter, ByteReader& in)
{
    parameter.id = in.get<std::uint32_t>();
    const auto source = in.get<std::uint32_t>();
    if (source > asWord(ParameterSource::Input))
        in.fail();
    parameter.source = static_cast<ParameterSource>(source);
    for (std::uint32_t& word : parameter.words)
        word = in.get<std::uint32_t>();
    parameter.index = in.get<std::int32_t>();
}

void write(const Node& node, ByteWriter& out)
{
    out.put(node.kind);
    out.put(node.channels);
    out.put(static_cast<std::uint8_t>(node.depth));
    out.put(static_cast<std::uint16_t>(0));
    out.put(node.size);
    out.put(node.seed);
    out.put(asWord(node.operands.size()));
    for (const std::int32_t operand : node.operands)
        out.put(operand);
    out.put(asWord(node.parameters.size()));
    for (const Parameter& parameter : node.parameters)
        write(parameter, out);
    out.putText(node.name);
}

void read(Node& node, ByteReader& in)
{
    constexpr std::size_t kParameterSize = 28;
    node.kind = in.get<std::uint32_t>();
    node.channels = in.get<std::uint8_t>();
    node.depth = static_cast<Depth>(in.get<std::uint8_t>());
    if (in.get<std::uint16_t>() != 0)
        in.fail();
    node.size = in.get<std::int32_t>();
    node.seed = in.get<std::int32_t>();
    node.operands.resize(in.getCount(4));
    for (std::int32_t& operand : node.operands)
        operand = in.get<std::int32_t>();
    node.parameters.resize(in.getCount(kParameterSize));
    for (Parameter& parameter : node.parameters)
        read(parameter, in);
    node.name = in.getText();
}

void write(const Output& output, ByteWriter& out)
{
    out.put(output.uid);
    out.put(asWord(output.type));
    out.put(output.node);
    out.put(output.value);
    out.put(output.pixelFormat);
    out.put(output.mipmaps);
    out.put(static_cast<std::uint16_t>(0));
    out.put(output.fixedWidth);
    out.put(output.fixedHeight);
    out.putText(output.identifier);
}

void read(Output& output, ByteReader& in)
{
    output.uid = in.get<std::uint32_t>();
    output.type = static_cast<ValueType>(in.get<std::uint32_t>());
    output.node = in.get<std::int32_t>();
    output.value = in.get<std::int32_t>();
    output.pixelFormat = in.get<std::uint8_t>();
    output.mipmaps = in.get<std::uint8_t>();
    if (in.get<std::uint16_t>() != 0)
        in.fail();
    output.fixedWidth = in.get<std::uint16_t>();
    output.fixedHeight = in.get<std::uint16_t>();
    output.identifier = in.getText();
}

template<typename Record> void writeAll(const std::vector<Record>& records, ByteWriter& out)
{
    out.put(asWord(records.size()));
    for (const Record& record : records)
        write(record, out);
}

template<typename Record> bool readAll(std::vector<Record>& records, ByteView bytes, std::size_t smallest)
{
    ByteReader in(bytes);
    const std::size_t count = in.getCount(smallest);
    records.reserve(count);
    for (std::size_t i = 0; i < count && !in.failed(); ++i)
        read(records.emplace_back(), in);
    return !in.failed() && in.left() == 0;
}

} // namespace

void writeSection(Section section, const Program& program, ByteWriter& writer)
{
    switch (section) {
    case Section::Inputs:
        return writeAll(program.inputs, writer);
    case Section::Values:
        return writeAll(program.values, writer);
    case Section::Blobs:
        return writeAll(program.blobs, writer);
    case Section::Nodes:
        return writeAll(program.nodes, writer);
    case Section::Outputs:
        return writeAll(program.outputs, writer);
    case Section::Count:
        break;
    }
}

bool readSection(Section section, ByteView bytes, Program& program)
{
    // The last argument is the size of the shortest record, with all its lists empty.
    switch (section) {
    case Section::Inputs:
        return readAll(program.inputs, bytes, 32);
    case Section::Values:
        return readAll(program.values, bytes, 20);
    case Section::Blobs:
        return readAll(program.blobs, bytes, 8);
    case Section::Nodes:
        return readAll(program.nodes, bytes, 28);
    case Section::Outputs:
        return readAll(program.outputs, bytes, 28);
    case Section::Count:
        break;
    }
    return false;
}

std::string recordKey(const ValueProgram& value)
{
    ByteWriter out;
    write(value, out);
    return {out.bytes().begin(), out.bytes().end()};
}

std::string recordKey(const Node& node)
{
    Node nameless = node;
    nameless.name.clear();
    ByteWriter out;
    write(nameless, out);
    return {out.bytes().begin(), out.bytes().end()};
}

} // namespace vellor::program
