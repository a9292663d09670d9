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

// A source as rows of floats of the file's size, normals turned.
class SourceRows
{
public:
    SourceRows(const PlannedSource& source, NormalDirection direction, SurfacePtr picture)
        : m_picture(std::move(picture)), m_channels(getChannelsCount(m_picture->format())),
          m_normalFormat(source.normalFormat), m_direction(direction),
          m_isOpaque(m_channels != 4 ||
                     m_picture->description().alphaUse == SurfaceDescription::AlphaAbsent ||
                     (source.output.pixelFormat & (VELLOR_FORMAT_FAMILY_MASK | VELLOR_FORMAT_LAYOUT_MASK)) ==
                         VELLOR_FORMAT_RGBX),
          m_row(std::size_t(m_picture->width()) * m_channels)
    {
    }

    void load(unsigned y)
    {
        const bool isSigned = m_picture->description().flags & SurfaceDescription::SignedComponents;
        const std::size_t width = m_picture->width();
        loadRow(m_picture->format(), m_picture->row(y), width, m_row.data(), isSigned);
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

void packRows(const PlannedFile& file, std::vector<SourceRows>& sources, Surface& target)
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
    const PixelFormat format = withChannels(formatOfDepth(depth, given), unsigned(file.channels.size()));
    std::vector<SourceRows> sources;
    for (std::size_t i = 0; i < given.size(); ++i) {
        const SurfacePtr fitting = inSize(given[i], size);
        if (!fitting)
            return {};
        sources.emplace_back(file.sources.at(int(i)), file.normals, fitting);
    }
    const auto target = SurfacePtr::create(SurfaceDescription(size.width, size.height, format));
    if (target->isEmpty())
        return {};
    packRows(file, sources, *target);
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

void PackingCollector::reset()
{
    m_isDone.fill(false, m_files->size());
    m_pictures.clear();
}

bool PackingCollector::isNeeded(quint32 uid) const
{
    for (int i = 0; i < m_files->size(); ++i) {
        const auto& sources = m_files->at(i).sources;
        if (!m_isDone[i] && std::any_of(sources.cbegin(), sources.cend(), [uid](const PlannedSource& source) {
                return source.output.uid == uid;
            }))
            return true;
    }
    return false;
}

void PackingCollector::add(quint32 uid, const SurfacePtr& picture, const Complete& complete)
{
    m_pictures.insert(uid, picture);
    for (int i = 0; i < m_files->size(); ++i) {
        PackingPictures own;
        const auto& sources = m_files->at(i).sources;
        for (const PlannedSource& source : sources) {
            if (m_pictures.contains(source.output.uid))
                own.insert(source.output.uid, m_pictures.value(source.output.uid));
        }
        if (m_isDone[i] || own.size() < sources.size())
            continue;
        m_isDone[i] = true;
        complete(i, own);
    }
    for (const quint32 kept : m_pictures.keys()) {
        if (!isNeeded(kept))
            m_pictures.remove(kept);
    }
}

} // namespace Zph::Applications::Player
