#pragma once

#include "applications/player/packing/packingtemplate.h"
#include "applications/tool/options.h"

namespace vellor::tool {

class Package;
struct RenderSettings;
struct Selection;

extern const Option kTemplate;

/// The template that a name or a path of a file (".json") stands for. Throws UsageError where there is none,
/// and Failure for a file that is no template.
Zph::Applications::Player::PackingTemplate findTemplate(const QString& nameOrFile);

/// Does what kTemplate asks for, if it was given: plans the files, leaves in the selection the outputs that
/// they need, and prints the notes. Throws UsageError and Failure.
void applyTemplate(const Arguments& arguments, const Package& package, Selection& selection,
                   RenderSettings& settings);

} // namespace vellor::tool
