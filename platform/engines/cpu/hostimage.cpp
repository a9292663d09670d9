#include "platform/engines/cpu/hostimage.h"

#include "platform/engines/cpu/blockdecoder.h"
#include "platform/engines/cpu/image.h"
#include "platform/engines/cpu/pixelkernels.h"

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

int channelsOf(std::uint8_t format)
{
    if (blockBytes(format))
        return blockChannels(format);
    return RawFormat::of(format).channels == 1 ? 1 : 4;
}

/// Bytes of a picture between two looks at the stop.
constexpr std::size_t kPart = std::size_t(256) << 10;

struct PictureState : nodes::State
{
    std::shared_ptr<const HostImage> image;
};

void runPicture(const nodes::AreaJob& job)
{
    static_cast<const PictureState*>(job.state)->image->unpack(job.y0, job.y1, job.result);
}

void runPictureRow(const nodes::RowJob& job)
{
    static_cast<const PictureState*>(job.state)->image->unpackRow(job.x, job.y, job.count, job.channels,
                                                                  job.result);
}

nodes::NodeDeclaration makeKind(const char* name)
{
    nodes::NodeDeclaration kind{};
    kind.name = name;
    kind.label = kind.category = kind.text = "";
    return kind;
}

} // namespace

std::shared_ptr<const HostImage> HostImage::copy(const VellorTexture& texture, const std::atomic<bool>* stop)
{
    const std::size_t size = textureBytes(texture);
    if (!texture.buffer || size == 0)
        return nullptr;
    auto image = std::make_shared<HostImage>();
    image->width_ = texture.width;
    image->height_ = texture.height;
    image->format_ = texture.pixelFormat;
    image->channels_ = channelsOf(texture.pixelFormat);
    image->order_ = texture.channelOrder;
    const auto* bytes = static_cast<const std::uint8_t*>(texture.buffer);
    image->data_.reserve(size + kPixelSlack);
    Hasher hasher(0x706963747572ull);
    for (std::size_t at = 0; at < size; at += kPart) { // what was just copied is hashed from the cache
        if (stop && *stop)
            return nullptr;
        const std::size_t part = std::min(kPart, size - at);
        image->data_.insert(image->data_.end(), bytes + at, bytes + at + part);
        hasher.add(bytes + at, part);
    }
    image->data_.resize(size + kPixelSlack);
    hasher.add(std::uint64_t(texture.width) << 32 | std::uint64_t(texture.height) << 16 |
               std::uint64_t(texture.pixelFormat) << 8 | texture.channelOrder);
    image->key_ = hasher.key();
    return image;
}

bool HostImage::isRaw() const
{
    return blockBytes(format_) == 0;
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
    const auto planes = static_cast<std::size_t>(channels());
    const bool streams = worthStreaming(Image::byteSize(width_, height_, channels()));
    alignas(64) float blocks[nodes::kMaxChannels][kPixelBlock];
    for (int y = y0; y < y1; ++y) {
        for (int x = 0; x < width_; x += kPixelBlock) {
            const int count = std::min(kPixelBlock, width_ - x);
            std::array<float*, nodes::kMaxChannels> to{}, target{};
            for (std::size_t c = 0; c < planes; ++c) {
                target[c] = into.planes[c] + y * into.stride + x;
                to[c] = streams ? blocks[c] : target[c];
            }
            unpackBlock(raw, x, y, count, to);
            if (!streams)
                continue;
            // The pixels behind these come next, wherever the row ends.
            const std::size_t size = raw.pixelBytes() * static_cast<std::size_t>(count), part = size / planes;
            for (std::size_t c = 0; c < planes; ++c) {
                const void* next = pixelsAt(x, y) + size + c * part;
                streamBytes(target[c], blocks[c], sizeof(float) * static_cast<std::size_t>(count),
                            {&next, 1, part});
            }
        }
    }
    endStreaming();
}

const std::uint8_t* HostImage::pixelsAt(int x, int y) const
{
    const std::size_t pixel = static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + x;
    return data_.data() + pixel * RawFormat::of(format_).pixelBytes();
}

void HostImage::unpackRow(int x, int y, int count, int channels,
                          const std::array<float*, nodes::kMaxChannels>& to) const
{
    const RawFormat raw = RawFormat::of(format_);
    if (channels == this->channels())
        return unpackBlock(raw, x, y, count, to);
    if (channels > 1) {
        unpackBlock(raw, x, y, count, {to[0]});
        std::copy_n(to[0], count, to[1]);
        std::copy_n(to[0], count, to[2]);
        std::fill_n(to[3], count, 1.0f);
        return;
    }
    alignas(64) float planes[nodes::kMaxChannels][kPixelBlock];
    for (int done = 0; done < count; done += kPixelBlock) {
        const int part = std::min(kPixelBlock, count - done);
        unpackBlock(raw, x + done, y, part, {planes[0], planes[1], planes[2], planes[3]});
        const float* const colour[] = {planes[0], planes[1], planes[2]};
        luminance(colour, part, to[0] + done);
    }
}

void HostImage::unpackBlock(const RawFormat& raw, int x, int y, int count,
                            const std::array<float*, nodes::kMaxChannels>& to) const
{
    std::array<float*, nodes::kMaxChannels> stored{}; // the first plane that takes a stored channel
    const auto source = [&](int c) { return raw.channels == 1 ? 0 : (order_ >> (2 * c)) & 3; };
    const auto missing = [&](int c) { return source(c) >= raw.channels || (c == 3 && !raw.hasAlpha); };
    for (int c = channels(); c-- > 0;)
        if (!missing(c))
            stored[source(c)] = to[c];
    unpackPixels(raw, pixelsAt(x, y), count, stored.data());
    for (int c = 0; c < channels(); ++c) {
        if (missing(c))
            std::fill_n(to[c], count, 1.0f);
        else if (stored[source(c)] != to[c])
            std::copy_n(stored[source(c)], count, to[c]);
    }
}

const nodes::NodeDeclaration& pictureKind()
{
    static const nodes::NodeDeclaration kind = [] {
        nodes::NodeDeclaration picture = makeKind("engine.picture");
        picture.area = runPicture;
        return picture;
    }();
    return kind;
}

const nodes::NodeDeclaration& pictureRowKind()
{
    static const nodes::NodeDeclaration kind = [] {
        nodes::NodeDeclaration picture = makeKind("engine.picturerow");
        picture.row = runPictureRow;
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
