#include "orncommon/image/codec/freeimage/freeimageio.h"

#include <FreeImage.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace Orn::Image::Codec {

namespace {

/// Far more than any sound file makes a plug-in ask.
constexpr double soundEmptyReads = 1 << 16;
/// No plug-in asks more often for a byte of the picture.
constexpr double readsOfAByte = 4;

FreeImageDevice& deviceOf(fi_handle handle)
{
    return *static_cast<FreeImageDevice*>(handle);
}

/// Both count whole items, as fread and fwrite do. Some plug-ins don't look at the count: what is missing
/// reads as 0.
unsigned readItems(void* buffer, unsigned size, unsigned count, fi_handle handle)
{
    qint64 const wanted = qint64(size) * count;
    qint64 const bytes = deviceOf(handle).read(static_cast<char*>(buffer), wanted);
    std::memset(static_cast<char*>(buffer) + bytes, 0, std::size_t(wanted - bytes));
    return size == 0 ? 0 : unsigned(bytes / size);
}

unsigned writeItems(void* buffer, unsigned size, unsigned count, fi_handle handle)
{
    FreeImageDevice& file = deviceOf(handle);
    qint64 const wanted = qint64(size) * count;
    qint64 const bytes = file.device().write(static_cast<char const*>(buffer), wanted);
    if (bytes != wanted && file.writer() == FreeImageDevice::Writer::EndsByException)
        throw FreeImageDevice::refusal();
    return size == 0 || bytes < 0 ? 0 : unsigned(bytes / size);
}

int seekTo(fi_handle handle, long offset, int origin)
{
    FreeImageDevice& device = deviceOf(handle);
    qint64 base = device.start();
    if (origin == SEEK_CUR)
        base = device.device().pos();
    else if (origin == SEEK_END)
        base = device.device().size();
    qint64 const position = base + offset;
    bool const isWithin = device.device().isWritable() || position <= device.device().size();
    return position >= device.start() && isWithin && device.seek(position) ? 0 : -1;
}

long tell(fi_handle handle)
{
    return long(deviceOf(handle).device().pos() - deviceOf(handle).start());
}

} // namespace

FreeImageDevice::FreeImageDevice(QIODevice& device, Writer writer)
    : m_device(device), m_start(device.pos()), m_writer(writer), m_mostEmptyReads(soundEmptyReads),
      m_io(new FreeImageIO{readItems, writeItems, seekTo, tell})
{
}

FreeImageDevice::~FreeImageDevice() = default;

qint64 FreeImageDevice::read(char* buffer, qint64 bytes)
{
    qint64 const got = m_isAtEnd ? 0 : std::max<qint64>(0, m_device.read(buffer, bytes));
    if (got == bytes)
        return got;
    m_isAtEnd = true;
    m_emptyReads += got == 0;
    if (m_reader == Reader::EndsByException || double(m_emptyReads) > m_mostEmptyReads)
        throw "the file ends too early";
    return got;
}

bool FreeImageDevice::seek(qint64 position)
{
    m_isAtEnd = false;
    return m_device.seek(position);
}

void FreeImageDevice::expectPicture(double bytes)
{
    m_mostEmptyReads = soundEmptyReads + bytes * readsOfAByte;
}

bool FreeImageDevice::isCutShort() const
{
    return double(m_emptyReads) > soundEmptyReads;
}

char const* FreeImageDevice::refusal()
{
    return "the device takes no more bytes";
}

} // namespace Orn::Image::Codec
