#pragma once

#include "applications/player/session/engine.h"
#include "common/engine/backend.h"
#include "common/engine/tests/testengines.h"

#include <QBuffer>

#include <map>

namespace Zph::Applications::Player::Tests {

using Zph::Engine::Tests::testEngine;
using Zph::Engine::Tests::TestEngineLog;

/// The test engine, loaded, with a session on a program for it, and what the session's signals said.
class OpenEngine
{
public:
    explicit OpenEngine(const QByteArray& program)
    {
        EXPECT_TRUE(Zph::Engine::load(testEngine()));
        log.take();
        open(program);
    }

    ~OpenEngine()
    {
        engine.reset();
        Zph::Engine::unload();
    }

    void open(const QByteArray& program)
    {
        engine.reset();
        QByteArray bytes = "testengine\n" + program;
        QBuffer device(&bytes);
        device.open(QIODevice::ReadOnly);
        engine = std::make_unique<Engine>(nullptr, device);
        connectSignals();
    }

    /// Pushes outputs as a generation step does, and starts.
    void generate(const std::vector<quint32>& uids)
    {
        Zph::Engine::handlePushOutputs(engine->handleOrNull(), VELLOR_PUSH_UIDS, uids.data(),
                                       quint32(uids.size()), engine.get());
        engine->start();
    }

    TestEngineLog log;
    std::unique_ptr<Engine> engine;
    std::map<quint32, ValueOrSurfacePlayer> results; ///< by the engine's index
    QStringList events;                              ///< signals in their order
    std::function<void(quint32)> onOutput;

private:
    void connectSignals()
    {
        QObject::connect(
            engine.get(), &Engine::outputCompleteCallback, engine.get(),
            [this](quint32 index, const ValueOrSurfacePlayer& result) {
                results[index] = result;
                events.append(QStringLiteral("output %1").arg(index));
                if (onOutput)
                    onOutput(index);
            },
            Qt::DirectConnection);
        QObject::connect(
            engine.get(), &Engine::finishedCallback, engine.get(), [this] { events.append("finished"); },
            Qt::DirectConnection);
        QObject::connect(
            engine.get(), &Engine::errorCallback, engine.get(),
            [this](const QString& text) { events.append(text); }, Qt::DirectConnection);
        QObject::connect(
            engine.get(), &Engine::progressCallback, engine.get(),
            [this](int percent) { events.append(QStringLiteral("progress %1").arg(percent)); },
            Qt::DirectConnection);
    }
};

} // namespace Zph::Applications::Player::Tests
