#pragma once

#include "orncommon/core/logmanager.h"

namespace Orn::Core::Log {

/// Adds a delegate to the process's log manager for its own lifetime.
class ScopedPushLogDelegate
{
public:
    explicit ScopedPushLogDelegate(const QSharedPointer<AbstractDelegate>& delegate) : m_delegate(delegate)
    {
        LogManager::instance().addDelegate(m_delegate);
    }
    ~ScopedPushLogDelegate() { LogManager::instance().removeDelegate(m_delegate); }
    ScopedPushLogDelegate(const ScopedPushLogDelegate&) = delete;
    ScopedPushLogDelegate& operator=(const ScopedPushLogDelegate&) = delete;

private:
    QSharedPointer<AbstractDelegate> m_delegate;
};

} // namespace Orn::Core::Log
