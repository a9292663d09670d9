// The linker through its C face: result codes, descriptions of archives, and what a link makes of programs.

#include "platform/program/assembly.h"
#include "platform/program/packagearchive.h"
#include "platform/program/programreader.h"
#include "platform/program/types.h"

#include <vellor/linker.h>

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace vellor::program;
using Bytes = std::vector<std::uint8_t>;

std::vector<std::string> descriptions;
std::vector<std::string> messages;

void onXml(VellorLinkerContext*, int32_t index, const char* xml)
{
    descriptions.push_back(std::to_string(index) + xml);
}
void onMessage(VellorLinkerContext*, int32_t, const char* text)
{
    messages.emplace_back(text);
}

struct Linked
{
    std::uint32_t code = 0;
    Program program;
};

Linked link(const std::vector<Bytes>& pushed, std::uint32_t sizeLimit = 0)
{
    descriptions.clear();
    messages.clear();
    VellorLinkerContext* context = nullptr;
    VellorLinkerHandle* handle = nullptr;
    EXPECT_EQ(vellorLinkerContextInit(&context, VELLOR_LINKER_API_VERSION, 19), VELLOR_LINKER_OK);
    vellorLinkerContextSetCallback(context, VELLOR_LINKER_CALLBACK_XML,
                                   reinterpret_cast<VellorFunction>(onXml));
    vellorLinkerContextSetCallback(context, VELLOR_LINKER_CALLBACK_MESSAGE,
                                   reinterpret_cast<VellorFunction>(onMessage));
    vellorLinkerContextSetOption(context, VELLOR_LINKER_OPTION_SIZE_LIMIT, sizeLimit);
    EXPECT_EQ(vellorLinkerHandleInit(&handle, context), VELLOR_LINKER_OK);
    for (const Bytes& bytes : pushed)
        EXPECT_EQ(vellorLinkerHandlePushAssemblyMemory(handle, bytes.data(), bytes.size()), VELLOR_LINKER_OK);
    const void* data = nullptr;
    std::uint64_t size = 0;
    Linked linked;
    linked.code = vellorLinkerHandleLink(handle, &data, &size);
    if (linked.code == VELLOR_LINKER_OK) {
        std::string error;
        const auto program = readProgram({data, size}, error);
        EXPECT_TRUE(program) << error;
        linked.program = program.value_or(Program());
    } else {
        EXPECT_EQ(data, nullptr);
    }
    vellorLinkerHandleRelease(handle);
    vellorLinkerContextRelease(context);
    return linked;
}

ValueProgram constantValue(ValueType type, std::uint32_t word)
{
    ValueProgram value;
    value.type = type;
    value.constants = {word};
    value.instructions = {{Op::Constant, 0, 0, 0, 0}, {Op::Copy, 1, 0, 0, 0}};
    value.registerCount = 2;
    return value;
}

Node node(const char* kind, std::vector<std::int32_t> operands, std::vector<Parameter> parameters = {})
{
    Node node;
    node.kind = stableId(kind);
    node.operands = std::move(operands);
    node.parameters = std::move(parameters);
    node.name = kind;
    return node;
}

/// One input that moves node 2; node 1 is node 0 once more; nothing needs node 3.
Program sample(std::uint32_t uid)
{
    Program program;
    program.inputs.push_back({uid, ValueType::Float, {floatBits(0.5f)}, U"", "in"});
    ValueProgram doubled; // in * (1 + 1), by way of a constant that can be worked out
    doubled.constants = {floatBits(1.0f)};
    doubled.instructions = {
        {Op::Constant, 0, 0, 0, 0}, {Op::FAdd, 1, 0, 0, 0}, {Op::Input, 0, 0, 0, 0}, {Op::FMul, 2, 0, 1, 0}};
    doubled.registerCount = 3;
    doubled.result = 2;
    program.values = {constantValue(ValueType::Int2, 11), doubled,
                      constantValue(ValueType::Float, floatBits(3.0f))};
    program.blobs = {{1}, {2}, {1}};
    const Parameter first{5, ParameterSource::Blob, {}, 0}, same{5, ParameterSource::Blob, {}, 2};
    program.nodes = {
        node("a", {}, {first}), node("a", {}, {same}),
        node("b", {0, 1}, {{7, ParameterSource::Program, {}, 1}, {6, ParameterSource::Program, {}, 2}}),
        node("c", {2}, {{5, ParameterSource::Blob, {}, 1}})};
    for (Node& each : program.nodes)
        each.size = 0;
    program.outputs.push_back({uid + 1, ValueType::Image, 2, kNone, 0, 1, 2048, 2048, "out"});
    program.outputs.push_back({uid + 2, ValueType::Float, kNone, 1, 0, 1, 0, 0, "number"});
    return program;
}

TEST(Linker, LeavesOutWhatNothingNeeds)
{
    const Linked linked = link({writeAssembly({sample(10)})});
    ASSERT_EQ(linked.code, VELLOR_LINKER_OK);
    const Program& program = linked.program;
    ASSERT_EQ(program.nodes.size(), 2u);
    EXPECT_EQ(program.nodes[1].operands, (std::vector<std::int32_t>{0, 0}));
    EXPECT_EQ(program.blobs, std::vector<Bytes>{{1}});
    ASSERT_EQ(program.nodes[1].parameters.size(), 2u);
    EXPECT_EQ(program.nodes[1].parameters[0].source, ParameterSource::Constant);
    EXPECT_EQ(program.nodes[1].parameters[0].words[0], floatBits(3.0f));
    const ValueProgram& value = program.values[program.nodes[1].parameters[1].index];
    EXPECT_EQ(value.instructions.size(), 3u); // constant 2, input, product
    EXPECT_EQ(value.constants, std::vector<std::uint32_t>{floatBits(2.0f)});
    EXPECT_EQ(program.outputs[1].value, program.nodes[1].parameters[1].index);
}

