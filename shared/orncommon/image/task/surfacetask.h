#pragma once

#include "orncommon/image/surfaceoperations.h"

#include <QReadWriteLock>

#include <atomic>
#include <functional>

namespace Orn::Image::Core {

/// A unit of work that ends in a surface. It is run once, by whatever thread; its surface may be read from
/// all threads.
class SurfaceTask
{
public:
    /// The surface of a task, which stays what it is while this lives. Null before the task has run, where it
    /// was cancelled, and where it failed.
    class ReadAccess
    {
    public:
        explicit ReadAccess(SurfaceTask const& task) : m_locker(&task.m_lock), m_surface(task.m_surface) {}
        SharedSurface const& surface() const { return m_surface; }

    private:
        QReadLocker m_locker;
        SharedSurface m_surface;
    };

    virtual ~SurfaceTask() = default;

    /// Does the work, unless it was done or cancelled before; returns when it is done.
    void run();

    /// Any thread. Work that has begun may look at isCancelled(), and its surface is dropped.
    void cancel() { m_isCancelled = true; }
    bool isCancelled() const { return m_isCancelled; }

protected:
    /// The surface, which may be null. Called without a lock.
    virtual SharedSurface work() = 0;

private:
    mutable QReadWriteLock m_lock;
    SharedSurface m_surface;
    std::atomic<bool> m_hasBegun{false};
    std::atomic<bool> m_isCancelled{false};
};

/// A task of a function, which is called once and then dropped with what it holds.
QSharedPointer<SurfaceTask> makeSurfaceTask(std::function<SharedSurface()> work);

} // namespace Orn::Image::Core
