#include "exportrun.h"

#include <QThread>

namespace Zph::Applications::Player {

namespace {

constexpr std::chrono::milliseconds kPatience{20};

ExportChoices cancellable(ExportChoices choices, const std::atomic<bool>& flag)
{
    choices.picture.cancelled = &flag;
    return choices;
}

} // namespace

ExportRun::ExportRun(std::shared_ptr<const PackageModel> package, const QVector<PackageOutput>& outputs,
                     const ExportChoices& choices, MetadataWriter::Package made)
    : m_package(std::move(package)),
      m_plan(*m_package, outputs, cancellable(choices, m_isCancelled), std::move(made)),
      m_queue(encoderCount(QThread::idealThreadCount()), waitingPictures)
{
}

ExportRun::~ExportRun()
{
    cancel();
    m_queue.finish();
}

void ExportRun::startFrame(int frame)
{
    m_frame = frame;
    m_isAsked = false;
    m_plan.startFrame(frame);
    for (int place = 0; place < outputCount(); ++place)
        m_missing.insert(place);
}

void ExportRun::required(std::set<quint32>& uids)
{
    for (const int place : m_missing)
        uids.insert(m_plan.outputs()[place].uid);
    m_isAsked = !m_missing.empty();
}

void ExportRun::take(quint32 uid, const ValueOrSurfacePlayer& result)
{
    for (const int place : m_missing) {
        const PackageOutput& output = m_plan.outputs()[place];
        if (output.uid != uid)
            continue;
        m_missing.erase(place);
        if (result.isSurface())
            m_plan.take(place, result.surface(),
                        [this](int file, const ExportPlan::MakePicture& make) { post(file, make); });
        else
            emit invalid(output.label);
        return;
    }
}

void ExportRun::post(int file, const ExportPlan::MakePicture& make)
{
    const ExportPlan::File planned = m_plan.file(file);
    while (!isCancelled() && !m_queue.waitForRoom(kPatience))
        onWait();
    if (isCancelled())
        return;
    ++m_waiting;
    m_queue.post([this, make, planned] {
        const PictureFileError error = encode(planned, make);
        QMetaObject::invokeMethod(
            this, [this, path = planned.path, error] { encoded(path, error); }, Qt::QueuedConnection);
    });
}

PictureFileError ExportRun::encode(const ExportPlan::File& file, const ExportPlan::MakePicture& make) const
{
    if (isCancelled())
        return {tr("cancelled")};
    const auto picture = make();
    return picture ? file.write(picture) : PictureFileError{tr("there is no memory for the picture")};
}

void ExportRun::encoded(const QString& path, const PictureFileError& error)
{
    --m_waiting;
    ++m_finished;
    if (!error)
        emit written(path);
    else if (!isCancelled())
        emit failed(path, error);
    emit fileDone();
}

void ExportRun::abandon(std::unique_ptr<ExportRun> run, QObject* owner)
{
    if (!run || run->m_waiting == 0)
        return;
    ExportRun* left = run.release();
    left->cancel();
    left->disconnect();
    left->setParent(owner);
    connect(left, &ExportRun::fileDone, left, [left] {
        if (left->m_waiting == 0)
            left->deleteLater();
    });
}

QStringList ExportRun::giveUp()
{
    QStringList names;
    for (const int place : m_missing)
        names << m_plan.outputs()[place].label;
    m_missing.clear();
    return names;
}

} // namespace Zph::Applications::Player
