#include "applications/player/session/tests/openengine.h"

#include <QSize>

using namespace Zph::Applications::Player;
using namespace Zph::Applications::Player::Tests;

TEST(EngineSession, MakesAContextAndAHandleAndReleasesThem)
{
    OpenEngine session("output 1 0\n");
    EXPECT_NE(session.engine->handleOrNull(), nullptr);
    session.engine.reset();
    EXPECT_EQ(session.log.take(),
              QStringList({"ContextInit api=0x10009 device=0 reserved=0", "ContextSetCallback id=2 set=1",
                           "ContextSetCallback id=0 set=1", "ContextSetCallback id=9 set=1",
                           "ContextSetCallback id=11 set=1", "ContextSetCallback id=5 set=1",
                           "ContextSetCallback id=6 set=1", "GetCurrentVersion api=0x10009",
                           "HandleInit size=22 aligned=1 memory=4294967296 video=0 zeros=1", "GetDesc",
                           "ContextRestoreStates", "HandleRelease", "ContextRelease"}));
}

TEST(EngineSession, GivesTheOpenGLEngineHalfOfTheVideoMemory)
{
    // Where the video memory can't be found out, that is half of the budget of 4 GiB.
    TestEngineLog::set("ID", "12");
    OpenEngine session("output 1 0\n");
    const QStringList inits = session.log.take().filter("HandleInit");
    ASSERT_EQ(inits.size(), 1);
    EXPECT_TRUE(inits[0].contains(" memory=4294967296 video=")) << inits[0].toStdString();
    EXPECT_FALSE(inits[0].contains(" video=0 ")) << inits[0].toStdString();
}

TEST(EngineSession, AGenerationRestoresStatesFetchesAndFinishes)
{
    OpenEngine session("input 5 3\ninput 6 6\noutput 10 2\noutput 20 5 4 4 0\n");
    session.log.take();
    const float colour[4] = {1, 0.5f, 0, -2};
    const quint32 text[] = {'A', 0x1f600, 0};
    EXPECT_TRUE(session.engine->pushInput(0, VELLOR_TYPE_FLOAT4, colour));
    EXPECT_TRUE(session.engine->pushInput(1, VELLOR_TYPE_STRING, text));
    EXPECT_FALSE(session.engine->pushInput(2, VELLOR_TYPE_FLOAT, colour));
    session.generate({20, 10});
    EXPECT_EQ(
        session.log.take(),
        QStringList({"PushSetInput flags=0x0 index=0 type=3 value=3f800000,3f000000,00000000,c0000000 user=0",
                     "PushSetInput flags=0x0 index=1 type=6 value=U+0041,U+1F600 user=0",
                     "PushSetInput flags=0x0 index=2 type=0 value=3f800000 user=0",
                     "PushOutputs flags=0x2 outputs=20,10 user=1", "ContextRestoreStates", "Start flags=0",
                     "GetOutputDesc index=1", "GetOutputs flags=0x0 index=1 count=1", "Allocate multiple=1",
                     "ContextRestoreStates", "GetOutputDesc index=0", "GetOutputs flags=0x10 index=0 count=1",
                     "ContextRestoreStates"}));
    EXPECT_EQ(session.events, QStringList({"output 1", "output 0", "finished"}));
}

TEST(EngineSession, TellsEachFailureInItsWords)
{
    OpenEngine session("output 1 0\noutput 2 0\noutput 3 6\nfail fetch 1 77\n");
    session.log.take();
    session.generate({1, 2, 3});
    EXPECT_EQ(session.events,
              QStringList({"Output grab failed (77)", "output 1", "Output grab failed (12)", "finished"}));
    // Nothing is restored after the two that failed: one for the start, one for the one that came.
    EXPECT_EQ(session.log.take().filter("ContextRestoreStates").size(), 2);

    session.events.clear();
    session.open("output 1 0\nfail start 9\n");
    session.generate({1});
    EXPECT_EQ(session.events, QStringList({"finished", "Cannot start generation (9)"}));
}

TEST(EngineSession, HasNoHandleWhenTheEngineRefuses)
{
    struct Row
    {
        const char* program;
        const char* released;
    };
    const Row rows[] = {{"output 1 0\nfail handle 4\n", "ContextRelease"},
                        {"output 1 0\nfail desc 4\n", "ContextRestoreStates HandleRelease ContextRelease"},
                        {"input 1 0\n", "ContextRestoreStates HandleRelease ContextRelease"}};
    for (const Row& row : rows) {
        OpenEngine session(row.program);
        EXPECT_EQ(session.engine->handleOrNull(), nullptr) << row.program;
        EXPECT_FALSE(session.engine->pushInput(0, 0, nullptr));
        session.engine->stop();
        session.engine->start();
        EXPECT_EQ(session.events, QStringList({"Vellor engine not correctly initialized"}));
        session.log.take();
        session.engine.reset();
        EXPECT_EQ(session.log.take().join(' '), row.released) << row.program;
    }
}

