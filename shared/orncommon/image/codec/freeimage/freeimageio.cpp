#include "orncommon/image/codec/freeimage/freeimageio.h"

#include <FreeImage.h>

#include <cstdio>

namespace Orn::Image::Codec {

namespace {

FreeImageDevice& deviceOf(fi_handle handle)
{
    return *static_cast<FreeImageDevice*>(handle);
}

/// Both count whole items, as fread and fwrite do.
unsigned readItems(void* buffer, unsigned size, unsigned count, fi_handle handle)
{
    qint64 const bytes = deviceOf(handle).device().read(static_cast<char*>(buffer), qint64(size) * count);
    return size == 0 || bytes < 0 ? 0 : unsigned(bytes / size);
}

unsigned writeItems(void* buffer, unsigned size, unsigned count, fi_handle handle)
{
    qint64 const bytes =
        deviceOf(handle).device().write(static_cast<char const*>(buffer), qint64(size) * count);
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
    return position >= device.start() && device.device().seek(position) ? 0 : -1;
}

long tell(fi_handle handle)
{
    return long(deviceOf(handle).device().pos() - deviceOf(handle).start());
}

} // namespace

FreeImageDevice::FreeImageDevice(QIODevice& device)
    : m_device(device), m_start(device.pos()), m_io(new FreeImageIO{readItems, writeItems, seekTo, tell})
{
}

FreeImageDevice::~FreeImageDevice() = default;

} // namespace Orn::Image::Codec
