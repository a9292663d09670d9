#pragma once

#include "platform/cooker/cookoptions.h"

namespace vellor::cooker {

/// A few node kinds without kernels, one of each shape that the cooker has to deal with.
inline const NodeTable& fakeTable()
{
    using namespace nodes;
    using P = ParameterType;
    static const NodeDeclaration kinds[] = {
        {"noise",
         "",
         "",
         "",
         ResultChannels::Grey,
         Chance::Seeded,
         {},
         {{"scale", P::Float, {4}, 0, 10, ""},
          {"offset", P::Float2, {}, 0, 1, ""},
          {"octaves", P::Int, {3}, 1, 8, ""},
          {"ridged", P::Bool, {}, 0, 1, ""},
          {"kind", P::Choice, {}, 0, 1, "", {"value", "gradient"}}}},
        {"uniform",
         "",
         "",
         "",
         ResultChannels::Chosen,
         Chance::None,
         {},
         {{"colour", P::Float4, {0, 0, 0, 1}, 0, 1, ""}}},
        {"blend",
         "",
         "",
         "",
         ResultChannels::FromOperands,
         Chance::None,
         {{"source", OperandChannels::Result, true, ""},
          {"background", OperandChannels::Result, true, ""},
          {"mask", OperandChannels::Grey, false, ""}},
         {{"opacity", P::Float, {1}, 0, 1, ""}}},
        {"normal",
         "",
         "",
         "",
         ResultChannels::Colour,
         Chance::None,
         {{"height", OperandChannels::Grey, true, ""}},
         {}},
        {"curve",
         "",
         "",
         "",
         ResultChannels::FromOperands,
         Chance::None,
         {{"input", OperandChannels::Result, true, ""}},
         {{"curve", P::Curve, {}, 0, 1, ""}}},
        {"gradientmap",
         "",
         "",
         "",
         ResultChannels::Colour,
         Chance::None,
         {{"input", OperandChannels::Grey, true, ""}},
         {{"gradient", P::Gradient, {}, 0, 1, ""}}},
        {"text", "", "", "", ResultChannels::Grey, Chance::None, {}, {{"text", P::Text, {}, 0, 1, ""}}},
        {"bitmap",
         "",
         "",
         "",
         ResultChannels::Chosen,
         Chance::None,
         {},
         {{"picture", P::Picture, {}, 0, 1, ""}}},
        {"imageinput",
         "",
         "",
         "",
         ResultChannels::Chosen,
         Chance::None,
         {},
         {{"image", P::ImageInput, {}, 0, 1, ""}}},
        {"pixelprogram",
         "",
         "",
         "",
         ResultChannels::Chosen,
         Chance::None,
         {{"first", OperandChannels::Result, false, ""}, {"second", OperandChannels::Grey, false, ""}},
         {{"program", P::PixelProgram, {}, 0, 1, ""}}},
        {"greyconversion",
         "",
         "",
         "",
         ResultChannels::Grey,
         Chance::None,
         {{"input", OperandChannels::Colour, true, ""}},
         {}},
        {"colourconversion",
         "",
         "",
         "",
         ResultChannels::Colour,
         Chance::None,
         {{"input", OperandChannels::Grey, true, ""}},
         {}},
    };
    static const NodeTable table = [] {
        NodeTable list;
        for (const NodeDeclaration& kind : kinds)
            list.push_back(&kind);
        return list;
    }();
    return table;
}

} // namespace vellor::cooker
