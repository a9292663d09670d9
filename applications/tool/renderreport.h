#pragma once

#include "applications/player/description/packagemodel.h"
#include "applications/player/packing/packingplan.h"

#include <QByteArray>
#include <QJsonObject>

#include <optional>

namespace vellor::tool {

/// What came of one output at one frame, or of one file that a template makes of several.
struct RenderedOutput
{
    Zph::Applications::Player::PackageOutput output;                // the first, of a file of several
    const Zph::Applications::Player::PlannedFile* packed = nullptr; // which outlives this; or null
    std::optional<int> frame;
    bool isDone = false;
    quint32 width = 0, height = 0;               // pixels; 0 for a number
    QString format;                              // of the picture, in words
    Zph::Applications::Player::InputValue value; // of a number
    QByteArray hash;
    QString file; // empty where none was written
    qint64 fileBytes = 0;
    bool hasFailed = false;     // the file could not be written
    double seconds = 0;         // of generation since the one before it
    double encodingSeconds = 0; // of packing and of the file
};

/// "bricks/basecolor", with "#12" behind it for frame 12. What a template makes is called as there:
/// "bricks/ORM".
QString outputName(const RenderedOutput& rendered);

/// A line for people, without line end: the file or the number.
QString reportLine(const RenderedOutput& rendered);

/// "HASH  NAME", as checksum programs print it.
QString hashLine(const RenderedOutput& rendered);

QJsonObject reportJson(const RenderedOutput& rendered);

} // namespace vellor::tool
