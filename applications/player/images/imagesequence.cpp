#include "applications/player/images/imagesequence.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Zph::Applications::Player {

namespace {

QString numbered(QString pattern, int place, int number, int digits)
{
    return pattern.replace(place, 1, QString::number(number).rightJustified(digits, '0'));
}

// The last one: folders may have such a character too.
int starOf(const QString& pattern)
{
    return pattern.lastIndexOf('*');
}

} // namespace

QString ImageSequence::file(int number) const
{
    return numbered(pattern, starOf(pattern), number, digits);
}

int ImageSequence::numberAt(float time, float framesPerSecond, TimeClamping clamping) const
{
    constexpr double farAway = std::numeric_limits<int>::max() / 2;
    const double position = double(time) * double(framesPerSecond) + 0.001;
    // The comparison is false for what is no number.
    int frame = std::abs(position) < farAway ? int(position) : position > 0 ? int(farAway) : -int(farAway);
    if (clamping == TimeClamping::Clamp)
        frame = std::clamp(frame, 0, frameCount - 1);
    else if (clamping == TimeClamping::Repeat)
        frame = frame > 0 ? frame % frameCount : frameCount - 1 - (-frame) % frameCount;
    else if (frame < 0 || frame >= frameCount)
        frame = -1;
    return int(std::min<qint64>(qint64(firstFrame) + frame, std::numeric_limits<int>::max()));
}

std::optional<ImageSequence> findImageSequence(const QString& path)
{
    const QFileInfo info(path);
    const QString name = info.completeBaseName();
    static const QRegularExpression lastDigits(QStringLiteral("[0-9]+(?=[^0-9]*$)"));
    const QRegularExpressionMatch match = lastDigits.match(name);
    // A "*" in the name would be mistaken for the number's place.
    bool isNumber = false;
    const int first = match.captured().toInt(&isNumber);
    if (!isNumber || name.contains('*') || first == std::numeric_limits<int>::max())
        return {};
    QString starred = name;
    starred.replace(match.capturedStart(), match.capturedLength(), '*');
    const int place = int(match.capturedStart());
    starred += '.' + info.suffix();

    ImageSequence sequence;
    sequence.digits = int(match.capturedLength());
    sequence.firstFrame = first;
    sequence.pattern = info.dir().filePath(starred);
    if (!QFileInfo(info.dir().filePath(numbered(starred, place, first + 1, sequence.digits))).isFile())
        return {};
    QStringList files = info.dir().entryList(QDir::Files);
    std::sort(files.begin(), files.end());
    while (sequence.frameCount < std::numeric_limits<int>::max() - first &&
           std::binary_search(files.begin(), files.end(),
                              numbered(starred, place, first + sequence.frameCount, sequence.digits)))
        ++sequence.frameCount;
    return sequence;
}

} // namespace Zph::Applications::Player
