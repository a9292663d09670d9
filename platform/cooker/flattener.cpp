#include "platform/cooker/flattener.h"

#include "platform/cooker/graphorder.h"
#include "platform/cooker/graphrules.h"
#include "platform/cooker/literals.h"
#include "platform/cooker/packagefunctions.h"
#include "platform/program/types.h"

#include <algorithm>

namespace vellor::cooker {

using program::kNone;
using program::ValueType;

namespace {

constexpr int kMaxNesting = 32;

/// uids are stable: they depend on the names of the graph and of the input or output alone.
std::uint32_t uidOf(const GraphSource& graph, const std::string& kind, const SourceText& identifier)
{
    return program::stableId((graph.identifier.text + "/" + kind + "/" + identifier.text).c_str());
}

class Flattener
{
public:
    Flattener(const Sources& sources, const PackageSource& package, const NodeTable& table,
              const CookOptions& options, Diagnostics& diagnostics)
        : m_sources(sources), m_package(package), m_options(options), m_diagnostics(diagnostics),
          m_nodes(sources, diagnostics, table, options, m_flat.program)
    {
    }

    FlatPackage run()
    {
        checkFunctions(m_package, m_sources, m_diagnostics);
        std::map<std::string, const GraphSource*> names;
        for (const GraphSource& graph : m_package.graphs) {
            if (!names.emplace(graph.identifier.text, &graph).second)
                m_diagnostics.error(graph.identifier.place,
                                    "the graph '" + graph.identifier.text + "' is there twice");
            checkGraph(graph, m_sources, m_diagnostics);
            addGraph(graph);
        }
        return std::move(m_flat);
    }

private:
    /// Graphs that aren't exposed are looked at as well, and leave nothing behind but nodes that nothing
    /// needs.
    void addGraph(const GraphSource& graph)
    {
        Scope scope(m_package, graph, m_options, m_open, nullptr, nullptr);
        FlatPackage::Graph flat;
        flat.source = &graph;
        flat.url = "pkg://" + graph.identifier.text;
        for (const InputSource& input : graph.inputs) {
            if (!scope.inputs.count(input.identifier.text))
                scope.inputs.emplace(input.identifier.text, bindExposed(graph, input, flat));
        }
        buildNodes(scope);
        checkValues(scope);
        for (const OutputSource& output : graph.outputs)
            addOutput(scope, output, flat);
        if (graph.exposed)
            m_flat.graphs.push_back(std::move(flat));
    }

    using Uids = std::map<std::uint32_t, std::string>;

    /// False when another name has the same uid. The same name twice is told elsewhere.
    static bool claim(Uids& uids, std::uint32_t uid, const GraphSource& graph, const SourceText& identifier)
    {
        const std::string name = graph.identifier.text + "/" + identifier.text;
        return uids.emplace(uid, name).first->second == name;
    }

    bool isFrozen(const std::string& identifier) const
    {
        return (identifier == "$outputsize" && !m_options.dynamicOutputSize) ||
               (identifier == "$randomseed" && !m_options.dynamicRandomSeed) ||
               (identifier == "$pixelsize" && !m_options.dynamicPixelSize);
    }

    InputBinding bindDefault(const InputSource& input) const
    {
        InputBinding binding;
        binding.type = input.type;
        binding.words = input.defaultValue;
        binding.text = input.defaultText;
        if (input.type.type == ValueType::Image)
            binding.kind = InputBinding::Kind::Nothing;
        return binding;
    }

    InputBinding bindExposed(const GraphSource& graph, const InputSource& source, FlatPackage::Graph& flat)
    {
        InputBinding binding = bindDefault(source);
        if (!graph.exposed || isFrozen(source.identifier.text))
            return binding;
        program::Input input;
        input.uid = uidOf(graph, "in", source.identifier);
        input.type = source.type.type;
        input.defaultValue = source.defaultValue;
        input.defaultText = toUtf32(source.defaultText);
        input.identifier = source.identifier.text;
        if (!claim(m_inputUids, input.uid, graph, source.identifier))
            m_diagnostics.error(source.identifier.place,
                                "the uid of this input is taken; choose another identifier");
        if (m_flat.program.inputs.size() >= program::kMaxInputs - 1) {
            m_diagnostics.error(source.identifier.place, "too many inputs");
            return binding;
        }
        binding.kind = InputBinding::Kind::Exposed;
        binding.index = static_cast<std::int32_t>(m_flat.program.inputs.size());
        flat.inputs.emplace_back(&source, binding.index);
        m_flat.program.inputs.push_back(std::move(input));
        return binding;
    }

