#include "platform/engines/cpu/hostimage.h"

#include "platform/engines/cpu/blockdecoder.h"
#include "platform/engines/cpu/halffloat.h"
#include "platform/engines/cpu/pixelformat.h"

#include <algorithm>
#include <cstring>

namespace vellor::cpu {
namespace {

std::size_t textureBytes(const VellorTexture& texture)
{
    const std::size_t width = texture.width, height = texture.height;
    if (const std::size_t block = blockBytes(texture.pixelFormat))
        return ((width + 3) / 4) * ((height + 3) / 4) * block;
    return RawFormat::isRaw(texture.pixelFormat)
               ? width * height * RawFormat::of(texture.pixelFormat).pixelBytes()
               : 0;
}

float readChannel(const std::uint8_t* at, RawFormat::Depth depth)
{
    std::uint16_t word;
    float value;
    switch (depth) {
    case RawFormat::Depth::U8:
        return static_cast<float>(*at) / 255.0f;
    case RawFormat::Depth::U16:
        std::memcpy(&word, at, 2);
        return static_cast<float>(word) / 65535.0f;
    case RawFormat::Depth::F16:
        std::memcpy(&word, at, 2);
        return floatFromHalf(word);
    default:
        std::memcpy(&value, at, 4);
        return value;
    }
}

/// Channel `source` of a row of raw pixels.
void unpackChannel(const std::uint8_t* row, const RawFormat& raw, int source, int width, float* out)
{
    const std::size_t step = raw.pixelBytes();
    const std::uint8_t* at = row + static_cast<std::size_t>(source) * raw.channelBytes();
    for (int x = 0; x < width; ++x, at += step)
        out[x] = readChannel(at, raw.depth);
}

struct PictureState : nodes::State
{
    std::shared_ptr<const HostImage> image;
};

void runPicture(const nodes::AreaJob& job)
{
    static_cast<const PictureState*>(job.state)->image->unpack(job.y0, job.y1, job.result);
}

} // namespace

std::shared_ptr<const HostImage> HostImage::copy(const VellorTexture& texture)
{
    const std::size_t size = textureBytes(texture);
    if (!texture.buffer || size == 0)
        return nullptr;
    auto image = std::make_shared<HostImage>();
    image->width_ = texture.width;
    image->height_ = texture.height;
    image->format_ = texture.pixelFormat;
    image->order_ = texture.channelOrder;
    const auto* bytes = static_cast<const std::uint8_t*>(texture.buffer);
    image->data_.assign(bytes, bytes + size);
    Hasher hasher(0x706963747572ull);
    hasher.add(image->data_.data(), size);
    hasher.add(std::uint64_t(texture.width) << 32 | std::uint64_t(texture.height) << 16 |
               std::uint64_t(texture.pixelFormat) << 8 | texture.channelOrder);
    image->key_ = hasher.key();
    return image;
}

int HostImage::channels() const
{
    if (blockBytes(format_))
        return blockChannels(format_);
    return RawFormat::of(format_).channels == 1 ? 1 : 4;
}

void HostImage::unpack(int y0, int y1, const nodes::MutableImage& into) const
{
    if (const std::size_t blockSize = blockBytes(format_)) {
        const int blocksAcross = (width_ + 3) / 4;
        std::uint8_t pixels[64];
        for (int blockY = y0 / 4; blockY <= (y1 - 1) / 4; ++blockY) {
            for (int blockX = 0; blockX < blocksAcross; ++blockX) {
                decodeBlock(format_,
                            data_.data() +
                                (static_cast<std::size_t>(blockY) * blocksAcross + blockX) * blockSize,
                            pixels);
                const int bottom = std::min(y1, 4 * blockY + 4), right = std::min(width_, 4 * blockX + 4);
                for (int y = std::max(y0, 4 * blockY); y < bottom; ++y)
                    for (int x = 4 * blockX; x < right; ++x)
                        for (int c = 0; c < channels(); ++c)
                            into.planes[c][y * into.stride + x] =
                                static_cast<float>(pixels[4 * ((y & 3) * 4 + (x & 3)) + c]) / 255.0f;
            }
        }
        return;
    }
    const RawFormat raw = RawFormat::of(format_);
    for (int y = y0; y < y1; ++y) {
        const std::uint8_t* row = data_.data() + static_cast<std::size_t>(y) * width_ * raw.pixelBytes();
        for (int c = 0; c < channels(); ++c) {
            float* out = into.planes[c] + y * into.stride;
            const int source = raw.channels == 1 ? 0 : (order_ >> (2 * c)) & 3;
            if (source >= raw.channels || (c == 3 && !raw.hasAlpha))
                std::fill_n(out, width_, 1.0f);
            else
                unpackChannel(row, raw, source, width_, out);
        }
    }
}

const nodes::NodeDeclaration& pictureKind()
{
    static const nodes::NodeDeclaration kind = [] {
        nodes::NodeDeclaration picture{};
        picture.name = "engine.picture";
        picture.label = picture.category = picture.text = "";
        picture.area = runPicture;
        return picture;
    }();
    return kind;
}

std::unique_ptr<nodes::State> pictureState(std::shared_ptr<const HostImage> image)
{
    auto state = std::make_unique<PictureState>();
    state->image = std::move(image);
    return state;
}

} // namespace vellor::cpu
