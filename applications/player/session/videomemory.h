#pragma once

#include <QByteArray>

class QIODevice;

namespace Zph::Applications::Player::VideoMemory {

/// The total video memory, 0 when it is not known. Asked once in a process: the first caller may wait for up
/// to 30 seconds. From the graphics driver's tool it is in bytes; from the X server's log it is the number
/// found there, which is kilobytes, and those who share it out take both alike.
quint64 total();

/// The answer of the driver's tool, which is a count of megabytes, in bytes; 0 for anything else.
quint64 fromDriverTool(const QByteArray& answer);

/// The number in the first line of the X server's log that tells the memory; 0 if there is none.
quint64 fromServerLog(QIODevice& log);

} // namespace Zph::Applications::Player::VideoMemory
