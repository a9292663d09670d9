#include "applications/player/packing/packer.h"

#include "applications/player/description/outputformatname.h"
#include "orncommon/image/surfaceoperations.h"
#include "orncommon/surfaces/pixelrows.h"

#include <vellor/engine.h>

#include <algorithm>
#include <vector>

namespace Zph::Applications::Player {

namespace {

using namespace Orn::Surfaces;
using SurfacePtr = QSharedPointer<Surface>;

// Of pictures and of the file: their sides, and a depth.
struct Size
{
    unsigned width = 0, height = 0;
};

PixelFormat formatOfDepth(PictureDepth depth, const std::vector<SurfacePtr>& pictures)
{
    switch (depth) {
    case PictureDepth::Bits8:
        return L8;
    case PictureDepth::Bits16:
        return L16;
    case PictureDepth::Half:
        return L16F;
    case PictureDepth::Float:
        return L32F;
    case PictureDepth::OfPicture:
        break;
    }
    PixelFormat deepest = L8;
    for (const SurfacePtr& picture : pictures) {
        const PixelFormat format = withChannels(picture->format(), 1);
        if (getBitsPerChannel(format) > getBitsPerChannel(deepest))
            deepest = format;
        else if (getBitsPerChannel(format) == 16 && format != deepest && deepest != L32F)
            deepest = L32F; // integers and halves have each what the other lacks
    }
    return deepest;
}

bool isSigned(const Surface& picture)
{
    return picture.description().flags & SurfaceDescription::SignedComponents;
}

// Whether the picture's alpha means nothing, so that it counts as 1.
bool isOpaque(const PlannedSource& source, const Surface& picture)
{
    constexpr int layout = VELLOR_FORMAT_FAMILY_MASK | VELLOR_FORMAT_LAYOUT_MASK;
    return getChannelsCount(picture.format()) != 4 ||
           picture.description().alphaUse == SurfaceDescription::AlphaAbsent ||
           (source.output.pixelFormat & layout) == VELLOR_FORMAT_RGBX;
}

// A source as rows of floats of the file's size, normals turned.
class SourceRows
{
public:
    SourceRows(const PlannedSource& source, NormalDirection direction, SurfacePtr picture)
        : m_picture(std::move(picture)), m_channels(getChannelsCount(m_picture->format())),
          m_normalFormat(source.normalFormat), m_direction(direction),
          m_isOpaque(isOpaque(source, *m_picture)), m_row(std::size_t(m_picture->width()) * m_channels)
    {
    }

    void load(unsigned y)
    {
        const std::size_t width = m_picture->width();
        loadRow(m_picture->format(), m_picture->row(y), width, m_row.data(), isSigned(*m_picture));
        if (m_normalFormat >= 0)
            turnNormals(m_row.data(), m_channels, width, m_normalFormat, m_direction);
        m_hasGrey = false;
    }

    // Writes the channel to every `stride`th float.
    void copy(SourceChannel channel, bool isInverted, float* out, unsigned stride)
    {
        const std::size_t width = m_picture->width();
        if (channel == SourceChannel::Alpha && m_isOpaque) {
            for (std::size_t x = 0; x < width; ++x)
                out[x * stride] = isInverted ? 0.0f : 1.0f;
            return;
        }
        const bool isGrey = channel == SourceChannel::Luminance && m_channels > 1;
        const unsigned step = isGrey ? 1 : m_channels;
        const float* in = isGrey           ? grey()
                          : m_channels > 1 ? m_row.data() + int(channel) - int(SourceChannel::Red)
                                           : m_row.data();
        for (std::size_t x = 0; x < width; ++x)
            out[x * stride] = isInverted ? 1.0f - in[x * step] : in[x * step];
    }

private:
    const float* grey()
    {
        if (!m_hasGrey) {
            m_grey.resize(m_picture->width());
            reshapeRow(m_row.data(), m_channels, m_grey.data(), 1, m_grey.size(), 1.0f);
            m_hasGrey = true;
        }
        return m_grey.data();
    }

