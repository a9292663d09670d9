#include "benchmarks/exportparts.h"

#include "applications/player/output/framerange.h"
#include "applications/player/output/picturefile.h"
#include "applications/player/output/taskqueue.h"
#include "applications/player/session/engine.h"
#include "applications/player/session/enginerecords.h"
#include "common/engine/backend.h"

#include <QBuffer>
#include <QDomDocument>

#include <cmath>

using namespace Zph::Applications::Player;

namespace {

void pushEach(const PackageModel& package, const QString& identifier, const InputValue& value,
              const std::function<void(const PackageInput&, const InputValue&)>& push)
{
    for (const PackageInput& input : package.inputs())
        if (input.element.attribute(QStringLiteral("identifier")) == identifier)
            push(input, value);
}

} // namespace

int ExportJob::sizeExponent() const
{
    return std::ilogb(side);
}

ExportParts::ExportParts(const ExportJob& job, quint32 flags)
    : m_job(job), m_linked(Packages::path(job.package)), m_alone(m_linked.binary(), 0, flags)
{
    QByteArray bytes = m_linked.binary();
    QBuffer binary(&bytes);
    binary.open(QIODevice::ReadOnly);
    Engine engine(nullptr, binary);
    readPackage(engine);
    keepPictures(engine);
}

void ExportParts::readPackage(Engine& engine)
{
    const EngineRecords records = readEngineRecords(engine.handleOrNull());
    QDomDocument description;
    m_linked.linker().takeDescription(description);
    m_package = PackageModel(records.inputs, records.outputs, description);
    for (const PackageOutput& output : m_package.outputs())
        if (output.type == VELLOR_TYPE_IMAGE &&
            (m_job.outputs.isEmpty() || m_job.outputs.contains(output.identifier)))
            m_uids.push_back(output.uid);
}

void ExportParts::keepPictures(Engine& engine)
{
    QObject::connect(
        &engine, &Engine::outputCompleteCallback,
        [this](ORNUInt32, const ValueOrSurfacePlayer& result) { m_pictures << result.surface(); });
    const Push push = [&](const PackageInput& input, const InputValue& value) {
        engine.pushInput(input.index, input.type, value.words.data());
    };
    setSize(push);
    eachFrame(push, [&] {
        Zph::Engine::handlePushOutputs(engine.handleOrNull(), VELLOR_PUSH_UIDS, m_uids.data(),
                                       quint32(m_uids.size()), &engine);
        engine.start();
    });
}

void ExportParts::setSize(const Push& push) const
{
    const int exponent = m_job.sizeExponent();
    pushEach(m_package, QStringLiteral("$outputsize"), InputValue::fromInts(exponent, exponent), push);
}

void ExportParts::eachFrame(const Push& push, const std::function<void()>& generate) const
{
    const FrameRange range;
    for (int frame = 0; frame < m_job.frames; ++frame) {
        pushEach(m_package, QStringLiteral("$time"), InputValue::fromFloats(float(range.seconds(frame))),
                 push);
        generate();
    }
}

Span ExportParts::generate(const EngineAlone::Uids& before)
{
    const Push push = [this](const PackageInput& input, const InputValue& value) {
        m_alone.push(input.index, input.type, value);
    };
    m_alone.restart();
    setSize(push);
    if (!before.empty())
        m_alone.generate(before);
    return Comparison::time([&] { eachFrame(push, [this] { m_alone.generate(m_uids); }); });
}

Span ExportParts::encode(std::size_t encoders)
{
    const PictureFileOptions options{m_job.format};
    return Comparison::time([&] {
        TaskQueue queue(encoders, waitingPictures);
        for (int number = 0; number < m_pictures.size(); ++number)
            queue.post([&, number] {
                const QString path = m_folder.filePath(QStringLiteral("%1.%2").arg(number).arg(m_job.format));
                if (const PictureFileError error = writePictureFile(m_pictures[number], path, options))
                    qFatal("%s", qPrintable(error.text));
            });
    });
}
