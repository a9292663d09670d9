#pragma once

#include "orncommon/colormanagement/colormanagementengine.h"
#include "orncommon/colormanagement/ilogger.h"

namespace Orn::ColorManagement {

/// The engine without a library: everything is sRGB, images are used as they stand and shown as they are.
/// Beside "sRGB" it knows "Linear sRGB", from which it can transform. Embedded profiles are not looked at.
class LegacyColorManagementEngine : public ColorManagementEngine
{
public:
    explicit LegacyColorManagementEngine(std::shared_ptr<ILogger const> logger);

    /// Its name in the settings.
    static std::string getLegacyName() { return "legacy"; }

protected:
    void doInit() override;
    std::string doGetWorkingColorSpaceName() const override;
    std::string doGetDefaultColorSpaceName() const override;
    std::string doGetDefaultColorSpaceForImage(std::string const& fileName, Surfaces::PixelFormat format,
                                               bool isColor) const override;
    std::string doGetDefaultDisplay() const override;
    std::string doGetDefaultView(std::string const& display) const override;
    SharedColorSpaceTransform doCreateTransform(std::string const& from,
                                                std::string const& to) const override;
    SharedColorSpaceTransform doCreateICCProfileDataToWorkingSpaceTransform(unsigned char const* data,
                                                                            unsigned int size) const override;
    bool doValidateICCProfileData(unsigned char const* data, unsigned int size) const override;
    std::string doGetICCProfileDescriptionFromData(unsigned char const* data,
                                                   unsigned int size) const override;
    SharedColorSpaceTransform doGetWorkingSpaceToDisplay() const override;
    SharedColorSpaceTransform doGetWorkingSpaceToPicking() const override;
    SharedColorSpaceTransform doGetPickingToWorkingSpace() const override;
    std::shared_ptr<ThumbnailTransform const> doGetThumbnailTransform() const override;

private:
    std::shared_ptr<ILogger const> m_logger;
    SharedColorSpaceTransform m_identity;
    SharedColorSpaceTransform m_encoding;
    std::shared_ptr<ThumbnailTransform const> m_thumbnail;
};

} // namespace Orn::ColorManagement
