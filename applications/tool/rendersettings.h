#pragma once

#include "applications/player/metadata/metadatachoices.h"
#include "applications/player/output/picturefile.h"
#include "applications/player/packing/packingplan.h"
#include "applications/tool/options.h"

namespace vellor::tool {

/// What `vellor render` does with the pictures.
struct RenderSettings
{
    QString folder;  // empty: no file is written
    QString pattern; // empty: the usual one
    QString format;  // an extension; of files of `packing` that state none
    Zph::Applications::Player::PictureDepth depth = Zph::Applications::Player::PictureDepth::OfPicture;
    bool isAnimation = false;
    int firstFrame = 0;
    int lastFrame = 0;
    double framesPerSecond = 30.0;
    Zph::Applications::Player::MetadataChoices metadata;
    Zph::Applications::Player::PackingPlan packing; // without files, each output is one
    bool wantsHashes = false;
    int encoders = 1; // threads that encode files while the next outputs are generated; 0: between them
};

/// The options that readRenderSettings() reads.
const std::vector<Option>& renderOptions();

/// The codecs are registered before. Throws UsageError.
RenderSettings readRenderSettings(const Arguments& arguments);

} // namespace vellor::tool
