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
/// Plug-ins read on behind the end of a damaged file, where all bytes are 0. An exception loses the bitmap of
/// many of them, so they are left to it for as long as a picture of the stated size may last, and
/// isCutShort() tells afterwards; those that would go on for ever end by an exception of that type as well.
/// The one for PSD writes beyond its memory there, so `reader` ends it at once.
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
    /// What the pixels to be read take in memory.
    void expectPicture(double bytes);
    /// Whether so much was read behind the end that the picture can't be meant.
    bool isCutShort() const;
    static char const* refusal();
    /// How many bytes were there; may throw where some were not.
    qint64 read(char* buffer, qint64 bytes);
    bool seek(qint64 position);
    bool rewind() { return seek(m_start); }

private:
    QIODevice& m_device;
    qint64 m_start;
    Writer m_writer;
    Reader m_reader = Reader::LooksAtCounts;
    bool m_isAtEnd = false;
    qint64 m_emptyReads = 0; ///< behind the end
    double m_mostEmptyReads;
    std::unique_ptr<FreeImageIO> m_io;
};

} // namespace Orn::Image::Codec
