#include "orncommon/image/task/surfacetask.h"

#include <utility>

namespace Orn::Image::Core {

namespace {

class FunctionTask : public SurfaceTask
{
public:
    explicit FunctionTask(std::function<SharedSurface()> work) : m_work(std::move(work)) {}

protected:
    SharedSurface work() override
    {
        auto const taken = std::move(m_work);
        return taken ? taken() : SharedSurface();
    }

private:
    std::function<SharedSurface()> m_work;
};

} // namespace

void SurfaceTask::run()
{
    if (isCancelled() || m_hasBegun.exchange(true))
        return;
    SharedSurface made = work();
    QWriteLocker const locker(&m_lock);
    if (!isCancelled())
        m_surface = std::move(made);
}

QSharedPointer<SurfaceTask> makeSurfaceTask(std::function<SharedSurface()> work)
{
    return QSharedPointer<FunctionTask>::create(std::move(work));
}

} // namespace Orn::Image::Core