    SurfacePtr m_picture;
    unsigned m_channels;
    int m_normalFormat;
    NormalDirection m_direction;
    bool m_isOpaque;
    bool m_hasGrey = false;
    std::vector<float> m_row, m_grey;
};

Size greatestSize(const std::vector<SurfacePtr>& pictures)
{
    Size size;
    for (const SurfacePtr& picture : pictures) {
        size.width = std::max(size.width, picture->width());
        size.height = std::max(size.height, picture->height());
    }
    return size;
}

// Null when there is no memory.
SurfacePtr inSize(const SurfacePtr& picture, const Size& size)
{
    using namespace Orn::Image::Core;
    if (picture->width() == size.width && picture->height() == size.height)
        return picture;
    SurfacePtr resized;
    rescaleCopy(*picture, resized, size.width, size.height, ScaleFilter::Bilinear);
    return resized;
}

void packFloats(const PlannedFile& file, std::vector<SourceRows>& sources, Surface& target)
{
    const unsigned channels = unsigned(file.channels.size());
    std::vector<float> row(std::size_t(target.width()) * channels);
    for (unsigned c = 0; c < channels; ++c) {
        const PlannedChannel& channel = file.channels.at(int(c));
        for (std::size_t i = c; channel.source < 0 && i < row.size(); i += channels)
            row[i] = channel.constant;
    }
    for (unsigned y = 0; y < target.height(); ++y) {
        for (SourceRows& source : sources)
            source.load(y);
        for (unsigned c = 0; c < channels; ++c) {
            const PlannedChannel& channel = file.channels.at(int(c));
            if (channel.source >= 0)
                sources[std::size_t(channel.source)].copy(channel.channel, channel.isInverted, row.data() + c,
                                                          channels);
        }
        storeRow(target.format(), row.data(), target.width(), target.row(y));
    }
}

// A channel of the file that is a channel of a picture, as it is or inverted, or a constant.
struct DirectChannel
{
    const Surface* picture = nullptr; // null: the constant
    unsigned place = 0;               // in the pixel, counted in components
    bool isInverted = false;
    float constant = 0.0f;
};

// Nothing where values have to be computed.
std::optional<DirectChannel> directChannel(const PlannedFile& file, const PlannedChannel& channel,
                                           const std::vector<SurfacePtr>& pictures, PixelFormat format)
{
    if (channel.source < 0)
        return DirectChannel{nullptr, 0, false, channel.constant};
    const PlannedSource& source = file.sources.at(channel.source);
    const Surface& picture = *pictures[std::size_t(channel.source)];
    if (channel.channel == SourceChannel::Alpha && isOpaque(source, picture))
        return DirectChannel{nullptr, 0, false, channel.isInverted ? 0.0f : 1.0f};
    const unsigned channels = getChannelsCount(picture.format());
    if (withChannels(picture.format(), 1) != withChannels(format, 1) || isSigned(picture) ||
        (channels > 1 && channel.channel == SourceChannel::Luminance))
        return {};
    unsigned place = channels > 1 ? unsigned(channel.channel) - unsigned(SourceChannel::Red) : 0;
    bool isInverted = channel.isInverted;
    if (source.normalFormat >= 0 && channels > 1) {
        const auto inverted = invertedNormals(source.normalFormat, file.normals);
        if (!inverted)
            return {};
        isInverted = isInverted != ((*inverted >> place & 1) != 0);
    }
    if (place < 3 && isBlueFirst(picture.format()))
        place = 2 - place;
    return DirectChannel{&picture, place, isInverted, 0.0f};
}

template<typename T> void packIntegers(const std::vector<DirectChannel>& channels, Surface& target)
{
    const std::size_t width = target.width(), stride = channels.size();
    for (unsigned y = 0; y < target.height(); ++y) {
        for (std::size_t c = 0; c < stride; ++c) {
            T* const out = reinterpret_cast<T*>(target.row(y)) + c;
            const DirectChannel& channel = channels[c];
            if (!channel.picture) {
                T constant = 0;
                storeRow(withChannels(target.format(), 1), &channel.constant, 1, &constant);
                for (std::size_t x = 0; x < width; ++x)
                    out[x * stride] = constant;
                continue;
            }
            const T* const in = reinterpret_cast<const T*>(channel.picture->row(y)) + channel.place;
            const std::size_t step = getChannelsCount(channel.picture->format());
            const T flip =
                channel.isInverted ? T(~T(0)) : T(0); // the greatest value less v is v with all bits turned
            for (std::size_t x = 0; x < width; ++x)
                out[x * stride] = T(in[x * step] ^ flip);
        }
    }
}

// Integers that only change their places need no floats. False where there is more to do.
bool packDirectly(const PlannedFile& file, const std::vector<SurfacePtr>& pictures, Surface& target)
{
    std::vector<DirectChannel> channels;
    for (const PlannedChannel& planned : file.channels) {
        const auto channel = directChannel(file, planned, pictures, target.format());
        if (!channel || isFloatFormat(target.format()))
            return false;
        channels.push_back(*channel);
    }
    if (getBitsPerChannel(target.format()) == 8)
        packIntegers<std::uint8_t>(channels, target);
    else
        packIntegers<std::uint16_t>(channels, target);
    return true;
}

} // namespace

SurfacePtr packPicture(const PlannedFile& file, const PackingPictures& pictures, PictureDepth depth)
{
    std::vector<SurfacePtr> given;
    for (const PlannedSource& source : file.sources) {
        given.push_back(pictures.value(source.output.uid));
        if (!given.back() || given.back()->isEmpty())
            return {};
    }
    const Size size = greatestSize(given);
    for (SurfacePtr& picture : given) {
        picture = inSize(picture, size);
        if (!picture)
            return {};
    }
    const PixelFormat format = withChannels(formatOfDepth(depth, given), unsigned(file.channels.size()));
    const auto target = SurfacePtr::create(SurfaceDescription(size.width, size.height, format));
    if (target->isEmpty())
        return {};
    if (packDirectly(file, given, *target))
        return target;
    std::vector<SourceRows> sources;
    for (std::size_t i = 0; i < given.size(); ++i)
        sources.emplace_back(file.sources.at(int(i)), file.normals, given[i]);
    packFloats(file, sources, *target);
    return target;
}

QString packedFormatName(PixelFormat format)
{
    const unsigned channels = getChannelsCount(format);
    const int layout = channels == 1   ? VELLOR_FORMAT_GRAYSCALE
                       : channels == 3 ? VELLOR_FORMAT_RGB
                                       : VELLOR_FORMAT_RGBA;
    const bool isFloat = isFloatFormat(format);
    const unsigned bits = getBitsPerChannel(format);
    const int depth = bits == 8    ? VELLOR_FORMAT_8BITS
                      : bits == 32 ? VELLOR_FORMAT_32FLOAT
                      : isFloat    ? VELLOR_FORMAT_16FLOAT
                                   : VELLOR_FORMAT_16BITS;
    return outputFormatName(quint8(layout | depth));
}

} // namespace Zph::Applications::Player
