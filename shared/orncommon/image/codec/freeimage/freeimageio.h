#pragma once

#include "orncommon/image/codec/freeimage/freeimagetypes.h"

#include <QIODevice>

#include <memory>

namespace Orn::Image::Codec {

/// Lets the library read and write a device. What it takes for the start of the file is the device's position
/// at construction; `rewind` goes back there.
///
/// The plug-in for PNG does not look at whether its bytes were taken, but ends for an exception of the type
/// that its own errors have: `writer` says so, and a refused write then throws refusal().
///
/// Plug-ins read on behind the end of a damaged file, some of them for ever: what goes on for long ends by an
/// exception of that type as well. The one for PSD writes beyond its memory there, so `reader` ends it at
/// once.
class FreeImageDevice
{
public:
    enum class Writer
    {
        LooksAtCounts,
        EndsByException
    };
    enum class Reader
    {
        LooksAtCounts,
        EndsByException
    };
    explicit FreeImageDevice(QIODevice& device, Writer writer = Writer::LooksAtCounts);
    ~FreeImageDevice();

    FreeImageIO* io() { return m_io.get(); }
    void* handle() { return this; }
    QIODevice& device() { return m_device; }
    qint64 start() const { return m_start; }
    Writer writer() const { return m_writer; }
    void setReader(Reader reader) { m_reader = reader; }
    /// Of the bytes that the library asked for, some are not there: may throw.
    void noteEnd(bool isNothingThere);
    static char const* refusal();
    bool rewind() { return m_device.seek(m_start); }

private:
    QIODevice& m_device;
    qint64 m_start;
    Writer m_writer;
    Reader m_reader = Reader::LooksAtCounts;
    int m_emptyReads = 0; ///< behind the end
    std::unique_ptr<FreeImageIO> m_io;
};

} // namespace Orn::Image::Codec
