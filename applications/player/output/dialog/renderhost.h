#pragma once

#include "applications/player/presets/presetdescription.h"

#include <memory>

namespace Zph::Applications::Player {

class PackageModel;
struct PackageInput;

/// The document that an export is made of.
struct RenderDocument
{
    std::shared_ptr<const PackageModel> package; ///< null: there is none
    bool isTimeDependent = false;
    QString archiveFileName;   ///< of the package; it may be that there is no such file
    QString whyWithoutArchive; ///< empty where the package can be had as an archive
};

/// What the export dialog asks of the window. Called on the main thread.
class RenderHost
{
public:
    virtual ~RenderHost() = default;

    /// The values of a graph that aren't defaults.
    virtual PresetDescription valuesOf(const QString& graphKey) = 0;
    virtual InputValue valueOf(const PackageInput& input) const = 0;
    /// The name of the preset that was applied last; or empty.
    virtual QString lastPreset() const = 0;
    virtual bool isGenerating() const = 0;
    /// Asks a running generation to end soon.
    virtual void stopGeneration() = 0;
    virtual void status(const QString& text) = 0;
};

} // namespace Zph::Applications::Player
