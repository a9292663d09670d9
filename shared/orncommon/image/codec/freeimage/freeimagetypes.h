#pragma once

struct FIBITMAP;
struct FreeImageIO;

/// FreeImage's own header stays inside the sources. Its enumerations have no fixed type and can't be declared
/// ahead, so that the headers of this folder pass them as the integers that they are.
namespace Orn::Image::Codec {

using FreeImageFormat = int; ///< a FREE_IMAGE_FORMAT: which plug-in
using FreeImageType = int;   ///< a FREE_IMAGE_TYPE: what the pixels of a bitmap are

} // namespace Orn::Image::Codec
