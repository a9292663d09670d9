#pragma once

#include "applications/player/metadata/exportplan.h"
#include "applications/player/output/taskqueue.h"
#include "applications/player/session/valueorsurfaceplayer.h"

#include <QObject>

#include <atomic>
#include <functional>
#include <memory>
#include <set>

namespace Zph::Applications::Player {

/// One export under way: which outputs of the frame at hand are still wanted of the engine, and the files on
/// their way to the disk. Files are packed and encoded on threads of their own while the engine goes on; few
/// pictures wait for that. Main thread, and every signal comes there, from the event loop.
class ExportRun : public QObject
{
    Q_OBJECT

public:
    ExportRun(std::shared_ptr<const PackageModel> package, const QVector<PackageOutput>& outputs,
              const ExportChoices& choices, MetadataWriter::Package made);
    /// Cancels, and waits for the files at the encoders.
    ~ExportRun() override;
    /// Cancels a run that nobody waits for: some formats are encoded in memory, which nothing stops. Nothing
    /// more is heard of it, none of its files is written any more, and it goes when its encoders are done, or
    /// with its new owner.
    static void abandon(std::unique_ptr<ExportRun> run, QObject* owner);

    /// Called again and again while take() waits for the encoder.
    std::function<void()> onWait;

    /// From frame 0 up, each once.
    void startFrame(int frame);
    /// Adds what the engine still owes of this frame. From then on isAsked().
    void required(std::set<quint32>& uids);
    bool isAsked() const { return m_isAsked; }
    /// A generation is over: what it did not give must be asked for anew.
    void setUnasked() { m_isAsked = false; }
    /// Takes a picture that was required, and no other.
    void take(quint32 uid, const ValueOrSurfacePlayer& result);
    /// Whether the engine still owes something of the frame.
    bool missing() const { return !m_missing.empty(); }
    /// Gives up on what is missing, and tells what it is.
    QStringList giveUp();
    /// The engine owes nothing more.
    bool isGenerated() const { return !missing() && m_frame + 1 == frameCount(); }

    void cancel() { m_isCancelled = true; }
    bool isCancelled() const { return m_isCancelled; }

    int frame() const { return m_frame; }
    int frameCount() const { return m_plan.frameCount(); }
    int outputCount() const { return int(m_plan.outputs().size()); }
    float seconds() const { return float(m_plan.seconds(m_frame)); }
    int delivered() const { return outputCount() - int(m_missing.size()); }
    /// Of a frame.
    int fileCount() const { return m_plan.fileCount(); }
    /// Files that are done, well or not.
    int finishedFiles() const { return m_finished; }
    /// Files at the encoder, or waiting for it.
    int waitingFiles() const { return m_waiting; }

signals:
    /// Behind either of the next two.
    void fileDone();
    void written(const QString& path);
    void failed(const QString& path, const Zph::Applications::Player::PictureFileError& error);
    /// A result that is no picture.
    void invalid(const QString& name);

private:
    void post(int file, const ExportPlan::MakePicture& make);
    PictureFileError encode(const ExportPlan::File& file, const ExportPlan::MakePicture& make) const;
    void encoded(const QString& path, const PictureFileError& error);

    std::shared_ptr<const PackageModel> m_package;
    std::atomic<bool> m_isCancelled{false};
    ExportPlan m_plan;
    std::set<int> m_missing; // places
    int m_frame = 0;
    bool m_isAsked = false;
    int m_waiting = 0;
    int m_finished = 0;
    TaskQueue m_queue; // last, so that it ends first
};

} // namespace Zph::Applications::Player
