#include "benchmarks/operations/operationgraph.h"

#include "platform/engines/cpu/outputconverter.h"
#include "platform/engines/cpu/rowloop.h"
#include "platform/engines/cpu/stagerunner.h"

#include <cstdio>
#include <cstdlib>

using namespace vellor;
using namespace vellor::cpu;

namespace {

[[noreturn]] void fail(const std::string& what)
{
    std::fprintf(stderr, "%s\n", what.c_str());
    std::exit(1);
}

void apply(nodes::ParameterValue& value, const Setting& setting)
{
    for (int c = 0; c < 4; ++c) {
        value.f[c] = static_cast<float>(setting.numbers[c]);
        value.i[c] = static_cast<std::int32_t>(setting.numbers[c]);
    }
}

} // namespace

OperationGraph::OperationGraph(int width, int height, int threads)
    : m_noStore(m_callbacks, nullptr), m_pool(BufferPool::make()), m_store(m_pool, m_noStore), m_width(width),
      m_height(height)
{
    m_store.setBudget(std::uint64_t(16) << 30);
    m_pool->setKeepLimit(std::size_t(8) << 30); // the budget has set a lower one
    setThreads(threads);
}

int OperationGraph::addPicture(int channels, const Fill& fill)
{
    auto image = std::make_shared<Image>(*m_pool, m_width, m_height, channels);
    const nodes::MutableImage view = image->mutableView();
    for (int c = 0; c < channels; ++c)
        for (int y = 0; y < m_height; ++y)
            for (int x = 0; x < m_width; ++x)
                view.planes[c][y * view.stride + x] = fill(x, y, c);
    PlanNode node;
    node.width = m_width;
    node.height = m_height;
    node.channels = channels;
    node.key = {1, m_plan.nodes.size()};
    // Never computed, but asked for its shape by the schedule.
    static const nodes::NodeDeclaration given{};
    node.kind = &given;
    m_plan.nodes.push_back(std::move(node));
    m_pictures.push_back(std::move(image));
    return static_cast<int>(m_plan.nodes.size()) - 1;
}

int OperationGraph::addPacked(std::uint8_t format, const void* pixels)
{
    VellorTexture texture{};
    texture.buffer = const_cast<void*>(pixels);
    texture.width = static_cast<std::uint16_t>(m_width);
    texture.height = static_cast<std::uint16_t>(m_height);
    texture.pixelFormat = format;
    texture.channelOrder = VELLOR_ORDER_RGBA;
    PlanNode node;
    node.kind = &pictureRowKind();
    node.source = HostImage::copy(texture);
    if (!node.source)
        fail("The picture's format can't be read");
    node.width = m_width;
    node.height = m_height;
    node.channels = node.source->channels();
    node.key = {1, m_plan.nodes.size()};
    node.compute = true;
    m_plan.nodes.push_back(std::move(node));
    m_pictures.push_back(nullptr);
    return static_cast<int>(m_plan.nodes.size()) - 1;
}

int OperationGraph::addOutput(std::uint8_t format, int node)
{
    PlanNode output;
    output.kind = &packKind();
    output.packs = true;
    output.format = format;
    output.width = m_width;
    output.height = m_height;
    output.channels = m_plan.nodes[std::size_t(node)].channels;
    output.operands = {node};
    output.key = {1, m_plan.nodes.size()};
    m_plan.nodes.push_back(std::move(output));
    m_pictures.push_back(nullptr);
    return static_cast<int>(m_plan.nodes.size()) - 1;
}

int OperationGraph::addNode(const char* kind, int channels, const std::vector<int>& operands,
                            const std::vector<Setting>& settings)
{
    PlanNode node;
    node.kind = nodes::findNode(std::string_view(kind));
    if (!node.kind)
        fail(std::string("There is no node kind ") + kind);
    node.width = m_width;
    node.height = m_height;
    node.channels = channels;
    node.key = {1, m_plan.nodes.size()};
    node.operands = operands;
    node.operands.resize(node.kind->operands.size(), kNoNode);
    for (const nodes::ParameterDeclaration& declared : node.kind->parameters)
        apply(node.parameters.emplace_back(), {declared.name, declared.defaultValue});
    for (const Setting& setting : settings) {
        std::size_t at = 0;
        while (at < node.parameters.size() && setting.name != node.kind->parameters[at].name)
            ++at;
        if (at == node.parameters.size())
            fail(std::string(kind) + " has no parameter " + setting.name);
        apply(node.parameters[at], setting);
        if (!setting.blob.empty()) {
            m_blobs.push_back(std::make_unique<std::vector<float>>(setting.blob));
            node.parameters[at].blob = reinterpret_cast<const std::uint8_t*>(m_blobs.back()->data());
            node.parameters[at].blobSize = 4 * setting.blob.size();
        }
    }
    m_plan.nodes.push_back(std::move(node));
    m_pictures.push_back(nullptr);
    return static_cast<int>(m_plan.nodes.size()) - 1;
}

void OperationGraph::run(int node)
{
    if (!tryRun(node))
        fail("A stage was lost");
}

/// Nothing but what the node needs.
void OperationGraph::markCompute(int node)
{
    std::vector<bool> wanted(m_plan.nodes.size(), false);
    wanted[std::size_t(node)] = true;
    for (std::size_t i = wanted.size(); i-- > 0;) {
        m_plan.nodes[i].compute = wanted[i] && !m_pictures[i];
        for (const int operand : m_plan.nodes[i].operands)
            if (operand != kNoNode && wanted[i])
                wanted[std::size_t(operand)] = true;
    }
}

bool OperationGraph::tryRun(int node)
{
    m_stop = false;
    markCompute(node);
    m_result = nullptr;
    m_store.clear();
    for (std::size_t i = 0; i < m_pictures.size(); ++i)
        if (m_pictures[i])
            m_store.put(m_plan.nodes[i].key, m_pictures[i]);
    m_plan.roots = {node};
    const Schedule schedule = makeSchedule(m_plan, (m_resources.flags & VELLOR_CPU_NO_FUSION) == 0);
    Monitor monitor(m_stop, [](std::uint32_t, std::uint32_t) {});
    monitor.begin(schedule.work);
    const StageContext context{m_plan, m_store, *m_pool, m_threads, monitor, m_resources};
    for (const Stage& stage : schedule.stages)
        if (runStage(context, schedule, stage) != StageResult::Done)
            return false;
    m_result = m_store.get(m_plan.nodes[node].key);
    return true;
}

void OperationGraph::fetch(std::uint8_t format, void* pixels)
{
    Monitor monitor(m_stop, [](std::uint32_t, std::uint32_t) {});
    const RowLoop loop{m_threads, monitor, m_resources, m_height, m_width, 0};
    loop.run([&](int y0, int y1, int) {
        if (m_result->shape().packed)
            copyPixels(*m_result, y0, y1, pixels);
        else
            convertRows(m_result->view(), format, y0, y1, pixels);
    });
}
