#include "platform/cooker/descriptionwriter.h"

#include "platform/cooker/literals.h"
#include "platform/cooker/reachability.h"
#include "platform/program/types.h"

#include <pugixml.hpp>

#include <sstream>

namespace vellor::cooker {

using program::ValueType;
using pugi::xml_node;

namespace {

void put(xml_node node, const char* name, const std::string& value)
{
    node.append_attribute(name).set_value(value.c_str());
}

void put(xml_node node, const char* name, const SourceText& value)
{
    if (value)
        put(node, name, value.text);
}

template<typename Number> void putNumber(xml_node node, const char* name, Number value)
{
    put(node, name, std::to_string(value));
}

class GraphWriter
{
public:
    GraphWriter(const program::Program& program, const FlatPackage::Graph& graph)
        : m_program(program), m_graph(graph)
    {
    }

    void write(xml_node graphs)
    {
        const GraphSource& source = *m_graph.source;
        xml_node node = graphs.append_child("graph");
        put(node, "pkgurl", m_graph.url);
        put(node, "label", source.label ? source.label.text : source.identifier.text);
        put(node, "description", source.description);
        xml_node inputs = node.append_child("inputs");
        for (const auto& [input, index] : m_graph.inputs)
            writeInput(inputs.append_child("input"), *input, m_program.inputs[index]);
        xml_node outputs = node.append_child("outputs");
        for (const auto& [output, index] : m_graph.outputs)
            writeOutput(outputs.append_child("output"), *output, m_program.outputs[index]);
        xml_node groups = node.append_child("guigroups");
        for (const GroupSource& group : source.groups)
            writeGroup(groups.append_child("guigroup"), group);
        writePresets(node);
    }

private:
    void writeInput(xml_node node, const InputSource& source, const program::Input& input)
    {
        putNumber(node, "uid", input.uid);
        put(node, "identifier", input.identifier);
        putNumber(node, "type", static_cast<std::uint32_t>(input.type));
        if (input.type == ValueType::String)
            put(node, "default", source.defaultText);
        else if (input.type != ValueType::Image)
            put(node, "default", printWords(input.type, input.defaultValue));
        put(node, "usertag", source.userTag);
        xml_node gui = node.append_child("inputgui");
        put(gui, "label", source.label);
        put(gui, "widget", source.widget);
        put(gui, "description", source.description);
        put(gui, "group", source.group);
        put(gui, "order", source.order);
        put(gui, "visibleif", source.visibleIf);
        writeWidget(gui, source);
    }

    void writeWidget(xml_node gui, const InputSource& source)
    {
        const std::string& widget = source.widget.text;
        if (widget == "togglebutton" || widget == "checkbox") {
            writeLabels(gui.append_child("guibutton"), source, 2);
        } else if (widget == "combobox") {
            xml_node box = gui.append_child("guicombobox");
            for (const ComboItem& item : source.items) {
                xml_node entry = box.append_child("guicomboboxitem");
                putNumber(entry, "value", item.value);
                put(entry, "text", item.text);
            }
        } else if (widget == "angle") {
            xml_node angle = gui.append_child("guiangle");
            writeRange(angle, source);
            put(angle, "unit", source.unit);
        } else if (widget == "slider" || source.minimum || source.maximum) {
            xml_node slider = gui.append_child("guislider");
            writeRange(slider, source);
            writeLabels(slider, source, 4);
        }
    }

    static void writeRange(xml_node node, const InputSource& source)
    {
        put(node, "min", source.minimum);
        put(node, "max", source.maximum);
        put(node, "clamp", source.clamp);
    }

    static void writeLabels(xml_node node, const InputSource& source, int count)
    {
        for (int i = 0; i < count; ++i)
            put(node, ("label" + std::to_string(i)).c_str(), source.labels[i]);
    }

    void writeOutput(xml_node node, const OutputSource& source, const program::Output& output)
    {
        putNumber(node, "uid", output.uid);
        put(node, "identifier", output.identifier);
        putNumber(node, "type", static_cast<std::uint32_t>(output.type));
        put(node, "usertag", source.userTag);
        xml_node gui = node.append_child("outputgui");
        put(gui, "label", source.label ? source.label.text : source.identifier.text);
        put(gui, "description", source.description);
        put(gui, "group", source.group);
        put(gui, "visibleif", source.visibleIf);
        if (source.type.text == "bool")
            put(gui, "typegui", "boolean");
        if (source.usage)
            writeUsage(node, source.usage.text);
    }