TEST(EngineSession, ARefusedContextIsNeverReleased)
{
    TestEngineLog::set("FAIL", "context");
    OpenEngine session("output 1 0\n");
    EXPECT_EQ(session.engine->handleOrNull(), nullptr);
    session.engine.reset();
    EXPECT_EQ(session.log.take(), QStringList({"ContextInit api=0x10009 device=0 reserved=0"}));
}

TEST(EngineSession, StopsOnlyAComputationThatRuns)
{
    OpenEngine session("output 1 0\noutput 2 0\n");
    session.log.take();
    session.engine->stop();
    EXPECT_EQ(session.log.take(), QStringList({"GetState user=0"}));

    session.onOutput = [&session](quint32) { session.engine->stop(); };
    session.generate({1, 2});
    EXPECT_EQ(session.events, QStringList({"output 0", "finished"}));
    EXPECT_EQ(session.log.take().filter("St"),
              QStringList({"ContextRestoreStates", "Start flags=0", "GetState user=0", "Stop mode=1",
                           "ContextRestoreStates"}));
}

TEST(EngineSession, ReportsProgressOnceASecondOfProcessorTime)
{
    // Steps 0 to 9 burn 150 ms each. Only 0, 4 and 8 are looked at, at 0.15, 0.75 and 1.35 seconds.
    OpenEngine session("output 1 0\nprogress 9 150\n");
    session.generate({1});
    EXPECT_EQ(session.events, QStringList({"progress 88", "output 0", "finished"}));

    session.events.clear();
    session.open("output 1 0\nprogress 100 0\n");
    session.generate({1});
    EXPECT_EQ(session.events, QStringList({"output 0", "finished"}));
}

TEST(EngineSession, WhatReceiversSpendDoesNotCount)
{
    OpenEngine session("output 1 0\n");
    float duration = -1;
    QObject::connect(session.engine.get(), &Engine::finishedCallback, session.engine.get(),
                     [&duration](float seconds) { duration = seconds; });
    session.onOutput = [](quint32) {
        const std::clock_t until = std::clock() + CLOCKS_PER_SEC / 2;
        while (std::clock() < until) {
        }
    };
    session.generate({1});
    EXPECT_GE(duration, 0);
    EXPECT_LT(duration, 0.5f); // the receiver alone takes that
}

TEST(EngineSession, ParksBlocksInFilesOfTheirOwn)
{
    OpenEngine session("output 1 0\ncache\n");
    session.generate({1});
    // Entry 9 is read and removed; the next read makes it anew, empty.
    EXPECT_EQ(session.log.take().filter("CacheStore"),
              QStringList(
                  {"CacheStore flags=2 entry=7 data=parked-7", "CacheStore flags=6 entry=9 data=parked-9",
                   "CacheStore flags=2 entry=9 data=untouchd", "CacheStore flags=2 entry=7 data=parked-7"}));
}

TEST(EngineSession, AnImageRequestGoesToTheSourceBehindTheInput)
{
    struct Source : ImageSource
    {
        QSize asked;
        VellorTexture texture = {};

        const VellorTexture* prepare(quint32 width, quint32 height) override
        {
            asked = QSize(int(width), int(height));
            return &texture;
        }
    };
    OpenEngine session("input 5 5\ninput 6 5\noutput 1 0\n");
    const auto source = std::make_shared<Source>();
    const std::weak_ptr<Source> replaced = [&] {
        const auto first = std::make_shared<Source>();
        EXPECT_TRUE(session.engine->pushImage(0, first));
        return first;
    }();
    EXPECT_FALSE(replaced.expired());
    EXPECT_TRUE(session.engine->pushImage(0, source));
    EXPECT_TRUE(replaced.expired());
    EXPECT_TRUE(session.engine->pushImage(1, nullptr));
    session.generate({1});
    EXPECT_EQ(source->asked, QSize(32, 16));
    const QStringList lines = session.log.take();
    EXPECT_TRUE(lines.contains("PushSetInput flags=0x0 index=0 type=5 value=null user=1"));
    EXPECT_TRUE(lines.contains("ImageInput index=0 kept=0"));
    EXPECT_TRUE(lines.contains("ImageInput index=1 kept=1"));
}

TEST(EngineSession, RecreateMakesTheHandleAnewFromTheSamePackage)
{
    OpenEngine session("output 1 0\n");
    session.log.take();
    session.engine->recreate();
    EXPECT_EQ(session.log.take(),
              QStringList({"ContextRestoreStates", "HandleRelease",
                           "HandleInit size=22 aligned=1 memory=4294967296 video=0 zeros=1", "GetDesc"}));
    session.generate({1});
    EXPECT_EQ(session.events, QStringList({"output 0", "finished"}));
}

TEST(EngineSession, AsynchronousGenerationsRunOnTheThread)
{
    OpenEngine session("output 1 0\n");
    session.engine->setAsynchronous(true);
    session.generate({1});
    session.engine->wait();
    EXPECT_EQ(session.events, QStringList({"output 0", "finished"}));
}
