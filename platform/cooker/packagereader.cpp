#include "platform/cooker/packagereader.h"

#include "platform/cooker/element.h"
#include "platform/cooker/literals.h"
#include "platform/program/types.h"

#include <algorithm>

namespace vellor::cooker {

namespace {

using program::ValueType;

const std::vector<std::string> kWidgets = {"slider",   "angle", "togglebutton",
                                           "checkbox", "color", "combobox"};

struct ReservedInput
{
    const char* identifier;
    ValueType type;
};

const ReservedInput kReservedInputs[] = {
    {"$time", ValueType::Float},      {"$randomseed", ValueType::Int},   {"$normalformat", ValueType::Int},
    {"$outputsize", ValueType::Int2}, {"$pixelsize", ValueType::Float2},
};

class Reader
{
public:
    explicit Reader(const Document& document) : m_document(document) {}

    void readRoot(PackageSource& package)
    {
        Element element(m_document, m_document.root());
        const SourceText version = element.required("formatversion");
        if (version && version.text != "1")
            element.error(version.place,
                          "format version '" + version.text + "' is not supported; expected '1'");
        package.description = element.attribute("description");
        element.children("include", [&](pugi::xml_node node) { readInclude(node, package); });
        element.children("function",
                         [&](pugi::xml_node node) { readFunction(node, package.functions.emplace_back()); });
        element.children("graph",
                         [&](pugi::xml_node node) { readGraph(node, package.graphs.emplace_back()); });
        if (package.graphs.empty() && package.functions.empty())
            element.error(element.place(), "a package needs at least one <graph> or <function>");
    }

private:
    void readInclude(pugi::xml_node node, PackageSource& package)
    {
        Element element(m_document, node);
        IncludeSource include{element.required("as"), element.required("url")};
        requireName(element, include.as);
        package.includes.push_back(std::move(include));
    }

    void readFunction(pugi::xml_node node, FunctionSource& function)
    {
        Element element(m_document, node);
        function.id = element.required("id");
        requireName(element, function.id);
        const SourceText arguments = element.attribute("arguments");
        for (const std::string& name : arguments ? splitList(arguments.text) : std::vector<std::string>()) {
            function.arguments.push_back({name, arguments.place, true});
            if (!isName(name))
                element.error(arguments.place,
                              "'" + name + "' is no name; expected names separated by commas");
        }
        function.expression = readExpression(element);
    }

    /// The attribute 'expr' or the text of the element.
    SourceText readExpression(Element& element)
    {
        const SourceText attribute = element.attribute("expr"), content = element.content();
        if (attribute && content)
            element.error(content.place, "the expression stands in 'expr' already");
        if (!attribute && !content)
            element.error(element.place(), element.tag() + " needs the attribute 'expr'");
        return attribute ? attribute : content;
    }

    void readGraph(pugi::xml_node node, GraphSource& graph)
    {
        Element element(m_document, node);
        graph.place = element.place();
        graph.identifier = element.required("identifier");
        requireName(element, graph.identifier);
        graph.label = element.attribute("label");
        graph.description = element.attribute("description");
        graph.size = element.attribute("size");
        graph.exposed = element.flag("exposed", true);
        list(element, "groups", "group",
             [&](pugi::xml_node n) { readGroup(n, graph.groups.emplace_back()); });
        list(element, "inputs", "input",
             [&](pugi::xml_node n) { readInput(n, graph.inputs.emplace_back()); });
        element.children("nodes", [&](pugi::xml_node n) { readNodes(n, graph); });
        list(element, "outputs", "output",
             [&](pugi::xml_node n) { readOutput(n, graph.outputs.emplace_back()); });
        list(element, "presets", "preset",
             [&](pugi::xml_node n) { readPreset(n, graph.presets.emplace_back()); });
    }

