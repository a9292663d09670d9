#include "applications/tool/profiler.h"

#include "common/engine/backend.h"

namespace vellor::tool {

Profiler::Profiler(VellorHandle* handle)
    : m_handle(handle), m_setProfile(reinterpret_cast<VellorHandleSetProfileFn>(
                            Zph::Engine::optionalEntryPoint("vellorHandleSetProfile")))
{
    m_isAvailable = m_setProfile && m_setProfile(m_handle, &Profiler::onStep, this) == VELLOR_OK;
}

Profiler::~Profiler()
{
    if (m_isAvailable)
        m_setProfile(m_handle, nullptr, nullptr);
}

void Profiler::onStep(VellorHandle*, const VellorProfileStep* step, void* user)
{
    static_cast<Profiler*>(user)->m_steps.push_back(
        {*step, QString::fromUtf8(step->name), QString::fromUtf8(step->kind)});
}

} // namespace vellor::tool
