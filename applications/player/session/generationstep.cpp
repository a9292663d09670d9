#include "applications/player/session/generationstep.h"

#include "applications/player/session/cache.h"
#include "applications/player/session/engine.h"
#include "applications/player/session/generationhost.h"
#include "common/engine/backend.h"
#include "orncommon/core/debug.h"
#include "orncommon/surfaces/operations.h"

namespace Zph::Applications::Player {

namespace {

bool pushOutputs(Engine& engine, quint32 flags, const std::vector<quint32>& uids)
{
    return Zph::Engine::handlePushOutputs(engine.handleOrNull(), VELLOR_PUSH_UIDS | flags, uids.data(),
                                          quint32(uids.size()), &engine) == VELLOR_OK;
}

} // namespace

GenerationStep::GenerationStep()
{
    using namespace Orn::Surfaces;
    constexpr unsigned side = 16; // pixels; nobody looks at them for long
    auto surface = QSharedPointer<Surface>::create(SurfaceDescription(side, side, RGBA8), surfaceAlignment);
    fill(*surface, 0, 0, 0, 0);
    m_placeholder = ValueOrSurfacePlayer(surface);
}

GenerationStep::Report GenerationStep::run(Engine* engine, Cache& cache, GenerationHost& host)
{
    Report report;
    if (!engine || !engine->handleOrNull())
        return report;
    report.uids = missingOutputs(cache, host);
    host.updateTimeline();
    if (report.uids.empty())
        return report;

    Zph::Engine::handleFlush(engine->handleOrNull());
    engine->stop();
    for (const quint32 uid : report.uids)
        cache.pushOutput(uid, m_placeholder);
    host.pushInputs(*engine);
    report.outputsPushed = pushOutputs(*engine, 0, report.uids);
    if (!report.outputsPushed)
        Orn::Debug::error("Cannot push outputs");
    report.hintsPushed = pushHints(*engine, report.uids, host);
    host.generationStarts(report.uids.size());
    engine->start();
    return report;
}

std::vector<quint32> GenerationStep::missingOutputs(const Cache& cache, GenerationHost& host)
{
    std::set<quint32> wanted, missing;
    host.wantedOutputs(wanted);
    for (const quint32 uid : wanted) {
        if (cache.get(uid).isEmpty())
            missing.insert(uid);
    }
    host.requiredOutputs(missing);
    return {missing.begin(), missing.end()};
}

bool GenerationStep::pushHints(Engine& engine, const std::vector<quint32>& uids, GenerationHost& host)
{
    std::list<std::size_t> pinned;
    host.pinnedInputs(pinned);
    bool allPushed = true;
    for (const std::size_t index : pinned) {
        const quint32 result = Zph::Engine::handlePushSetInput(engine.handleOrNull(), VELLOR_PUSH_HINT,
                                                               quint32(index), 0, nullptr, nullptr);
        if (result != VELLOR_OK) {
            Orn::Debug::error("Cannot push tweak hint");
            allPushed = false;
        }
    }
    if (!pinned.empty() && !pushOutputs(engine, VELLOR_PUSH_HINT, uids)) {
        Orn::Debug::error("Cannot push outputs hints");
        allPushed = false;
    }
    return allPushed;
}

} // namespace Zph::Applications::Player
