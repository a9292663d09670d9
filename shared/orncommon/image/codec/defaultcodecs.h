#pragma once

namespace Orn::Image::Codec {

class SurfaceCodecManager;

/// Registers the program's factories in their order: block-compressed DDS data, then all formats of
/// FreeImage, which would otherwise answer for DDS data that it can't decode.
void registerDefaultCodecs(SurfaceCodecManager& manager);

} // namespace Orn::Image::Codec
