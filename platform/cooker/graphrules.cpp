#include "platform/cooker/graphrules.h"

#include "platform/cooker/expression.h"
#include "platform/cooker/literals.h"
#include "platform/program/types.h"

#include <map>
#include <set>

namespace vellor::cooker {

namespace {

class Rules
{
public:
    Rules(const GraphSource& graph, const Sources& sources, Diagnostics& diagnostics)
        : m_graph(graph), m_sources(sources), m_diagnostics(diagnostics)
    {
    }

    void run()
    {
        for (const InputSource& input : m_graph.inputs) {
            if (!m_inputs.emplace(input.identifier.text, &input).second)
                m_diagnostics.error(input.identifier.place,
                                    "the input '" + input.identifier.text + "' is there twice");
        }
        unique(m_graph.outputs, &OutputSource::identifier, "output");
        unique(m_graph.values, &ValueSource::id, "value");
        unique(m_graph.groups, &GroupSource::identifier, "group");
        for (const InputSource& input : m_graph.inputs)
            checkCondition(input.visibleIf);
        for (const OutputSource& output : m_graph.outputs)
            checkCondition(output.visibleIf);
        for (const PresetSource& preset : m_graph.presets)
            checkPreset(preset);
    }

private:
    template<typename Source>
    void unique(const std::vector<Source>& sources, SourceText Source::*name, const std::string& noun)
    {
        std::set<std::string> seen;
        for (const Source& source : sources) {
            const SourceText& text = source.*name;
            if (text && !seen.insert(text.text).second)
                m_diagnostics.error(text.place, "the " + noun + " '" + text.text + "' is there twice");
        }
    }

    /// Conditions are worked out by the player, whose language is smaller than that of values.
    void checkCondition(const SourceText& text)
    {
        if (!text || trimmed(text.text).empty())
            return;
        try {
            const ExpressionProgram program = parseExpression(m_sources, text);
            if (!program.lets.empty())
                throw ExpressionError(text.place, "a condition has no 'let'");
            checkPart(text, *program.result);
        } catch (const ExpressionError& error) {
            m_diagnostics.error(error.place, error.what());
        }
    }

    void checkPart(const SourceText& text, const Expression& part)
    {
        const auto fail = [&](const std::string& what) {
            throw ExpressionError(m_sources.within(text, part.at), what);
        };
        using Kind = Expression::Kind;
        const char first = part.at < text.text.size() ? text.text[part.at] : '\0';
        if (part.kind == Kind::Input) {
            const auto input = m_inputs.find(part.text);
            if (input == m_inputs.end() || !program::isNumeric(input->second->type.type))
                fail("there is no input '" + part.text + "' to test");
            if (first == '$' && (part.at == 0 || text.text[part.at - 1] != '.'))
                fail("in conditions, write input[\"" + part.text + "\"]");
        }
        if (part.kind == Kind::Swizzle && part.text.size() != 1)
            fail("a condition picks one component");
        const bool isWord =
            part.kind == Kind::Binary || part.kind == Kind::Unary ? isNameLetter(first) : false;
        if (isWord || part.text == "%" || part.kind == Kind::Call || part.kind == Kind::Conditional ||
            part.kind == Kind::Name || part.kind == Kind::String || part.kind == Kind::Value)
            fail("a condition is made of inputs, numbers, comparisons, || && ! and + - * /");
        for (const auto& inner : part.parts)
            checkPart(text, *inner);
    }

    static bool isNameLetter(char c) { return c >= 'a' && c <= 'z'; }

    void checkPreset(const PresetSource& preset)
    {
        for (const PresetSource::Set& set : preset.sets) {
            const auto input = m_inputs.find(set.input.text);
            if (input == m_inputs.end()) {
                m_diagnostics.error(set.input.place, "there is no input '" + set.input.text + "'");
                continue;
            }
            const program::ValueType type = input->second->type.type;
            if (program::isNumeric(type) && !parseWords(type, trimmed(set.value.text)))
                m_diagnostics.error(set.value.place,
                                    "'" + set.value.text + "' does not fit; expected " + expectedWords(type));
        }
    }

    const GraphSource& m_graph;
    const Sources& m_sources;
    Diagnostics& m_diagnostics;
    std::map<std::string, const InputSource*> m_inputs;
};

} // namespace

void checkGraph(const GraphSource& graph, const Sources& sources, Diagnostics& diagnostics)
{
    Rules(graph, sources, diagnostics).run();
}

} // namespace vellor::cooker