    /// "metallic" stands for all components; "rgb:basecolor,a:opacity" tells them apart.
    static void writeUsage(xml_node node, const std::string& usage)
    {
        std::string all;
        xml_node channels = node.append_child("channels");
        for (const std::string& part : splitList(usage)) {
            const std::size_t colon = part.find(':');
            const std::string name = trimmed(part.substr(colon == std::string::npos ? 0 : colon + 1));
            xml_node channel = channels.append_child("channel");
            put(channel, "components", colon == std::string::npos ? "all" : trimmed(part.substr(0, colon)));
            put(channel, "names", name);
            all += (all.empty() ? "" : ",") + name;
        }
        put(node, "usage", all);
    }

    static void writeGroup(xml_node node, const GroupSource& group)
    {
        put(node, "identifier", group.identifier);
        put(node, "order", group.order);
        put(node, "description", group.description);
        put(node, "defaultstate", group.defaultState);
    }

    void writePresets(xml_node graph)
    {
        const std::vector<PresetSource>& presets = m_graph.source->presets;
        if (presets.empty())
            return;
        xml_node list = graph.append_child("vlrpresets");
        put(list, "formatversion", "1.1");
        putNumber(list, "count", presets.size());
        for (const PresetSource& preset : presets) {
            xml_node node = list.append_child("vlrpreset");
            put(node, "pkgurl", m_graph.url);
            put(node, "label", preset.label);
            put(node, "description", preset.description);
            for (const PresetSource::Set& set : preset.sets)
                writePresetInput(node, set);
        }
    }

    void writePresetInput(xml_node preset, const PresetSource::Set& set)
    {
        for (const auto& [source, index] : m_graph.inputs) {
            if (source->identifier.text != set.input.text)
                continue;
            const program::Input& input = m_program.inputs[index];
            xml_node node = preset.append_child("presetinput");
            putNumber(node, "uid", input.uid);
            put(node, "identifier", input.identifier);
            putNumber(node, "type", static_cast<std::uint32_t>(input.type));
            const auto words = parseWords(input.type, trimmed(set.value.text));
            put(node, input.type == ValueType::Image ? "filepath" : "value",
                program::isNumeric(input.type) && words ? printWords(input.type, *words) : set.value.text);
        }
    }

    const program::Program& m_program;
    const FlatPackage::Graph& m_graph;
};

/// The engine's view: indexes, uids, and which outputs an input alters.
class LinkWriter
{
public:
    explicit LinkWriter(xml_node root)
        : m_outputs(root.append_child("outputs")), m_inputs(root.append_child("inputs"))
    {
    }

    void write(const program::Program& program)
    {
        for (std::size_t i = 0; i < program.outputs.size(); ++i) {
            xml_node output = m_outputs.append_child("output");
            putNumber(output, "index", m_firstOutput + i);
            putNumber(output, "uid", program.outputs[i].uid);
        }
        const std::vector<std::vector<std::int32_t>> altered = alteredOutputs(program);
        for (std::size_t i = 0; i < program.inputs.size(); ++i) {
            std::string list;
            for (const std::int32_t output : altered[i])
                list += (list.empty() ? "" : ",") + std::to_string(m_firstOutput + output);
            xml_node input = m_inputs.append_child("input");
            putNumber(input, "index", m_firstInput + i);
            putNumber(input, "uid", program.inputs[i].uid);
            put(input, "alteroutputs", list);
        }
        m_firstInput += program.inputs.size();
        m_firstOutput += program.outputs.size();
    }

private:
    xml_node m_outputs, m_inputs;
    std::size_t m_firstInput = 0, m_firstOutput = 0;
};

} // namespace

std::string writeDescription(const std::vector<FlatPackage>& packages)
{
    pugi::xml_document document;
    xml_node declaration = document.append_child(pugi::node_declaration);
    put(declaration, "version", "1.0");
    put(declaration, "encoding", "UTF-8");
    xml_node root = document.append_child("vlrdescription");
    put(root, "formatversion", "1.0");
    xml_node graphs = root.append_child("graphs");
    LinkWriter links(root);
    for (const FlatPackage& package : packages) {
        for (const FlatPackage::Graph& graph : package.graphs)
            GraphWriter(package.program, graph).write(graphs);
        links.write(package.program);
    }
    std::ostringstream text;
    document.save(text, " ", pugi::format_indent, pugi::encoding_utf8);
    return text.str();
}

} // namespace vellor::cooker
