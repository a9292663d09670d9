#pragma once

#include "applications/player/description/packagemodel.h"

#include <QByteArray>
#include <QJsonObject>

#include <optional>

namespace vellor::tool {

/// What came of one output at one frame.
struct RenderedOutput
{
    Zph::Applications::Player::PackageOutput output;
    std::optional<int> frame;
    bool isDone = false;
    quint32 width = 0, height = 0;               // pixels; 0 for a number
    Zph::Applications::Player::InputValue value; // of a number
    QByteArray hash;
    QString file; // empty where none was written
    qint64 fileBytes = 0;
    bool hasFailed = false;     // the file could not be written
    double seconds = 0;         // of generation since the output before it
    double encodingSeconds = 0; // of the file
};

/// "bricks/basecolor", with "#12" behind it for frame 12.
QString outputName(const RenderedOutput& rendered);

/// A line for people, without line end: the file or the number.
QString reportLine(const RenderedOutput& rendered);

/// "HASH  NAME", as checksum programs print it.
QString hashLine(const RenderedOutput& rendered);

QJsonObject reportJson(const RenderedOutput& rendered);

} // namespace vellor::tool
