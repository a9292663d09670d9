#pragma once

#include "orncommon/image/task/surfacetaskscheduler.h"

namespace Orn::Image::Core {

/// Owns tasks and runs them, one after the other, off the thread that asks for them. Whoever ends the job
/// cancels what has not begun.
class SurfaceJob
{
public:
    SurfaceJob() : m_queue(SurfaceTaskScheduler::makeQueue()) {}
    virtual ~SurfaceJob() { m_queue->cancel(); }
    SurfaceJob(SurfaceJob const&) = delete;
    SurfaceJob& operator=(SurfaceJob const&) = delete;

protected:
    void start(QSharedPointer<SurfaceTask> const& task) { m_queue->push(task); }
    void cancelAll() { m_queue->cancel(); }

private:
    std::shared_ptr<SurfaceTaskScheduler::Queue> m_queue;
};

} // namespace Orn::Image::Core
