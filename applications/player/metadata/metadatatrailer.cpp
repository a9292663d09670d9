#include "applications/player/metadata/metadatatrailer.h"

#include <QIODevice>
#include <QtEndian>

namespace Zph::Applications::Player {

namespace {

const QByteArray magic = QByteArrayLiteral("TMLV");
constexpr int unit = 4;
constexpr int tailSize = 8; // length and magic

} // namespace

QByteArray metadataTrailer(const QByteArray& document, qint64 size)
{
    const int padding = int((unit - (size + document.size()) % unit) % unit);
    QByteArray length(unit, '\0');
    qToLittleEndian(quint32(document.size()), length.data());
    return QByteArray(padding, '\0') + document + length + magic;
}

std::optional<QByteArray> readMetadataTrailer(QIODevice& file)
{
    const qint64 size = file.size();
    if (size < tailSize || size % unit != 0 || !file.seek(size - tailSize))
        return {};
    const QByteArray tail = file.read(tailSize);
    if (tail.size() != tailSize || !tail.endsWith(magic))
        return {};
    const qint64 length = qFromLittleEndian<quint32>(tail.constData());
    if (length > largestMetadata || length + tailSize > size || !file.seek(size - tailSize - length))
        return {};
    QByteArray document = file.read(length);
    return document.size() == length ? std::optional(document) : std::nullopt;
}

} // namespace Zph::Applications::Player
