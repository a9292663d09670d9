#pragma once

#include "orncommon/colormanagement/colorspacetransform.h"
#include "orncommon/colormanagement/thumbnailtransform.h"

#include <memory>
#include <string>

namespace Orn::ColorManagement {

/// What the working colour space is, how images get into it, and how it reaches the display.
///
/// Held in a std::shared_ptr. `init()` is called once, before anything else; then the engine never changes
/// and any thread may ask it. Names are UTF-8.
class ColorManagementEngine
{
public:
    virtual ~ColorManagementEngine() = default;
    ColorManagementEngine(ColorManagementEngine const&) = delete;
    ColorManagementEngine& operator=(ColorManagementEngine const&) = delete;

    /// Builds the engine's transforms. Throws a std::exception when its configuration does not do.
    void init() { doInit(); }

    std::string getWorkingColorSpaceName() const { return doGetWorkingColorSpaceName(); }

    /// What an image is assumed to be in when nothing is said.
    std::string getDefaultColorSpaceName() const { return doGetDefaultColorSpaceName(); }

    /// What an image gets by default: by its file name, its format, and whether it holds colours rather than
    /// data.
    std::string getDefaultColorSpaceForImage(std::string const& fileName, Surfaces::PixelFormat format,
                                             bool isColor) const
    {
        return doGetDefaultColorSpaceForImage(fileName, format, isColor);
    }

    std::string getDefaultDisplay() const { return doGetDefaultDisplay(); }
    std::string getDefaultView(std::string const& display) const { return doGetDefaultView(display); }

    /// Null when the engine does not know one of the names.
    SharedColorSpaceTransform createTransform(std::string const& from, std::string const& to) const
    {
        return doCreateTransform(from, to);
    }

    /// From the profile that a file carries. Null when the engine can't use it.
    SharedColorSpaceTransform createICCProfileDataToWorkingSpaceTransform(unsigned char const* data,
                                                                          unsigned int size) const
    {
        return doCreateICCProfileDataToWorkingSpaceTransform(data, size);
    }
    bool validateICCProfileData(unsigned char const* data, unsigned int size) const
    {
        return doValidateICCProfileData(data, size);
    }
    std::string getICCProfileDescriptionFromData(unsigned char const* data, unsigned int size) const
    {
        return doGetICCProfileDescriptionFromData(data, size);
    }

    /// Never null, as the three below.
    SharedColorSpaceTransform getWorkingSpaceToDisplayTransform() const
    {
        return doGetWorkingSpaceToDisplay();
    }
    SharedColorSpaceTransform getWorkingSpaceToColorPickingTransform() const
    {
        return doGetWorkingSpaceToPicking();
    }
    SharedColorSpaceTransform getColorPickingToWorkingSpaceTransform() const
    {
        return doGetPickingToWorkingSpace();
    }
    std::shared_ptr<ThumbnailTransform const> getThumbnailTransform() const
    {
        return doGetThumbnailTransform();
    }

    /// Stands for the file's own profile in lists of colour spaces.
    static std::string getUseEmbedColorSpaceOptionName() { return "use_embedded_profile"; }

protected:
    ColorManagementEngine() = default;

    virtual void doInit() = 0;
    virtual std::string doGetWorkingColorSpaceName() const = 0;
    virtual std::string doGetDefaultColorSpaceName() const = 0;
    virtual std::string doGetDefaultColorSpaceForImage(std::string const& fileName,
                                                       Surfaces::PixelFormat format, bool isColor) const = 0;
    virtual std::string doGetDefaultDisplay() const = 0;
    virtual std::string doGetDefaultView(std::string const& display) const = 0;
    virtual SharedColorSpaceTransform doCreateTransform(std::string const& from,
                                                        std::string const& to) const = 0;
    virtual SharedColorSpaceTransform
    doCreateICCProfileDataToWorkingSpaceTransform(unsigned char const* data, unsigned int size) const = 0;
    virtual bool doValidateICCProfileData(unsigned char const* data, unsigned int size) const = 0;
    virtual std::string doGetICCProfileDescriptionFromData(unsigned char const* data,
                                                           unsigned int size) const = 0;
    virtual SharedColorSpaceTransform doGetWorkingSpaceToDisplay() const = 0;
    virtual SharedColorSpaceTransform doGetWorkingSpaceToPicking() const = 0;
    virtual SharedColorSpaceTransform doGetPickingToWorkingSpace() const = 0;
    virtual std::shared_ptr<ThumbnailTransform const> doGetThumbnailTransform() const = 0;
};

} // namespace Orn::ColorManagement
