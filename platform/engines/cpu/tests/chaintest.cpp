// Groups of point nodes whose results are too large for the caches: the same bytes as small ones and nodes by
// themselves give, wherever results are written and whoever hands on what.

#include "platform/engines/cpu/tests/programbuilder.h"
#include "platform/engines/cpu/tests/testhost.h"
#include "platform/nodes/node.h"

#include <vellor/cpuengine.h>

#include <gtest/gtest.h>

namespace vellor::cpu::testing {
namespace {

const nodes::NodeDeclaration* findAnyKind(std::uint32_t id)
{
    const nodes::NodeDeclaration* fake = findFakeKind(id);
    return fake ? fake : nodes::findNode(id);
}

constexpr std::uint8_t kFloats = VELLOR_FORMAT_32FLOAT | VELLOR_FORMAT_RGBA;
constexpr std::uint32_t kPicks[] = {2, 3, 0, 1}; // a shuffle's

/// 1024 x 1024 pixels in colour, which are written past the caches. Two whole pictures to begin with.
struct Graph
{
    ProgramBuilder build;
    int size, first, second;

    Graph() : size(build.sizeValue(10, 10)), first(picture(1.0f)), second(picture(7.0f)) {}

    int picture(float amount)
    {
        const int ramp = build.node("ramp", size);
        build.program.nodes[ramp].channels = 4;
        build.constant(ramp, "amount", amount);
        const int scaled = build.node("contrast", size, {build.node("spread", size, {ramp})});
        build.constant(scaled, "contrast", -0.999f);
        return build.node("spread", size, {scaled});
    }
    int blend(int source, int background)
    {
        return build.node("blend", size, {source, background, program::kNone});
    }
    int shuffle(int a, int b = program::kNone)
    {
        const int node = build.node("channelshuffle", size, {a, b});
        build.program.nodes[node].channels = 4;
        const char* const names[] = {"red", "green", "blue", "alpha"};
        for (int c = 0; c < 4; ++c)
            build.parameter(node, names[c], program::ParameterSource::Constant,
                            {b == program::kNone ? kPicks[c] : kPicks[c] ^ 4u * (c % 2u)}, program::kNone);
        return node;
    }
    /// Two outputs of a node: its planes are written.
    void show(int node)
    {
        build.output(node, kFloats);
        build.output(node, kFloats);
    }
};

std::vector<float> computed(const Graph& graph, std::uint32_t threads, std::uint32_t flags)
{
    Resources resources;
    resources.threads = threads;
    resources.flags = flags;
    TestHost host(graph.build.program, resources, findAnyKind);
    std::vector<std::uint32_t> outputs;
    for (const program::Output& output : graph.build.program.outputs)
        outputs.push_back(output.uid);
    EXPECT_EQ(host.compute(outputs), 0u);
    std::vector<float> all;
    for (std::uint32_t output = 0; output < outputs.size(); ++output) {
        const std::vector<float> one = host.floats(output);
        EXPECT_EQ(one.size(), 4u << 20);
        all.insert(all.end(), one.begin(), one.end());
    }
    return all;
}

void expectTheSameHoweverItRuns(const Graph& graph)
{
    const std::vector<float> fused = computed(graph, 1, 0);
    EXPECT_TRUE(fused == computed(graph, 3, 0));
    EXPECT_TRUE(fused == computed(graph, 1, VELLOR_CPU_NO_FUSION));
}

TEST(Chain, HandsOnPlanesWithoutChange)
{
    Graph graph;
    graph.show(graph.first);
    graph.show(graph.shuffle(graph.first));
    const std::vector<float> all = computed(graph, 1, 0);
    const std::size_t floats = 4u << 20;
    for (std::size_t i = 0; i < floats; ++i)
        ASSERT_EQ(all[2 * floats + i], all[i / 4 * 4 + kPicks[i % 4]]) << i;
    expectTheSameHoweverItRuns(graph);
}

TEST(Chain, WritesWhereTheLastNodeHandsOn)
{
    Graph graph;
    graph.show(graph.shuffle(graph.blend(graph.first, graph.second)));
    expectTheSameHoweverItRuns(graph);
}

TEST(Chain, KeepsWhatIsReadBesideBeingHandedOn)
{
    const auto check = [](const std::function<void(Graph&, int blend, int shuffle)>& change) {
        Graph graph;
        const int blend = graph.blend(graph.first, graph.second);
        change(graph, blend, graph.shuffle(blend));
        expectTheSameHoweverItRuns(graph);
    };
    // What is handed on is an output itself, is read before, beside and behind, or goes on to others.
    check([](Graph& graph, int blend, int shuffle) {
        graph.show(blend);
        graph.show(shuffle);
    });
    check([](Graph& graph, int blend, int shuffle) { graph.show(graph.blend(blend, shuffle)); });
    check([](Graph& graph, int blend, int shuffle) {
        graph.show(shuffle);
        graph.show(graph.blend(blend, graph.first));
    });
    check([](Graph& graph, int, int shuffle) {
        graph.show(shuffle);
        graph.show(graph.blend(graph.shuffle(shuffle), graph.blend(shuffle, graph.second)));
    });
    check([](Graph& graph, int blend, int shuffle) {
        const int other = graph.blend(graph.second, graph.first);
        graph.show(graph.shuffle(graph.blend(blend, other), graph.blend(shuffle, other)));
    });
    check([](Graph& graph, int blend, int) { graph.show(graph.shuffle(blend, blend)); });

    Graph graph;
    const int blend = graph.blend(graph.first, graph.second);
    graph.show(graph.blend(blend, graph.first));
    graph.show(graph.shuffle(blend));
    expectTheSameHoweverItRuns(graph);
}

} // namespace
} // namespace vellor::cpu::testing
