#pragma once

#include <atomic>
#include <thread>

namespace Zph::Applications::Player {
class Engine;
}

namespace vellor::tool {

/// Ends the work early: on Ctrl-C or a request to terminate, or when a part of it finds that the rest is in
/// vain. The engine is told to stop, again and again, for a generation may be about to start; whoever writes
/// files looks at flag(). A second signal ends the process at once. One at a time.
class Interrupter
{
public:
    explicit Interrupter(Zph::Applications::Player::Engine& engine);
    ~Interrupter();
    Interrupter(const Interrupter&) = delete;
    Interrupter& operator=(const Interrupter&) = delete;

    /// Any thread.
    void request() { m_flag = true; }
    bool isRequested() const { return m_flag; }
    const std::atomic<bool>& flag() const { return m_flag; }

    /// The signal that came; 0 for none.
    static int signal();

private:
    void watch();

    Zph::Applications::Player::Engine& m_engine;
    std::atomic<bool> m_flag{false}, m_done{false};
    std::thread m_thread;
};

} // namespace vellor::tool
