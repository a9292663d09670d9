#include "orncommon/colormanagement/legacycolormanagementengine.h"

#include "orncommon/colormanagement/linearsrgbtosrgbcolorspacetransform.h"
#include "orncommon/colormanagement/noopcolorspacetransform.h"

#include <utility>

namespace Orn::ColorManagement {

namespace {

constexpr char workingSpace[] = "sRGB";
constexpr char linearSpace[] = "Linear sRGB";

} // namespace

LegacyColorManagementEngine::LegacyColorManagementEngine(std::shared_ptr<ILogger const> logger)
    : m_logger(std::move(logger))
{
}

void LegacyColorManagementEngine::doInit()
{
    m_identity = NoOpColorSpaceTransform::create();
    m_encoding = LinearsRGBTosRGBColorSpaceTransform::create();
    m_thumbnail = std::make_shared<ThumbnailTransform>();
}

std::string LegacyColorManagementEngine::doGetWorkingColorSpaceName() const
{
    return workingSpace;
}

std::string LegacyColorManagementEngine::doGetDefaultColorSpaceName() const
{
    return workingSpace;
}

std::string LegacyColorManagementEngine::doGetDefaultColorSpaceForImage(std::string const&,
                                                                        Surfaces::PixelFormat, bool) const
{
    return workingSpace;
}

std::string LegacyColorManagementEngine::doGetDefaultDisplay() const
{
    return workingSpace;
}

std::string LegacyColorManagementEngine::doGetDefaultView(std::string const&) const
{
    return workingSpace;
}

SharedColorSpaceTransform LegacyColorManagementEngine::doCreateTransform(std::string const& from,
                                                                         std::string const& to) const
{
    bool const isKnown = from == workingSpace || from == linearSpace;
    if (isKnown && from == to)
        return m_identity;
    if (from == linearSpace && to == workingSpace)
        return m_encoding;
    m_logger->logWarning("No color transform from " + from + " to " + to);
    return nullptr;
}

SharedColorSpaceTransform
LegacyColorManagementEngine::doCreateICCProfileDataToWorkingSpaceTransform(unsigned char const*,
                                                                           unsigned int) const
{
    return m_identity;
}

bool LegacyColorManagementEngine::doValidateICCProfileData(unsigned char const*, unsigned int) const
{
    return false;
}

std::string LegacyColorManagementEngine::doGetICCProfileDescriptionFromData(unsigned char const*,
                                                                            unsigned int) const
{
    return {};
}

SharedColorSpaceTransform LegacyColorManagementEngine::doGetWorkingSpaceToDisplay() const
{
    return m_identity;
}

SharedColorSpaceTransform LegacyColorManagementEngine::doGetWorkingSpaceToPicking() const
{
    return m_identity;
}

SharedColorSpaceTransform LegacyColorManagementEngine::doGetPickingToWorkingSpace() const
{
    return m_identity;
}

std::shared_ptr<ThumbnailTransform const> LegacyColorManagementEngine::doGetThumbnailTransform() const
{
    return m_thumbnail;
}

} // namespace Orn::ColorManagement
