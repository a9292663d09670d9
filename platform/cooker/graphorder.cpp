#include "platform/cooker/graphorder.h"

#include <algorithm>
#include <unordered_map>

namespace vellor::cooker {

namespace {

/// Depth first, with a stack of its own: chains of links may be as long as a graph is large.
class Sorter
{
public:
    Sorter(const GraphSource& graph, Diagnostics& diagnostics) : m_diagnostics(diagnostics)
    {
        for (const NodeSource& node : graph.nodes) {
            if (!m_nodes.emplace(node.id.text, &node).second && node.id)
                m_diagnostics.error(node.id.place, "the id '" + node.id.text + "' is taken");
        }
    }

    std::vector<const NodeSource*> run(const GraphSource& graph)
    {
        for (const NodeSource& node : graph.nodes) {
            enter(&node, nullptr);
            while (!m_stack.empty())
                step();
        }
        return std::move(m_order);
    }

private:
    enum class State
    {
        New,
        UnderWay,
        Done
    };

    struct Visit
    {
        const NodeSource* node;
        std::size_t nextLink = 0;
    };

    void enter(const NodeSource* node, const LinkSource* link)
    {
        State& state = m_states[node];
        if (state == State::UnderWay)
            tellCircle(node, link);
        if (state != State::New)
            return;
        state = State::UnderWay;
        m_stack.push_back({node});
    }

    void step()
    {
        Visit& visit = m_stack.back();
        if (visit.nextLink == visit.node->links.size()) {
            m_states[visit.node] = State::Done;
            m_order.push_back(visit.node);
            m_stack.pop_back();
            return;
        }
        const LinkSource& link = visit.node->links[visit.nextLink++];
        const auto from = m_nodes.find(link.from.text.substr(0, link.from.text.find('.')));
        if (from != m_nodes.end())
            enter(from->second, &link);
    }

    void tellCircle(const NodeSource* node, const LinkSource* link)
    {
        constexpr std::size_t kMostNames = 10;
        const auto start =
            std::find_if(m_stack.begin(), m_stack.end(), [&](const Visit& v) { return v.node == node; });
        std::string chain;
        for (auto visit = start; visit != m_stack.end(); ++visit) {
            const auto position = static_cast<std::size_t>(visit - start);
            if (position < kMostNames)
                chain += visit->node->id.text + " <- ";
            else if (position == kMostNames)
                chain += "... <- ";
        }
        m_diagnostics.error(link->from.place, "links run in a circle: " + chain + node->id.text);
    }

    Diagnostics& m_diagnostics;
    std::unordered_map<std::string, const NodeSource*> m_nodes;
    std::unordered_map<const NodeSource*, State> m_states;
    std::vector<Visit> m_stack;
    std::vector<const NodeSource*> m_order;
};

} // namespace

std::vector<const NodeSource*> dependencyOrder(const GraphSource& graph, Diagnostics& diagnostics)
{
    return Sorter(graph, diagnostics).run(graph);
}

} // namespace vellor::cooker
