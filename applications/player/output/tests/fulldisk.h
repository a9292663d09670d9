#pragma once

#include <QtGlobal>

#include <csignal>

#include <sys/resource.h>

namespace Zph::Applications::Player::Tests {

/// As long as it lives, no file of this process can grow beyond so many bytes, as if its disk were full.
class FullDisk
{
public:
    explicit FullDisk(qint64 bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{rlim_t(bytes), m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit m_before = {};
    void (*m_handler)(int);
};

} // namespace Zph::Applications::Player::Tests
