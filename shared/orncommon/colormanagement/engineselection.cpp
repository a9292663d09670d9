#include "orncommon/colormanagement/engineselection.h"

#include "orncommon/colormanagement/legacycolormanagementengine.h"
#include "orncommon/colormanagement/linearsrgbtosrgbcolorspacetransform.h"
#include "orncommon/colormanagement/noopcolorspacetransform.h"
#include "orncommon/core/scopedsettings.h"

#include <exception>

namespace Orn::ColorManagement {

using Settings = QSharedPointer<Core::ISettings>;
using Logger = std::shared_ptr<ILogger const>;

namespace {

std::string wantedEngine(Settings const& settings)
{
    QString const legacy = QString::fromStdString(LegacyColorManagementEngine::getLegacyName());
    if (settings.isNull())
        return legacy.toStdString();
    Core::ScopedSettingsBeginGroup const group(settings, QStringLiteral("preferences/colormanagement"));
    return settings->value(QStringLiteral("colorManagementEngine"), legacy).toString().toStdString();
}

std::shared_ptr<ColorManagementEngine> createForeign(std::string const& name, Settings const& settings,
                                                     Logger const& logger,
                                                     std::vector<EngineFactory> const& factories)
{
    for (EngineFactory const& factory : factories) {
        if (factory.name != name)
            continue;
        try {
            return factory.create(settings, logger);
        } catch (std::exception const&) {
            return nullptr; // what went wrong is told once, by the caller
        }
    }
    return nullptr;
}

std::shared_ptr<ColorManagementEngine> createLegacy(Logger const& logger)
{
    logger->logInfo("Using the legacy color management engine.");
    auto engine = std::make_shared<LegacyColorManagementEngine>(logger);
    engine->init();
    return engine;
}

} // namespace

EngineSelection selectColorManagementEngine(Settings const& settings, Logger const& logger,
                                            std::vector<EngineFactory> const& factories)
{
    EngineSelection selection;
    std::string const wanted = wantedEngine(settings);
    if (wanted != LegacyColorManagementEngine::getLegacyName()) {
        selection.engine = createForeign(wanted, settings, logger, factories);
        if (!selection.engine)
            logger->logError("Error while creating the color management engine. "
                             "Continuing with the legacy engine.");
    }
    bool const isLegacy = !selection.engine;
    if (isLegacy)
        selection.engine = createLegacy(logger);
    selection.workingSpaceToDisplay = selection.engine->getWorkingSpaceToDisplayTransform();
    selection.workingSpaceToColorPicking = selection.engine->getWorkingSpaceToColorPickingTransform();
    selection.colorPickingToWorkingSpace = selection.engine->getColorPickingToWorkingSpaceTransform();
    selection.thumbnail = selection.engine->getThumbnailTransform();
    selection.linearToDisplay =
        isLegacy ? LinearsRGBTosRGBColorSpaceTransform::create() : NoOpColorSpaceTransform::create();
    return selection;
}

} // namespace Orn::ColorManagement
