#pragma once

#include <QString>

namespace Zph::Applications::Player {

/// The version record of the linker or of the cooker as a line: numbers, label, hash and date.
template<typename Version> QString libraryVersionText(const Version& version)
{
    return QStringLiteral("%1.%2.%3 %4 0x%5 %6")
        .arg(version.versionMajor)
        .arg(version.versionMinor)
        .arg(version.versionPatch)
        .arg(QString::fromUtf8(version.label))
        .arg(version.buildHash, 8, 16, QLatin1Char('0'))
        .arg(QString::fromUtf8(version.date));
}

} // namespace Zph::Applications::Player