    void buildNodes(Scope& scope)
    {
        for (const NodeSource& node : scope.graph.nodes)
            scope.pending.insert(node.id.text);
        for (const NodeSource* node : dependencyOrder(scope.graph, m_diagnostics)) {
            if (!mayWork(1, node->place))
                return;
            if (node->isInstance())
                buildInstance(scope, *node);
            else
                buildNode(scope, *node);
        }
    }

    void buildNode(Scope& scope, const NodeSource& node)
    {
        const std::int32_t index = m_nodes.compile(scope, node);
        if (index == kNone)
            return;
        scope.results[node.id.text] = {index, false};
        scope.pending.erase(node.id.text);
    }

    /// Bounds what small files may unfold to. Once it is used up, everything stops.
    bool mayWork(std::size_t amount, Place place)
    {
        constexpr std::size_t kMostWork = program::kMaxNodes - 1;
        m_work += amount;
        if (m_work > kMostWork)
            m_diagnostics.error(place, "too many nodes, once graphs within graphs are laid out");
        return m_work <= kMostWork && !m_diagnostics.full();
    }

    /// The scope of an instance with all but its pictures.
    std::unique_ptr<Scope> open(const Scope& outer, const NodeSource& instance)
    {
        const auto [package, graph] = findGraph(outer, instance.graph);
        if (!graph || !mayEnter(outer, *graph, instance))
            return nullptr;
        auto scope = std::make_unique<Scope>(*package, *graph, m_options, m_open, &outer, &instance);
        for (const InputSource& input : graph->inputs)
            scope->inputs.emplace(input.identifier.text, bindInner(outer, input));
        bindParameters(outer, *scope, instance);
        return scope;
    }

    void buildInstance(Scope& outer, const NodeSource& instance)
    {
        Scope* scope = nullptr;
        if (!m_nodes.guarded(instance.place, [&] { scope = outer.inner(instance); }) || !scope)
            return;
        bindPictures(outer, *scope, instance);
        buildNodes(*scope);
        bool hasNumbers = false;
        for (const OutputSource& output : scope->graph.outputs) {
            Scope::Result result;
            result.isNumeric = output.value.given;
            result.node = output.from ? m_nodes.resolve(*scope, output.from) : kNone;
            outer.results[instance.id.text + "." + output.identifier.text] = result;
            if (scope->graph.outputs.size() == 1)
                outer.results[instance.id.text] = result;
            hasNumbers = hasNumbers || result.isNumeric;
        }
        outer.pending.erase(instance.id.text);
        if (!hasNumbers)
            outer.close(instance);
    }

    std::pair<const PackageSource*, const GraphSource*> findGraph(const Scope& scope,
                                                                  const SourceText& name) const
    {
        const std::size_t colon = name.text.find(':');
        const PackageSource* package = &scope.package;
        if (colon != std::string::npos) {
            const auto included = package->included.find(name.text.substr(0, colon));
            if (included == package->included.end()) {
                m_diagnostics.error(name.place, "there is no include '" + name.text.substr(0, colon) + "'");
                return {};
            }
            package = included->second;
        }
        if (!package) // it could not be read, which was told
            return {};
        std::vector<std::string> names;
        for (const GraphSource& graph : package->graphs) {
            names.push_back(graph.identifier.text);
            if (graph.identifier.text == name.text.substr(colon == std::string::npos ? 0 : colon + 1))
                return {package, &graph};
        }
        m_diagnostics.error(name.place,
                            "there is no graph '" + name.text + "'; expected " + quotedList(names));
        return {};
    }

    bool mayEnter(const Scope& outer, const GraphSource& graph, const NodeSource& instance)
    {
        std::string chain = graph.identifier.text;
        int depth = 0;
        for (const Scope* scope = &outer; scope; scope = scope->outer, ++depth) {
            chain = scope->graph.identifier.text + " > " + chain;
            if (&scope->graph == &graph) {
                m_diagnostics.error(instance.graph.place,
                                    "the graph '" + graph.identifier.text + "' uses itself: " + chain);
                return false;
            }
        }
        if (depth >= kMaxNesting) {
            m_diagnostics.error(instance.graph.place, "graphs are nested too deeply");
            return false;
        }
        return mayWork(graph.inputs.size() + graph.nodes.size() + graph.values.size() + graph.outputs.size(),
                       instance.graph.place);
    }

