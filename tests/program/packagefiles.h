#pragma once

#include <QByteArray>
#include <QString>

namespace Zph::Applications::Player::Tests {

/// One of the packages beside the tests in every form that the window opens, made by the cooker and the
/// linker.
struct PackageFiles
{
    QByteArray authoring, assembly, description, binary, archive;

    /// `name` is that of the file, without its ending. Made once and kept. Needs a loaded engine the first
    /// time.
    static const PackageFiles& get(const QString& name);
    /// The form that goes by this suffix.
    const QByteArray& form(const QString& suffix) const;
};

QByteArray readFile(const QString& path);
/// Makes or replaces the file; the test fails if that can't be done.
void writeFile(const QString& path, const QByteArray& bytes);

} // namespace Zph::Applications::Player::Tests
