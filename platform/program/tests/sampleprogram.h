#pragma once

#include "platform/program/program.h"
#include "platform/program/types.h"

namespace vellor::program {

/// A small program that uses every kind of record.
inline Program sampleProgram()
{
    Program program;
    program.inputs.push_back({11, ValueType::Float2, {floatBits(0.5f), floatBits(2.0f)}, U"", "scale"});
    program.inputs.push_back({12, ValueType::String, {}, U"Häuser", "caption"});
    program.inputs.push_back({13, ValueType::Image, {}, U"", "photo"});

    ValueProgram scale;
    scale.instructions = {{Op::Input, 0, 0, 1, 0}, {Op::Constant, 1, 0, 0, 0}, {Op::FAdd, 2, 0, 1, 0}};
    scale.constants = {floatBits(1.0f)};
    scale.registerCount = 3;
    scale.result = 2;
    ValueProgram size;
    size.instructions = {{Op::Constant, 0, 0, 0, 0}, {Op::Copy, 1, 0, 0, 0}};
    size.constants = {9};
    size.registerCount = 2;
    size.type = ValueType::Int2;
    ValueProgram pixel;
    pixel.instructions = {{Op::PixelX, 0, 0, 0, 0}, {Op::PixelY, 1, 0, 0, 0}, {Op::SampleGrey, 2, 0, 1, 0}};
    pixel.registerCount = 3;
    pixel.result = 2;
    pixel.perPixel = true;
    program.values = {scale, size, pixel};
    program.blobs = {{1, 2, 3}, {}};

    Node noise;
    noise.kind = stableId("perlin");
    noise.size = 1;
    noise.parameters = {{1, ParameterSource::Program, {}, 0},
                        {2, ParameterSource::Constant, {1, 2, 3, 4}, kNone}};
    noise.name = "graph/noise";
    Node mapped;
    mapped.kind = stableId("pixelprogram");
    mapped.channels = 4;
    mapped.depth = Depth::U8;
    mapped.operands = {0, kNone};
    mapped.parameters = {{1, ParameterSource::Program, {}, 2},
                         {2, ParameterSource::Blob, {}, 0},
                         {3, ParameterSource::Input, {}, 2}};
    program.nodes = {noise, mapped};

    program.outputs.push_back({21, ValueType::Image, 1, kNone, 0x10, 1, 0, 0, "height"});
    program.outputs.push_back({22, ValueType::Float, kNone, 0, 0, 1, 0, 0, "area"});
    return program;
}

} // namespace vellor::program