    InputBinding bindInner(const Scope& outer, const InputSource& input) const
    {
        InputBinding binding = bindDefault(input);
        const std::string& name = input.identifier.text;
        if (name == "$outputsize") {
            binding.kind = InputBinding::Kind::Size;
        } else if (name == "$randomseed") {
            binding.kind = InputBinding::Kind::Seed;
        } else if (name[0] == '$' && outer.inputs.count(name)) {
            binding.kind = InputBinding::Kind::Outer;
            binding.outerName = name;
        }
        return binding;
    }

    void bindParameters(const Scope& outer, Scope& scope, const NodeSource& instance)
    {
        std::set<std::string> given;
        for (const ParameterSource& parameter : instance.parameters) {
            const std::string& name = parameter.name.text;
            const auto found = scope.inputs.find(name);
            if (found == scope.inputs.end() || name == "$outputsize") {
                std::vector<std::string> names;
                for (const auto& entry : scope.inputs)
                    names.push_back(entry.first);
                m_diagnostics.error(parameter.name.place,
                                    "the graph '" + scope.graph.identifier.text + "' has no input '" + name +
                                        "' to set; expected " + (names.empty() ? "none" : quotedList(names)));
                continue;
            }
            if (!given.insert(name).second)
                m_diagnostics.error(parameter.name.place, "the parameter '" + name + "' is given twice");
            bindParameter(outer, found->second, parameter);
        }
    }

    void bindParameter(const Scope& outer, InputBinding& binding, const ParameterSource& parameter)
    {
        const ValueType type = binding.type.type;
        if (parameter.input) {
            bindOuter(outer, binding, parameter);
        } else if (type == ValueType::String && parameter.value) {
            binding.text = parameter.value.text;
        } else if (program::isNumeric(type) && parameter.value) {
            const auto words = parseWords(type, trimmed(parameter.value.text));
            if (!words)
                m_diagnostics.error(parameter.value.place, "'" + parameter.value.text +
                                                               "' does not fit; expected " +
                                                               expectedWords(type));
            binding.kind = InputBinding::Kind::Constant;
            binding.words = words.value_or(program::Words{});
        } else if (program::isNumeric(type) && parameter.expression) {
            // Compiled here once for its errors; if it has any, the default stands in so that they are told
            // once.
            if (!m_nodes.value(outer, parameter.expression, type))
                return;
            binding.kind = InputBinding::Kind::Expression;
            binding.expression = &parameter.expression;
        } else {
            m_diagnostics.error(parameter.place,
                                "this does not fit an input of type '" + typeName(type) + "'; expected " +
                                    (type == ValueType::Image ? "<in> or 'input'" : "'value' or 'input'"));
        }
    }

    void bindOuter(const Scope& outer, InputBinding& binding, const ParameterSource& parameter)
    {
        const auto found = outer.inputs.find(parameter.input.text);
        const bool numeric = program::isNumeric(binding.type.type);
        const bool fits = found != outer.inputs.end() && (found->second.type.type == binding.type.type);
        if (!fits) {
            m_diagnostics.error(parameter.input.place, "there is no input '" + parameter.input.text +
                                                           "' of type '" + typeName(binding.type.type) + "'");
            return;
        }
        if (numeric) {
            binding.kind = InputBinding::Kind::Outer;
            binding.outerName = parameter.input.text;
            return;
        }
        const InputType type = binding.type;
        binding = *outer.resource(parameter.input.text);
        binding.type = type;
    }

    void bindPictures(Scope& outer, Scope& scope, const NodeSource& instance)
    {
        for (const LinkSource& link : instance.links) {
            const auto found = scope.inputs.find(link.name.text);
            const std::int32_t picture = m_nodes.resolve(outer, link.from);
            if (found == scope.inputs.end() || found->second.type.type != ValueType::Image) {
                m_diagnostics.error(link.name.place, "the graph '" + scope.graph.identifier.text +
                                                         "' has no image input '" + link.name.text + "'");
                continue;
            }
            found->second.kind = picture == kNone ? InputBinding::Kind::Nothing : InputBinding::Kind::Picture;
            found->second.index = picture;
        }
    }

