#include "applications/tool/generator.h"

#include "applications/tool/failure.h"
#include "applications/tool/interrupter.h"
#include "applications/tool/package.h"

#include <algorithm>

namespace vellor::tool {

using namespace Zph::Applications::Player;

Generator::Generator(const Package& package, Selection& selection, const Interrupter& interrupter)
    : m_package(package), m_selection(selection), m_interrupter(interrupter)
{
    QObject::connect(&package.engine(), &Engine::outputCompleteCallback, &m_connections,
                     [this](ORNUInt32 index, const Result& result) { take(index, result); });
    QObject::connect(&package.engine(), &Engine::errorCallback, &m_connections,
                     [this](const QString& message) { m_error = message; });
    QObject::connect(&package.engine(), &Engine::progressCallback, &m_connections, [this](int percent) {
        if (onProgress)
            onProgress(percent);
    });
}

void Generator::run()
{
    m_isDone.fill(false, m_selection.outputs.size());
    m_error.clear();
    m_cache.clear();
    const GenerationStep::Report report = m_step.run(&m_package.engine(), m_cache, *this);
    if (m_interrupter.isRequested())
        return;
    if (!report.outputsPushed || !m_error.isEmpty())
        throw Failure(Failed, m_package.file() + ": " +
                                  (m_error.isEmpty() ? "the engine refuses the outputs" : m_error));
    const int missing = m_isDone.indexOf(false);
    if (missing >= 0)
        throw Failure(Failed, m_package.file() + ": the engine gave no result for the output '" +
                                  m_selection.outputs[missing].label + "'");
}

void Generator::take(quint32 index, const Result& result)
{
    const double seconds = double(m_clock.nsecsElapsed()) * 1e-9;
    const auto found = std::find_if(m_selection.outputs.cbegin(), m_selection.outputs.cend(),
                                    [&](const PackageOutput& output) { return output.index == int(index); });
    if (found == m_selection.outputs.cend() || m_interrupter.isRequested())
        return;
    const int place = int(found - m_selection.outputs.cbegin());
    m_isDone[place] = true;
    if (onOutput)
        onOutput(place, result, seconds);
    m_clock.start(); // what is done with the result is not the generation's time
}

void Generator::requiredOutputs(std::set<quint32>& uids)
{
    for (const PackageOutput& output : m_selection.outputs)
        uids.insert(output.uid);
}

void Generator::pushInputs(InputSink& engine)
{
    m_selection.values.push(engine);
}

} // namespace vellor::tool
