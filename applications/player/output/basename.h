#pragma once

#include "applications/player/description/packagemodel.h"

#include <QHash>
#include <QString>

#include <optional>

namespace Zph::Applications::Player {

// The language of file names for exported pictures. A pattern is text with tokens:
//
//   %O  output name    %G  graph name    %P  package name    %F  full package path, with %P and %G
//   %U  output usage   %I  output uid, 8 hexadecimal digits   %R  name of the last applied preset
//   ####               number of the frame, padded with zeros to as many digits as there are "#"
//
// Whatever is no letter or digit of ASCII in the result becomes "_", so that a name never makes folders.

// What the tokens stand for.
struct BaseNameSource
{
    QString path; // %F, and by its first and last section %P and %G
    QString name; // %O
    quint32 uid = 0;
    QString usage;  // as outputUsageText() writes it; %U is what stands behind its last "|"
    QString preset; // %R
};

// An output as a list for export names it: "pkg://bricks - 'Base Color' (id:basecolor)", or without a label
// "pkg://bricks - basecolor".
QString exportLabel(const PackageOutput& output);

// Takes such a label apart: path "bricks", name "Base Color".
BaseNameSource baseNameSource(const QString& label, quint32 uid, const QString& usage, const QString& preset);

// The pattern that is offered at first: `%G_%O` where all graphs have one path, else `%F_%O`; with a frame
// number for an animation.
QString defaultBaseNamePattern(const PackageModel& package, bool animation);

// The name for a pattern that isn't empty. `frame` is the number of the frame of an animation, which a
// pattern without
// "#" gets at its end; for a still, "#" stands for nothing. Negative frames count as 0. A pattern that comes
// to nothing gives the uid.
QString baseName(const QString& pattern, const BaseNameSource& source, std::optional<int> frame);

// The names of one export: a name that was given out before gets "[2]" behind it, then "[3]"...
class BaseNames
{
public:
    // A pattern of blanks alone is replaced by `standard`.
    BaseNames(const QString& pattern, const QString& standard);

    QString next(const BaseNameSource& source, std::optional<int> frame);

private:
    QString m_pattern;
    QHash<QString, int> m_counts;
};

} // namespace Zph::Applications::Player
