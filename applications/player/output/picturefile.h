#pragma once

#include "orncommon/surfaces/surface.h"

#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

#include <atomic>
#include <functional>
#include <optional>

namespace Zph::Applications::Player {

// What one channel of a file holds.
enum class PictureDepth
{
    OfPicture, // what the picture has, or the nearest that the format knows
    Bits8,
    Bits16,
    Half,
    Float
};

// The extensions in which pictures can be written, lower case and sorted. The codecs are registered before.
QStringList pictureFormats();

// The depths that files of a format can hold, of those that may be asked for; all of them for a format of
// which nothing is known.
QVector<PictureDepth> depthsOf(const QString& format);

// Whether files of a format keep alpha; true for a format of which nothing is known.
bool holdsAlpha(const QString& format);

// What people call a depth: "8", "16", "16f" and "32f"; empty for PictureDepth::OfPicture, which has no name.
QString depthName(PictureDepth depth);
std::optional<PictureDepth> depthFromName(const QString& name);

// The name of a format's option for quality, 0 to 100; empty where it has none.
QString qualityOption(const QString& format);
// A quality for PictureFileOptions::codec, whatever the format.
QVariantMap withQuality(int quality);

struct PictureFileOptions
{
    QString format; // an extension of pictureFormats()
    PictureDepth depth = PictureDepth::OfPicture;
    const std::atomic<bool>* cancelled = nullptr; // once it is true, writing fails soon
    // What to append to the encoded picture, by its size in bytes; none for nothing.
    std::function<QByteArray(qint64 size)> trailer = {};
    // Options of the codec by name, in place of their defaults; names that the format doesn't have say
    // nothing.
    QVariantMap codec = {};
};

// Why a picture could not be written.
struct PictureFileError
{
    QString text;                 // empty: it was
    bool isFormatUnknown = false; // no codec writes the format

    explicit operator bool() const { return !text.isEmpty(); }
};

// Writes a picture through a temporary file in the folder of `path`, which takes the place of `path` only
// when all of it is there. Where that fails, what stood at `path` is as it was. Any thread.
PictureFileError writePictureFile(const QSharedPointer<Orn::Surfaces::Surface>& picture, const QString& path,
                                  const PictureFileOptions& options);

} // namespace Zph::Applications::Player