    void checkValues(const Scope& scope)
    {
        for (const ValueSource& value : scope.graph.values) {
            m_nodes.guarded(value.id.place, [&] {
                ExpressionCompiler compiler(m_sources);
                scope.value(value.id.text, compiler);
            });
        }
    }

    void addOutput(const Scope& scope, const OutputSource& source, FlatPackage::Graph& flat)
    {
        program::Output output;
        output.uid = uidOf(scope.graph, "out", source.identifier);
        output.identifier = source.identifier.text;
        const bool good = source.from ? setPicture(scope, source, output)
                                      : source.value && setNumber(scope, source, output);
        if (!good || !scope.graph.exposed)
            return;
        if (!claim(m_outputUids, output.uid, scope.graph, source.identifier))
            m_diagnostics.error(source.identifier.place,
                                "the uid of this output is taken; choose another identifier");
        if (m_flat.program.outputs.size() >= program::kMaxOutputs) {
            m_diagnostics.error(source.identifier.place, "too many outputs");
            return;
        }
        flat.outputs.emplace_back(&source, static_cast<std::int32_t>(m_flat.program.outputs.size()));
        m_flat.program.outputs.push_back(std::move(output));
    }

    bool setPicture(const Scope& scope, const OutputSource& source, program::Output& output)
    {
        const std::int32_t from = m_nodes.resolve(scope, source.from);
        if (from == kNone)
            return false;
        const bool isGrey = m_flat.program.nodes[from].channels == 1;
        const PictureFormat format =
            parseFormat(source.format.text).value_or(*parseFormat(isGrey ? "grey8" : "rgba8"));
        output.node = m_nodes.withChannels(from, format.grey ? 1 : 4);
        output.pixelFormat = format.code;
        if (source.mipmaps) {
            const auto count = parseInt(trimmed(source.mipmaps.text));
            const bool inRange = count && *count >= 1 && *count <= 15;
            if (!inRange)
                m_diagnostics.error(source.mipmaps.place, "expected a whole number from 1 to 15");
            output.mipmaps = static_cast<std::uint8_t>(inRange ? *count : 1);
        }
        const auto size =
            program::constantResult(m_flat.program.values[m_flat.program.nodes[output.node].size]);
        output.fixedWidth = static_cast<std::uint16_t>(size ? 1u << (*size)[0] : 0u);
        output.fixedHeight = static_cast<std::uint16_t>(size ? 1u << (*size)[1] : 0u);
        return true;
    }

    bool setNumber(const Scope& scope, const OutputSource& source, program::Output& output)
    {
        const auto type = parseInputType(source.type.text);
        if (source.type && (!type || !program::isNumeric(type->type))) {
            m_diagnostics.error(
                source.type.place,
                "a number is of another type; expected 'float', 'int', 'bool' or 'float2' to 'int4'");
            return false;
        }
        return m_nodes.guarded(source.value.place, [&] {
            ExpressionCompiler compiler(m_sources);
            const TypedValue value = compiler.compile(source.value, scope);
            output.type = type ? type->type : naturalType(value);
            output.value = m_nodes.pool().value(
                compiler.finish(compiler.converted(value, output.type, source.value.place), output.type));
        });
    }

    static ValueType naturalType(const TypedValue& value)
    {
        constexpr ValueType floats[] = {ValueType::Float, ValueType::Float2, ValueType::Float3,
                                        ValueType::Float4};
        constexpr ValueType ints[] = {ValueType::Int, ValueType::Int2, ValueType::Int3, ValueType::Int4};
        return (value.base == TypedValue::Base::Float ? floats : ints)[value.count - 1];
    }

    const Sources& m_sources;
    const PackageSource& m_package;
    const CookOptions& m_options;
    Diagnostics& m_diagnostics;
    FlatPackage m_flat;
    NodeCompiler m_nodes;
    const Scope::Open m_open = [this](const Scope& outer, const NodeSource& instance) {
        return open(outer, instance);
    };
    Uids m_inputUids, m_outputUids;
    std::size_t m_work = 0;
};

} // namespace

FlatPackage flatten(const Sources& sources, const PackageSource& package, const NodeTable& table,
                    const CookOptions& options, Diagnostics& diagnostics)
{
    return Flattener(sources, package, table, options, diagnostics).run();
}

} // namespace vellor::cooker
