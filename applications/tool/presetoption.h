#pragma once

#include "applications/tool/options.h"

#include <QString>

namespace vellor::tool {

class Package;
struct Selection;

/// Applies what `--preset` names: to each selected graph the one that was made for it. A preset of a file
/// that was made for none of them goes to all that know one of its inputs. Throws UsageError where there is
/// none, and Failure for a file that can't be read.
void applyPreset(const QString& option, const Package& package, Selection& selection);

extern const Option kSavePreset;

/// Writes what kSavePreset names: the values of each selected graph, in the place of a preset of that graph
/// and label in the file, or behind those there. Throws UsageError where all values are defaults, and
/// Failure.
void savePreset(const QString& option, const Selection& selection);

} // namespace vellor::tool
