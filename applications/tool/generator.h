#pragma once

#include "applications/player/session/cache.h"
#include "applications/player/session/generationhost.h"
#include "applications/player/session/generationstep.h"
#include "applications/tool/selection.h"

#include <QElapsedTimer>
#include <QObject>

#include <functional>

namespace vellor::tool {

class Interrupter;
class Package;

/// Runs generations of the selected outputs through the same step as the window's.
class Generator : private Zph::Applications::Player::GenerationHost
{
public:
    using Result = Zph::Applications::Player::ValueOrSurfacePlayer;

    /// All of them outlive the object.
    Generator(const Package& package, Selection& selection, const Interrupter& interrupter);

    /// An output of Selection::outputs, by its place there, is done. Seconds on the clock since the one
    /// before it, or since the start. Comes inside run(), from an engine's callback: it doesn't throw.
    std::function<void(int place, const Result& result, double seconds)> onOutput;
    /// How far run() has come. Comes inside it, and doesn't throw.
    std::function<void(int percent)> onProgress;

    /// Computes each output once with the values as they are. Throws Failure; a generation that was
    /// interrupted is none, but outputs are missing then.
    void run();

private:
    void take(quint32 index, const Result& result);

    void wantedOutputs(std::set<quint32>&) override {}
    void requiredOutputs(std::set<quint32>& uids) override;
    void updateTimeline() override {}
    void pushInputs(Zph::Applications::Player::InputSink& engine) override;
    void pinnedInputs(std::list<std::size_t>&) override {}
    void generationStarts(std::size_t) override { m_clock.start(); }

    const Package& m_package;
    Selection& m_selection;
    const Interrupter& m_interrupter;
    Zph::Applications::Player::GenerationStep m_step;
    Zph::Applications::Player::Cache m_cache;
    QElapsedTimer m_clock;
    QVector<bool> m_isDone; // by place
    QString m_error;
    QObject m_connections; // ends them with the object
};

} // namespace vellor::tool