    template<typename Read>
    void list(Element& parent, const char* listName, const char* itemName, const Read& read)
    {
        parent.children(listName,
                        [&](pugi::xml_node node) { Element(m_document, node).children(itemName, read); });
    }

    void readGroup(pugi::xml_node node, GroupSource& group)
    {
        Element element(m_document, node);
        group.identifier = element.required("identifier");
        group.order = readOrder(element);
        group.description = element.attribute("description");
        group.defaultState = element.oneOf("defaultstate", {"folded", "unfolded"});
    }

    SourceText readOrder(Element& element)
    {
        SourceText order = element.attribute("order");
        if (order && !parseInt(order.text))
            element.error(order.place, "expected a whole number");
        return order;
    }

    void readInput(pugi::xml_node node, InputSource& input)
    {
        Element element(m_document, node);
        readInputType(element, input);
        readDefault(element, input);
        input.label = element.attribute("label");
        input.description = element.attribute("description");
        input.group = element.attribute("group");
        input.order = readOrder(element);
        input.visibleIf = element.attribute("visibleif");
        input.userTag = element.attribute("usertag");
        input.widget = element.oneOf("widget", kWidgets);
        if (input.type.isBool && !input.widget)
            input.widget = {"togglebutton", element.place(), true};
        readRange(element, input);
        element.children("item", [&](pugi::xml_node n) { readItem(n, input); });
        checkWidget(element, input);
    }

    void readInputType(Element& element, InputSource& input)
    {
        input.identifier = element.required("identifier");
        const SourceText type = element.attribute("type");
        const auto parsed = parseInputType(type.text);
        if (type && !parsed)
            element.error(type.place,
                          "unknown type '" + type.text + "'; expected " + quotedList(inputTypeNames()));
        if (parsed)
            input.type = *parsed;
        if (input.identifier.text.substr(0, 1) != "$") {
            if (!type)
                element.error(element.place(), "<input> needs the attribute 'type'");
            return requireName(element, input.identifier);
        }
        std::vector<std::string> names;
        for (const ReservedInput& reserved : kReservedInputs) {
            names.push_back(reserved.identifier);
            if (input.identifier.text != reserved.identifier)
                continue;
            if (parsed && parsed->type != reserved.type)
                element.error(type.place, std::string(reserved.identifier) + " is of type '" +
                                              typeName(reserved.type) + "'");
            input.type = {reserved.type};
            return;
        }
        element.error(input.identifier.place, "unknown reserved input; expected " + quotedList(names));
    }

    void readDefault(Element& element, InputSource& input)
    {
        const SourceText value = element.attribute("default");
        const ValueType type = input.type.type;
        if (type == ValueType::String) {
            constexpr std::size_t kLongestText = 1u << 20;
            if (value.text.size() > kLongestText)
                element.error(value.place, "this text is too long");
            input.defaultText = value.text;
        } else if (type == ValueType::Image) {
            if (value)
                element.error(value.place, "an image input has no default");
        } else if (value) {
            const auto words = parseWords(type, trimmed(value.text));
            if (!words)
                element.error(value.place,
                              "'" + value.text + "' does not fit; expected " + expectedWords(type));
            input.defaultValue = words.value_or(program::Words{});
        } else if (input.identifier.text == "$outputsize") {
            input.defaultValue = {9, 9};
        }
    }

    void readRange(Element& element, InputSource& input)
    {
        input.minimum = readNumbers(element, "min", input);
        input.maximum = readNumbers(element, "max", input);
        input.clamp = element.oneOf("clamp", {"on", "off"});
        input.unit = element.oneOf("unit", {"turns", "degrees", "radians"});
        for (int i = 0; i < 4; ++i)
            input.labels[i] = element.attribute(("label" + std::to_string(i)).c_str());
    }

