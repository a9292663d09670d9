#pragma once

#include "platform/engines/cpu/hash.h"
#include "platform/engines/cpu/pixelformat.h"
#include "platform/nodes/node.h"

#include <vellor/engine.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace vellor::cpu {

/// A picture that the host gave, in the host's format: level 0 of a texture, copied.
class HostImage
{
public:
    /// Null for a texture without buffer or size, or in a format that can't be read: JPEG, mobile, unknown
    /// codes, or once `stop` is set. Reads as many bytes as size and format make.
    static std::shared_ptr<const HostImage> copy(const VellorTexture& texture,
                                                 const std::atomic<bool>* stop = nullptr);

    int width() const { return width_; }
    int height() const { return height_; }
    /// 1 for grey formats, else 4.
    int channels() const { return channels_; }
    /// Whether pixels lie one after the other, so that unpackRow may be called: no block format.
    bool isRaw() const;
    /// Name of the content.
    const Key& key() const { return key_; }
    /// Rows y0 to y1 - 1 as planes of floats: integers over their greatest value; sRGB codes stay codes;
    /// alpha 1 where the format has none.
    void unpack(int y0, int y1, const nodes::MutableImage& into) const;
    /// The `count` pixels from (x, y) on, as `channels` planes, 1 or 4: grey fills red, green and blue, with
    /// alpha 1; colour becomes its luminance by Rec. 709. Whole vectors of the planes are written.
    void unpackRow(int x, int y, int count, int channels,
                   const std::array<float*, nodes::kMaxChannels>& to) const;

private:
    const std::uint8_t* pixelsAt(int x, int y) const; // of a raw format
    void unpackBlock(const RawFormat& raw, int x, int y, int count,
                     const std::array<float*, nodes::kMaxChannels>& to) const;

    int width_ = 0, height_ = 0, channels_ = 0;
    std::uint8_t format_ = 0, order_ = 0;
    std::vector<std::uint8_t> data_; // and kPixelSlack bytes
    Key key_;
};

/// The kinds of the plan's nodes that turn a HostImage into planes: as a whole, at its own size and channels,
/// or, from a raw format, as part of a chain. Their state is made by pictureState.
const nodes::NodeDeclaration& pictureKind();
const nodes::NodeDeclaration& pictureRowKind();
std::unique_ptr<nodes::State> pictureState(std::shared_ptr<const HostImage> image);

} // namespace vellor::cpu
