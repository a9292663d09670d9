#include "applications/player/session/generationstep.h"
#include "applications/player/description/packagemodel.h"
#include "applications/player/session/cache.h"
#include "applications/player/session/generationhost.h"
#include "applications/player/session/tests/openengine.h"

#include <QDomDocument>

using namespace Zph::Applications::Player;
using namespace Zph::Applications::Player::Tests;

namespace {

class Host : public GenerationHost
{
public:
    void wantedOutputs(std::set<quint32>& uids) override
    {
        called.append("wanted");
        uids.insert(wanted.begin(), wanted.end());
    }
    void requiredOutputs(std::set<quint32>& uids) override
    {
        called.append("required");
        uids.insert(required.begin(), required.end());
    }
    void updateTimeline() override { called.append("timeline"); }
    void pushInputs(InputSink& engine) override
    {
        called.append("inputs");
        const float value = 1;
        engine.pushInput(0, VELLOR_TYPE_FLOAT, &value);
    }
    void pinnedInputs(std::list<std::size_t>& indexes) override { indexes = pinned; }
    void generationStarts(std::size_t outputs) override { called.append(QString("starts %1").arg(outputs)); }

    std::set<quint32> wanted, required;
    std::list<std::size_t> pinned;
    QStringList called;
};

const char* const program = "input 1 0\ninput 2 0\noutput 10 0\noutput 20 0\noutput 30 0\n";

/// The cache takes each result as the window does: by the uid that the engine's record tells.
void fillCache(OpenEngine& session, Cache& cache)
{
    QObject::connect(session.engine.get(), &Engine::outputCompleteCallback, &cache,
                     [&cache, &session](quint32 index, const ValueOrSurfacePlayer& result) {
                         VellorOutputDesc desc = {};
                         Zph::Engine::handleGetOutputDesc(session.engine->handleOrNull(), index, &desc);
                         cache.pushOutput(desc.uid, result);
                     });
}

std::shared_ptr<const PackageModel> packageWithLinks()
{
    QDomDocument document;
    document.setContent(
        QByteArray("<package><outputs><output uid='10' index='0'/><output uid='20' index='1'/></outputs>"
                   "<inputs><input index='0' alteroutputs='1'/><input index='1' alteroutputs=''/></inputs>"
                   "</package>"));
    std::vector<VellorInputDesc> inputs(2);
    inputs[0] = {1, VELLOR_TYPE_INTEGER, nullptr};
    inputs[1] = {2, VELLOR_TYPE_INTEGER, nullptr};
    static const quint32 zeros[4] = {};
    for (VellorInputDesc& input : inputs)
        input.defaultValue = zeros;
    return std::make_shared<PackageModel>(inputs, std::vector<VellorOutputDesc>(), document);
}

} // namespace

TEST(GenerationStep, PushesWhatIsMissingInOrderAndHintsBehindIt)
{
    OpenEngine session(program);
    Cache cache;
    fillCache(session, cache);
    GenerationStep step;
    Host host;
    host.wanted = {30, 10};
    host.pinned = {1};
    session.log.take();
    const auto report = step.run(session.engine.get(), cache, host);
    EXPECT_EQ(report.uids, std::vector<quint32>({10, 30}));
    EXPECT_TRUE(report.outputsPushed && report.hintsPushed);
    EXPECT_EQ(host.called, QStringList({"wanted", "required", "timeline", "inputs", "starts 2"}));
    EXPECT_EQ(session.log.take().mid(0, 7),
              QStringList({"Flush", "GetState user=0",
                           "PushSetInput flags=0x0 index=0 type=0 value=3f800000 user=0",
                           "PushOutputs flags=0x2 outputs=10,30 user=1",
                           "PushSetInput flags=0x800 index=1 type=0 value=null user=0",
                           "PushOutputs flags=0x802 outputs=10,30 user=1", "ContextRestoreStates"}));
    EXPECT_TRUE(cache.get(10).isValue());

    EXPECT_TRUE(step.run(session.engine.get(), cache, host).uids.empty());
    EXPECT_EQ(session.log.take(), QStringList());
}

TEST(GenerationStep, AnExportGetsWhatTheCacheHolds)
{
    OpenEngine session(program);
    Cache cache;
    fillCache(session, cache);
    GenerationStep step;
    Host host;
    host.wanted = {20};
    step.run(session.engine.get(), cache, host);
    host.required = {20};
    EXPECT_EQ(step.run(session.engine.get(), cache, host).uids, std::vector<quint32>({20}));
}

TEST(GenerationStep, WhatFailedIsNotAskedForAgainUntilAnInputTouchesIt)
{
    OpenEngine session(QByteArray(program) + "fail fetch 20 5\n");
    Cache cache;
    fillCache(session, cache);
    GenerationStep step;
    Host host;
    host.wanted = {20};
    step.run(session.engine.get(), cache, host);
    EXPECT_EQ(cache.get(20).surface(), step.placeholder().surface());
    EXPECT_TRUE(step.run(session.engine.get(), cache, host).uids.empty());
    cache.inputChanged(0);
    EXPECT_EQ(step.run(session.engine.get(), cache, host).uids, std::vector<quint32>({20}));
}

TEST(GenerationStep, GoesOnWhenTheEngineRefuses)
{
    OpenEngine session(QByteArray(program) + "fail push 3\nfail hint 3\n");
    Cache cache;
    GenerationStep step;
    Host host;
    host.wanted = {10};
    host.pinned = {0};
    session.log.take();
    const auto report = step.run(session.engine.get(), cache, host);
    EXPECT_FALSE(report.outputsPushed);
    EXPECT_FALSE(report.hintsPushed);
    EXPECT_EQ(session.events, QStringList({"finished"}));
}

TEST(GenerationStep, DoesNothingWithoutAHandle)
{
    OpenEngine session("input 1 0\n");
    Cache cache;
    GenerationStep step;
    Host host;
    host.wanted = {10};
    step.run(nullptr, cache, host);
    step.run(session.engine.get(), cache, host);
    EXPECT_TRUE(host.called.isEmpty());
    EXPECT_TRUE(cache.get(10).isEmpty());
}

TEST(OutputCache, AnInputDropsTheOutputsThatItAlters)
{
    Cache cache;
    const GenerationStep step;
    const auto fill = [&] {
        for (const quint32 uid : {10u, 20u})
            cache.pushOutput(uid, step.placeholder());
    };
    const auto held = [&] { return std::make_pair(!cache.get(10).isEmpty(), !cache.get(20).isEmpty()); };
    fill();
    cache.inputChanged(1); // no description: nothing is known
    EXPECT_EQ(held(), std::make_pair(false, false));

    cache.setDescription(packageWithLinks());
    fill();
    cache.inputChanged(1);
    EXPECT_EQ(held(), std::make_pair(true, true));
    cache.inputChanged(0);
    EXPECT_EQ(held(), std::make_pair(true, false));
    cache.inputChanged(2); // beyond the links
    EXPECT_EQ(held(), std::make_pair(false, false));
}
