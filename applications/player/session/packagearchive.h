#pragma once

#include <QByteArray>

namespace Zph::Applications::Player {

/// The bytes of an archive (.vlrar) of an assembly and its description; the same ones give the same bytes.
/// Empty when it can't be put together.
QByteArray packArchive(const QByteArray& assembly, const QByteArray& description);

} // namespace Zph::Applications::Player
