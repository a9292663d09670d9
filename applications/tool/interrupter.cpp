#include "applications/tool/interrupter.h"

#include "applications/player/session/engine.h"

#include <chrono>
#include <csignal>

namespace vellor::tool {

namespace {

constexpr auto kLookAgain = std::chrono::milliseconds(5);

std::atomic<int> lastSignal{0};
static_assert(std::atomic<int>::is_always_lock_free, "set from a signal handler");

void remember(int number)
{
    lastSignal = number;
}

void handle(int number, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    sigaction(number, &action, nullptr);
}

} // namespace

Interrupter::Interrupter(Zph::Applications::Player::Engine& engine)
    : m_engine(engine), m_thread([this] { watch(); })
{
    handle(SIGINT, remember);
    handle(SIGTERM, remember);
}

Interrupter::~Interrupter()
{
    m_done = true;
    m_thread.join();
    handle(SIGINT, SIG_DFL);
    handle(SIGTERM, SIG_DFL);
}

int Interrupter::signal()
{
    return lastSignal;
}

void Interrupter::watch()
{
    while (!m_done) {
        if (lastSignal != 0)
            m_flag = true;
        if (m_flag)
            m_engine.stop();
        std::this_thread::sleep_for(kLookAgain);
    }
}

} // namespace vellor::tool