TEST(Linker, KeepsTheOrderOfPackages)
{
    const Linked linked = link({writeAssembly({sample(10), sample(20)}), writeAssembly({sample(30)})});
    ASSERT_EQ(linked.code, VELLOR_LINKER_OK);
    std::vector<std::uint32_t> uids;
    for (const Input& input : linked.program.inputs)
        uids.push_back(input.uid);
    for (const Output& output : linked.program.outputs)
        uids.push_back(output.uid);
    EXPECT_EQ(uids, (std::vector<std::uint32_t>{10, 20, 30, 11, 12, 21, 22, 31, 32}));
    // One "a" serves all; each package has a "b" that reads its own input.
    EXPECT_EQ(linked.program.nodes.size(), 4u);
    const ValueProgram& last = linked.program.values[linked.program.outputs[5].value];
    EXPECT_EQ(last.instructions[1].op, Op::Input);
    EXPECT_EQ(last.instructions[1].a, 2);
    EXPECT_EQ(link({writeAssembly({sample(10), sample(10)})}).code, VELLOR_LINKER_ERROR_LINK);
}

TEST(Linker, LimitsSizes)
{
    const Linked linked = link({writeAssembly({sample(10)})}, 512);
    ASSERT_EQ(linked.code, VELLOR_LINKER_OK);
    EXPECT_EQ(linked.program.outputs[0].fixedWidth, 512);
    const ValueProgram& size = linked.program.values[linked.program.nodes[0].size];
    EXPECT_EQ(size.constants, std::vector<std::uint32_t>{9});
}

TEST(Linker, TellsWhatItCannotLink)
{
    const Bytes assembly = writeAssembly({sample(10)});
    Bytes flipped = assembly, newer = assembly;
    flipped[100] ^= 4;
    newer[8] = 2;
    std::string error;
    Archive archive;
    archive.description = "<x/>";
    const Bytes empty = *writeArchive(archive, error);
    archive.assembly = flipped;
    const Bytes damagedInside = *writeArchive(archive, error);
    archive.assembly = assembly;
    const Bytes good = *writeArchive(archive, error);
    const struct
    {
        const char* name;
        std::vector<Bytes> pushed;
        std::uint32_t code;
    } rows[] = {
        {"nothing", {}, VELLOR_LINKER_ERROR_NO_ASSEMBLY},
        {"an empty file", {{}}, VELLOR_LINKER_ERROR_INVALID_ASSEMBLY},
        {"text", {{'h', 'i'}}, VELLOR_LINKER_ERROR_INVALID_ASSEMBLY},
        {"a flipped bit", {flipped}, VELLOR_LINKER_ERROR_INVALID_ASSEMBLY},
        {"another version", {newer}, VELLOR_LINKER_ERROR_INVALID_ASSEMBLY},
        {"a truncated assembly",
         {Bytes(assembly.begin(), assembly.end() - 1)},
         VELLOR_LINKER_ERROR_INVALID_ASSEMBLY},
        {"an archive without assembly", {empty}, VELLOR_LINKER_ERROR_EMPTY_ARCHIVE},
        {"an archive cut off", {Bytes(good.begin(), good.begin() + 60)}, VELLOR_LINKER_ERROR_INVALID_ARCHIVE},
        {"an archive of a damaged assembly", {damagedInside}, VELLOR_LINKER_ERROR_INVALID_ASSEMBLY},
        {"a good archive", {good}, VELLOR_LINKER_OK},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(link(row.pushed).code, row.code) << row.name;
        EXPECT_EQ(messages.empty(),
                  row.code == VELLOR_LINKER_OK || row.code == VELLOR_LINKER_ERROR_NO_ASSEMBLY)
            << row.name;
    }
    EXPECT_EQ(descriptions, std::vector<std::string>{"0<x/>"});
}

TEST(Linker, ServesTheEnginesOfItsList)
{
    std::map<std::uint32_t, std::uint32_t> engines;
    for (const VellorLinkerEngineDesc* engine = vellorLinkerGetEnginesList(); engine->engineId != 0; ++engine)
        engines[engine->engineId] = engine->linkerCompatibility;
    EXPECT_EQ(engines, (std::map<std::uint32_t, std::uint32_t>{{7, 1}, {11, 1}, {12, 1}, {19, 1}}));
    for (const std::uint32_t id : {0u, 7u, 19u, 20u}) {
        VellorLinkerContext* context = nullptr;
        EXPECT_EQ(vellorLinkerContextInit(&context, VELLOR_LINKER_API_VERSION, id),
                  engines.count(id) ? VELLOR_LINKER_OK : VELLOR_LINKER_ERROR_ENGINE_VERSION);
        vellorLinkerContextRelease(context);
    }
    VellorLinkerContext* context = nullptr;
    EXPECT_EQ(vellorLinkerContextInit(&context, 0x20000, 19), VELLOR_LINKER_ERROR_API_VERSION);
}

} // namespace
