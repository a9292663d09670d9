#pragma once

#include <QList>
#include <QSharedPointer>
#include <QString>

namespace Orn::Core::Log {

/// A tree of messages, as a library reports the steps of a longer work.
struct Msg
{
    enum Type
    {
        None = 0,
        Information = 1,
        Success = 2,
        Alert = 3,
        Failure = 4
    };

    QString text;
    Type type = None;
    QList<QSharedPointer<Msg>> children;
};

} // namespace Orn::Core::Log