    SourceText readNumbers(Element& element, const char* name, const InputSource& input)
    {
        SourceText text = element.attribute(name);
        if (!text)
            return text;
        const std::vector<std::string> parts = splitList(text.text);
        const std::size_t most = std::max(program::componentCount(input.type.type), 1);
        const bool whole = !program::isFloat(input.type.type);
        const bool good =
            parts.size() <= most && std::all_of(parts.begin(), parts.end(), [&](const std::string& part) {
                return whole ? parseInt(part).has_value() : parseFloat(part).has_value();
            });
        if (!good)
            element.error(text.place, "expected " + expectedWords(input.type.type) + ", or fewer");
        return text;
    }

    void readItem(pugi::xml_node node, InputSource& input)
    {
        Element element(m_document, node);
        const SourceText value = element.required("value"), text = element.required("text");
        const auto number = parseInt(trimmed(value.text));
        if (value && !number)
            element.error(value.place, "expected a whole number");
        input.items.push_back({number.value_or(0), text.text});
    }

    void checkWidget(Element& element, const InputSource& input)
    {
        const std::string& widget = input.widget.text;
        const ValueType type = input.type.type;
        if (!input.widget)
            return;
        const bool single = type == ValueType::Float || type == ValueType::Int;
        const int components = program::componentCount(type);
        const bool fits = widget == "slider"     ? components > 0
                          : widget == "color"    ? components >= 3
                          : widget == "combobox" ? type == ValueType::Int
                                                 : single;
        if (!fits)
            element.error(input.widget.place,
                          "the widget '" + widget + "' does not fit the type '" + typeName(type) + "'");
        if (widget == "combobox" && input.items.empty())
            element.error(element.place(), "a combobox needs at least one <item>");
    }

    void readNodes(pugi::xml_node node, GraphSource& graph)
    {
        Element element(m_document, node);
        element.children("node", [&](pugi::xml_node n) { readNode(n, graph.nodes.emplace_back(), false); });
        element.children("graphinstance",
                         [&](pugi::xml_node n) { readNode(n, graph.nodes.emplace_back(), true); });
        element.children("value", [&](pugi::xml_node n) { readValue(n, graph.values.emplace_back()); });
    }

    void readNode(pugi::xml_node xml, NodeSource& node, bool isInstance)
    {
        Element element(m_document, xml);
        node.place = element.place();
        node.id = element.required("id");
        requireName(element, node.id);
        node.size = element.attribute("size");
        node.seed = element.attribute("seed");
        if (isInstance) {
            node.graph = element.required("graph");
            node.graph.given = true;
        } else {
            node.type = element.required("type");
            node.channels = element.oneOf("channels", {"grey", "colour"});
            node.depth = element.oneOf("depth", {"u8", "u16", "f16", "f32"});
        }
        element.children("param",
                         [&](pugi::xml_node n) { readParameter(n, node.parameters.emplace_back()); });
        element.children("in", [&](pugi::xml_node n) { readLink(n, node.links.emplace_back()); });
    }

    void readParameter(pugi::xml_node node, ParameterSource& parameter)
    {
        Element element(m_document, node);
        parameter.place = element.place();
        parameter.name = element.required("name");
        parameter.value = element.attribute("value");
        parameter.expression = element.attribute("expr");
        parameter.input = element.attribute("input");
        parameter.file = element.attribute("file");
        const SourceText content = element.content();
        if (content && !parameter.expression)
            parameter.expression = content;
        else if (content)
            element.error(content.place, "the expression stands in 'expr' already");
        element.children("key", [&](pugi::xml_node n) { readKey(n, parameter); });
        element.children("stop", [&](pugi::xml_node n) { readStop(n, parameter); });
        const int ways = parameter.value.given + parameter.expression.given + parameter.input.given +
                         parameter.file.given + !parameter.keys.empty() + !parameter.stops.empty();
        if (ways != 1)
            element.error(element.place(),
                          "a <param> needs exactly one of 'value', 'expr', 'input', 'file', <key> or <stop>");
    }

