#pragma once

#include "orncommon/colormanagement/colormanagementengine.h"
#include "orncommon/colormanagement/ilogger.h"
#include "orncommon/core/isettings.h"

#include <QSharedPointer>

#include <functional>
#include <vector>

namespace Orn::ColorManagement {

/// How an engine other than the legacy one comes to be. `create` makes it, logs that it is in use and calls
/// `init()`; null or a std::exception mean that it can't be had.
struct EngineFactory
{
    using Create = std::function<std::shared_ptr<ColorManagementEngine>(
        QSharedPointer<Core::ISettings> const&, std::shared_ptr<ILogger const> const&)>;

    std::string name; ///< its value in the settings: "ocio", "kce"
    Create create;
};

/// An engine in place, with the transforms that its users keep.
struct EngineSelection
{
    std::shared_ptr<ColorManagementEngine> engine;
    SharedColorSpaceTransform workingSpaceToDisplay;
    SharedColorSpaceTransform workingSpaceToColorPicking;
    SharedColorSpaceTransform colorPickingToWorkingSpace;
    std::shared_ptr<ThumbnailTransform const> thumbnail;
    /// What rendered, linear values still need on their way to the display: the sRGB curve under the legacy
    /// engine, nothing under another.
    SharedColorSpaceTransform linearToDisplay;
};

/// Reads "colorManagementEngine" of the group "preferences/colormanagement" ("legacy" when it is not set) and
/// makes that engine. Whatever goes wrong, a name that no factory has included, is one error in the log and
/// gives the legacy engine. `settings` may be null.
EngineSelection selectColorManagementEngine(QSharedPointer<Core::ISettings> const& settings,
                                            std::shared_ptr<ILogger const> const& logger,
                                            std::vector<EngineFactory> const& factories);

} // namespace Orn::ColorManagement
