// Every real node kind runs in the engine, fused and alone, on one thread and on several, to the same bytes.

#include "platform/engines/cpu/tests/programbuilder.h"
#include "platform/engines/cpu/tests/testhost.h"

#include <gtest/gtest.h>

namespace vellor::cpu::testing {
namespace {

using nodes::OperandChannels;
using nodes::ResultChannels;

constexpr std::uint8_t kColourFloat = VELLOR_FORMAT_RGBA | VELLOR_FORMAT_32FLOAT;

/// A per-pixel program that gives x in each channel.
int pixelProgram(ProgramBuilder& build, int channels)
{
    program::ValueProgram value;
    value.perPixel = true;
    value.registerCount = 4;
    value.type = channels == 1 ? program::ValueType::Float : program::ValueType::Float4;
    for (std::uint16_t c = 0; c < 4; ++c)
        value.instructions.push_back({program::Op::PixelX, c, 0, 0, 0});
    return build.add(value);
}

/// The kind with all its operands on noise, between two inversions that the engine may fuse it with.
ProgramBuilder around(const nodes::NodeDeclaration& kind, int channels, int log2Width = 7, int log2Height = 5)
{
    ProgramBuilder build;
    const int size = build.sizeValue(log2Width, log2Height);
    const int image = build.input(program::ValueType::Image);
    const int grey = build.node("invert", size, {build.node("perlin", size)});
    int colour = build.node("uniform", size);
    build.program.nodes[colour].channels = 4;
    build.parameter(colour, "colour", program::ParameterSource::Constant,
                    {bitsOf(0.2f), bitsOf(0.4f), bitsOf(0.9f), bitsOf(0.5f)}, program::kNone);
    colour = build.node("invert", size, {colour});
    std::vector<std::int32_t> operands;
    for (const nodes::OperandDeclaration& operand : kind.operands) {
        const bool wantsColour = operand.channels == OperandChannels::Colour ||
                                 (operand.channels == OperandChannels::Result && channels == 4);
        operands.push_back(wantsColour ? colour : grey);
    }
    const int node = build.node(kind.name, size, operands);
    build.program.nodes[node].channels = static_cast<std::uint8_t>(channels);
    for (const nodes::ParameterDeclaration& parameter : kind.parameters) {
        if (parameter.type == nodes::ParameterType::PixelProgram)
            build.parameter(node, parameter.name, program::ParameterSource::Program, {},
                            pixelProgram(build, channels));
        if (parameter.type == nodes::ParameterType::ImageInput)
            build.parameter(node, parameter.name, program::ParameterSource::Input, {}, image);
    }
    build.output(build.node("invert", size, {node}), kColourFloat);
    return build;
}

std::vector<std::uint8_t> picture(const ProgramBuilder& build, std::uint32_t threads, std::uint32_t rows,
                                  std::uint32_t flags)
{
    Resources resources;
    resources.threads = threads;
    resources.chunkRows = rows;
    resources.flags = flags;
    TestHost host(build.program, resources, [](std::uint32_t id) { return nodes::findNode(id); });
    std::vector<std::uint8_t> pixels(4 * 16 * 16);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<std::uint8_t>(i * 37);
    const VellorTexture texture{pixels.data(), 16, 16, VELLOR_FORMAT_RGBA, VELLOR_ORDER_RGBA, {}};
    EXPECT_EQ(vellorHandlePushSetInput(host.handle(), 0, 0, VELLOR_TYPE_IMAGE, &texture, nullptr), 0u);
    EXPECT_EQ(host.compute({200}), 0u);
    return host.pictures[0];
}

TEST(Kinds, GiveTheSameBytesHoweverTheWorkIsCut)
{
    for (const nodes::NodeDeclaration* kind : nodes::allNodes()) {
        for (const int channels : {1, 4}) {
            if ((kind->result == ResultChannels::Grey && channels == 4) ||
                (kind->result == ResultChannels::Colour && channels == 1))
                continue;
            const ProgramBuilder build = around(*kind, channels);
            const auto reference = picture(build, 1, 0, VELLOR_CPU_NO_FUSION);
            ASSERT_EQ(reference.size(), 128u * 32 * 16) << kind->name;
            for (const std::uint32_t rows : {1u, 7u})
                EXPECT_EQ(picture(build, 3, rows, 0), reference)
                    << kind->name << ", " << channels << " channels, " << rows;
        }
    }
}

TEST(Kinds, ServePicturesOfEveryShape)
{
    for (const char* name : {"perlin", "gaussianblur", "warp", "normal", "distance", "transform", "levels"}) {
        for (const auto& [log2Width, log2Height] : {std::pair(14, 0), {0, 14}, {0, 0}, {14, 4}}) {
            const nodes::NodeDeclaration& kind = *nodes::findNode(std::string_view(name));
            const ProgramBuilder build =
                around(kind, kind.result == ResultChannels::Colour ? 4 : 1, log2Width, log2Height);
            const auto reference = picture(build, 1, 0, VELLOR_CPU_NO_FUSION);
            EXPECT_EQ(reference.size(), std::size_t(16) << (log2Width + log2Height)) << name;
            EXPECT_EQ(picture(build, 3, 0, 0), reference) << name << ", " << log2Width << ", " << log2Height;
        }
    }
}

} // namespace
} // namespace vellor::cpu::testing
