#pragma once

#include <QString>

#include <vellor/profile.h>

#include <vector>

namespace vellor::tool {

/// One step of a generation, as VellorProfileStep tells it, on its own.
struct ProfileStep
{
    VellorProfileStep record{}; // its strings are not to be read
    QString name, kind;
};

/// Has the engine tell what each step of a session costs, for as long as it lives.
class Profiler
{
public:
    explicit Profiler(VellorHandle* handle);
    ~Profiler();
    Profiler(const Profiler&) = delete;
    Profiler& operator=(const Profiler&) = delete;

    /// Whether the engine tells at all.
    bool isAvailable() const { return m_isAvailable; }
    const std::vector<ProfileStep>& steps() const { return m_steps; }

private:
    static void onStep(VellorHandle* handle, const VellorProfileStep* step, void* user);

    VellorHandle* m_handle;
    VellorHandleSetProfileFn m_setProfile;
    bool m_isAvailable = false;
    std::vector<ProfileStep> m_steps;
};

} // namespace vellor::tool
