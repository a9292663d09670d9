#pragma once

namespace Orn::Image::Codec {

class SurfaceCodecManager;

/// Registers the program's factories in their order: DDS data without compression, DDS data in compressed
/// blocks, which FreeImage doesn't all decode, then all formats of FreeImage.
void registerDefaultCodecs(SurfaceCodecManager& manager);

} // namespace Orn::Image::Codec
