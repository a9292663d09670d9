#pragma once

#include "applications/player/output/exportsettings.h"

#include <optional>

namespace Zph::Applications::Player {

// Whoever has the settings of exports, as far as presets deal with them: the export dialog. Main thread.
class ExportSettingsHolder
{
public:
    virtual ~ExportSettingsHolder() = default;

    // What a preset is to carry; nothing as long as there is nothing to export.
    virtual std::optional<ExportSettings> exportSettings() const = 0;

    // Takes the settings that a preset carries. What doesn't fit the package is left out: an unknown format,
    // uids of no output.
    virtual void applyExportSettings(const ExportSettings& settings) = 0;
};

} // namespace Zph::Applications::Player
