#pragma once

#include "orncommon/image/codec/freeimage/freeimagetypes.h"

#include <QIODevice>

#include <memory>

namespace Orn::Image::Codec {

/// Lets the library read and write a device. What it takes for the start of the file is the device's position
/// at construction; `rewind` goes back there.
class FreeImageDevice
{
public:
    explicit FreeImageDevice(QIODevice& device);
    ~FreeImageDevice();

    FreeImageIO* io() { return m_io.get(); }
    void* handle() { return this; }
    QIODevice& device() { return m_device; }
    qint64 start() const { return m_start; }
    bool rewind() { return m_device.seek(m_start); }

private:
    QIODevice& m_device;
    qint64 m_start;
    std::unique_ptr<FreeImageIO> m_io;
};

} // namespace Orn::Image::Codec
