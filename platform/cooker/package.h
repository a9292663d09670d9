#pragma once

// An authoring file as it was read: names not yet looked up, expressions not yet parsed. Whatever an author
// may get wrong keeps its place.

#include "platform/cooker/diagnostics.h"
#include "platform/program/program.h"

#include <array>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace vellor::cooker {

/// Types as authors write them. Bool is an integer of the engine's.
struct InputType
{
    program::ValueType type = program::ValueType::Float;
    bool isBool = false;
};

struct GroupSource
{
    SourceText identifier, order, description, defaultState;
};

struct ComboItem
{
    std::int32_t value = 0;
    std::string text;
};

struct InputSource
{
    SourceText identifier;
    InputType type;
    program::Words defaultValue{};
    std::string defaultText; // type String, UTF-8
    SourceText label, description, group, widget, order, visibleIf, userTag;
    SourceText minimum, maximum, clamp, unit;
    std::array<SourceText, 4> labels; // of slider components; of the two states of a toggle
    std::vector<ComboItem> items;
};

struct CurveKey
{
    float x = 0.0f, y = 0.0f;
};

struct GradientStop
{
    float at = 0.0f;
    std::array<float, 4> color{};
};

/// A parameter of a node or an input of a graph instance. Exactly one way to give its value is used.
struct ParameterSource
{
    SourceText name;
    SourceText value, expression, input, file;
    std::vector<CurveKey> keys;
    std::vector<GradientStop> stops;
    Place place;
};

struct LinkSource
{
    SourceText name, from;
};

/// A node of a kind, or an instance of another graph.
struct NodeSource
{
    SourceText id;
    SourceText type;  // of a node
    SourceText graph; // of an instance
    SourceText size, seed, channels, depth;
    std::vector<ParameterSource> parameters;
    std::vector<LinkSource> links;
    Place place;

    bool isInstance() const { return graph.given; }
};

struct ValueSource
{
    SourceText id, expression;
};

struct OutputSource
{
    SourceText identifier;
    SourceText from;        // image outputs
    SourceText value, type; // numeric outputs
    SourceText label, usage, format, description, group, visibleIf, userTag, mipmaps;
    Place place;
};

struct PresetSource
{
    struct Set
    {
        SourceText input, value;
    };
    SourceText label, description;
    std::vector<Set> sets;
};

struct GraphSource
{
    SourceText identifier, label, description, size;
    bool exposed = true;
    std::vector<GroupSource> groups;
    std::vector<InputSource> inputs;
    std::vector<NodeSource> nodes;
    std::vector<ValueSource> values;
    std::vector<OutputSource> outputs;
    std::vector<PresetSource> presets;
    Place place;
};

/// An expression with names for what it is called with. Arguments have the types of what is handed over.
struct FunctionSource
{
    SourceText id;
    std::vector<SourceText> arguments;
    SourceText expression;
};

struct IncludeSource
{
    SourceText as, url;
};

struct PackageSource
{
    std::int32_t file = -1;
    SourceText description;
    std::vector<IncludeSource> includes;
    std::vector<FunctionSource> functions;
    std::vector<GraphSource> graphs;
    std::map<std::string, const PackageSource*> included; // by the name of the include; filled by the loader
};

} // namespace vellor::cooker
