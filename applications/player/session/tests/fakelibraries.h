#pragma once

#include <QByteArray>
#include <QStringList>

namespace Zph::Applications::Player::Tests {

/// What the fake cooker and the fake linker shall do, and what they were told.
struct FakeLibraries
{
    QStringList calls;
    /// The call of this name, without arguments, fails with the code.
    QString failingCall;
    quint32 code = 0;
    /// Given to the linker's XML callback.
    QList<QByteArray> descriptions;
    QByteArray message; ///< given to both message callbacks, with level 1

    /// Fresh for each test.
    static FakeLibraries& instance();
    static void reset() { instance() = FakeLibraries(); }
};

} // namespace Zph::Applications::Player::Tests
