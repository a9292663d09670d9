// The bytes of binaries and assemblies: what goes in comes out, and damage of every kind is told.

#include "platform/program/assembly.h"
#include "platform/program/programreader.h"
#include "platform/program/programwriter.h"
#include "platform/program/tests/sampleprogram.h"

#include <gtest/gtest.h>

namespace vellor::program {

TEST(ProgramFile, KeepsEveryField)
{
    const Program program = sampleProgram();
    std::string error;
    const auto image = writeProgram(program);
    const auto read = readProgram(image, error);
    ASSERT_TRUE(read) << error;

    ASSERT_EQ(read->inputs.size(), 3u);
    EXPECT_EQ(read->inputs[0].uid, 11u);
    EXPECT_EQ(read->inputs[0].type, ValueType::Float2);
    EXPECT_EQ(read->inputs[0].defaultValue, program.inputs[0].defaultValue);
    EXPECT_EQ(read->inputs[1].defaultText, U"Häuser");
    EXPECT_EQ(read->inputs[2].identifier, "photo");
    ASSERT_EQ(read->values.size(), 3u);
    EXPECT_EQ(read->values[0].instructions[0].b, 1);
    EXPECT_EQ(read->values[1].type, ValueType::Int2);
    EXPECT_TRUE(read->values[2].perPixel);
    EXPECT_EQ(read->values[2].instructions[2].op, Op::SampleGrey);
    EXPECT_EQ(read->blobs, program.blobs);
    ASSERT_EQ(read->nodes.size(), 2u);
    EXPECT_EQ(read->nodes[0].kind, stableId("perlin"));
    EXPECT_EQ(read->nodes[0].size, 1);
    EXPECT_EQ(read->nodes[0].name, "graph/noise");
    EXPECT_EQ(read->nodes[0].parameters[1].words, (Words{1, 2, 3, 4}));
    EXPECT_EQ(read->nodes[1].operands, (std::vector<std::int32_t>{0, kNone}));
    EXPECT_EQ(read->nodes[1].depth, Depth::U8);
    EXPECT_EQ(read->nodes[1].channels, 4);
    ASSERT_EQ(read->outputs.size(), 2u);
    EXPECT_EQ(read->outputs[0].pixelFormat, 0x10);
    EXPECT_EQ(read->outputs[1].value, 0);

    EXPECT_EQ(writeProgram(*read), image);
}

TEST(ProgramFile, StartsAsDocumented)
{
    const auto image = writeProgram({});
    ASSERT_GE(image.size(), 32u);
    EXPECT_EQ(std::string(image.begin(), image.begin() + 8), "VLRBIN\r\n");
    EXPECT_EQ(image[8], 1);
    EXPECT_EQ(image[16] + 256u * image[17], image.size());
    EXPECT_EQ(image[24], 1);
}

TEST(ProgramFile, RefusesEveryTruncation)
{
    const auto image = writeProgram(sampleProgram());
    for (std::size_t size = 0; size < image.size(); ++size) {
        std::string error;
        EXPECT_FALSE(readProgram({image.data(), size}, error)) << size;
        EXPECT_FALSE(error.empty());
    }
    auto longer = image;
    longer.push_back(0);
    std::string error;
    EXPECT_FALSE(readProgram(longer, error));
}

TEST(ProgramFile, RefusesEveryFlippedBit)
{
    auto image = writeProgram(sampleProgram());
    for (std::size_t bit = 0; bit < image.size() * 8; ++bit) {
        image[bit / 8] ^= 1u << (bit % 8);
        std::string error;
        EXPECT_FALSE(readProgram(image, error)) << "bit " << bit;
        EXPECT_FALSE(error.empty());
        image[bit / 8] ^= 1u << (bit % 8);
    }
}

TEST(ProgramFile, TellsKindsAndVersionsApart)
{
    std::string error;
    auto image = writeProgram(sampleProgram());
    EXPECT_FALSE(readAssembly(image, error));
    EXPECT_EQ(error, "this is not an assembly");
    image[8] = 2;
    EXPECT_FALSE(readProgram(image, error));
    EXPECT_EQ(error, "version 2 is not supported, only version 1");
}

TEST(Assembly, CarriesSeveralPrograms)
{
    Program second = sampleProgram();
    second.outputs.pop_back();
    const auto bytes = writeAssembly({sampleProgram(), second});
    ASSERT_TRUE(isAssembly(bytes));
    std::string error;
    const auto read = readAssembly(bytes, error);
    ASSERT_TRUE(read) << error;
    ASSERT_EQ(read->size(), 2u);
    EXPECT_EQ((*read)[0].outputs.size(), 2u);
    EXPECT_EQ((*read)[1].outputs.size(), 1u);
}

TEST(Assembly, RefusesAProgramThatBreaksARule)
{
    Program broken = sampleProgram();
    broken.nodes[0].operands = {0};
    std::string error;
    EXPECT_FALSE(readAssembly(writeAssembly({sampleProgram(), broken}), error));
    EXPECT_EQ(error, "node 0: an operand is no earlier node");
}

} // namespace vellor::program