    void readKey(pugi::xml_node node, ParameterSource& parameter)
    {
        Element element(m_document, node);
        parameter.keys.push_back({readNumber(element, "x"), readNumber(element, "y")});
    }

    void readStop(pugi::xml_node node, ParameterSource& parameter)
    {
        Element element(m_document, node);
        GradientStop stop;
        stop.at = readNumber(element, "at");
        const SourceText color = element.required("color");
        const auto parsed = parseColor(color.text);
        if (color && !parsed)
            element.error(color.place,
                          "'" + color.text + "' is no colour; expected #rrggbb, #rrggbbaa or 3 or 4 numbers");
        stop.color = parsed.value_or(stop.color);
        parameter.stops.push_back(stop);
    }

    float readNumber(Element& element, const char* name)
    {
        const SourceText text = element.required(name);
        const auto number = parseFloat(trimmed(text.text));
        if (text && !number)
            element.error(text.place, "'" + text.text + "' does not fit; expected a number");
        return number.value_or(0.0f);
    }

    void readLink(pugi::xml_node node, LinkSource& link)
    {
        Element element(m_document, node);
        link = {element.required("name"), element.required("from")};
    }

    void readValue(pugi::xml_node node, ValueSource& value)
    {
        Element element(m_document, node);
        value.id = element.required("id");
        requireName(element, value.id);
        value.expression = readExpression(element);
    }

    void readOutput(pugi::xml_node node, OutputSource& output)
    {
        Element element(m_document, node);
        output.place = element.place();
        output.identifier = element.required("identifier");
        requireName(element, output.identifier);
        output.from = element.attribute("from");
        output.value = element.attribute("value");
        output.type = element.attribute("type");
        output.format = element.attribute("format");
        if (output.format && !parseFormat(output.format.text))
            element.error(output.format.place, "'" + output.format.text + "' does not fit; expected " +
                                                   quotedList(formatNames()) + ", each also with '-srgb'");
        output.mipmaps = element.attribute("mipmaps");
        output.label = element.attribute("label");
        output.usage = element.attribute("usage");
        output.description = element.attribute("description");
        output.group = element.attribute("group");
        output.visibleIf = element.attribute("visibleif");
        output.userTag = element.attribute("usertag");
        if (output.from.given == output.value.given)
            element.error(element.place(), "an <output> needs exactly one of 'from' and 'value'");
        if (output.from && output.type && output.type.text != "image")
            element.error(output.type.place, "an output with 'from' is of type 'image'");
        if (output.value && output.format)
            element.error(output.format.place, "a numeric output has no format");
    }

    void readPreset(pugi::xml_node node, PresetSource& preset)
    {
        Element element(m_document, node);
        preset.label = element.required("label");
        preset.description = element.attribute("description");
        element.children("set", [&](pugi::xml_node n) {
            Element set(m_document, n);
            preset.sets.push_back({set.required("input"), set.attribute("value")});
            if (!preset.sets.back().value)
                set.error(set.place(), "<set> needs the attribute 'value'");
        });
    }

    void requireName(Element& element, const SourceText& name)
    {
        if (name && !name.text.empty() && !isName(name.text))
            element.error(name.place,
                          "'" + name.text + "' is no name; a name is made of letters, digits and '_'");
    }

    const Document& m_document;
};

} // namespace

std::unique_ptr<PackageSource> readPackage(const Sources& sources, std::int32_t file,
                                           Diagnostics& diagnostics)
{
    const Document document(sources, file, diagnostics);
    const pugi::xml_node root = document.root();
    if (!root)
        return nullptr;
    if (std::string(root.name()) != "package") {
        diagnostics.error(document.placeOf(root.name()),
                          std::string("the root element is <") + root.name() + ">; expected <package>");
        return nullptr;
    }
    auto package = std::make_unique<PackageSource>();
    package->file = file;
    Reader(document).readRoot(*package);
    return package;
}

} // namespace vellor::cooker
