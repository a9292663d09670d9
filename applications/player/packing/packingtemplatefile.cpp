#include "applications/player/packing/packingtemplatefile.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

constexpr qint64 largestFile = 1024 * 1024;
constexpr int longestQuote = 40;

QString translated(const char* text)
{
    return QCoreApplication::translate("PackingTemplate", text);
}

// Why a text is no template.
struct Mistake
{
    QString reason;
};

QString quoted(const QJsonValue& value)
{
    if (value.isArray() || value.isObject())
        return value.isArray() ? translated("a list") : translated("an object");
    if (value.isUndefined())
        return translated("nothing");
    // A value alone is no document, so it is quoted out of a list.
    const QString text = QString::fromUtf8(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact));
    const QString inner = text.mid(1, text.size() - 2);
    return inner.size() <= longestQuote ? inner : inner.left(longestQuote) + QStringLiteral("...");
}

// A value and its place in the document: "files[1].channels.g".
class Place
{
public:
    Place(const QJsonValue& value, const QString& name) : m_value(value), m_name(name) {}

    const QJsonValue& value() const { return m_value; }
    bool isThere() const { return !m_value.isUndefined(); }

    [[noreturn]] void fail(const QString& text) const
    {
        throw Mistake{m_name.isEmpty() ? text : m_name + ": " + text};
    }

    [[noreturn]] void expected(const QString& what) const
    {
        fail(translated("expected %1, not %2").arg(what, quoted(m_value)));
    }

    Place at(int index) const
    {
        return {m_value.toArray().at(index), m_name + '[' + QString::number(index) + ']'};
    }

    Place at(const QString& key) const
    {
        return {m_value.toObject().value(key), m_name.isEmpty() ? key : m_name + '.' + key};
    }

    void onlyKeys(const QStringList& known) const
    {
        if (!m_value.isObject())
            expected(translated("an object"));
        for (const QString& key : m_value.toObject().keys()) {
            if (!known.contains(key))
                at(key).fail(translated("nothing is called so here; expected %1").arg(known.join(", ")));
        }
    }

    // A text that is not blank.
    QString text() const
    {
        if (!m_value.isString() || m_value.toString().trimmed().isEmpty())
            expected(translated("a text"));
        return m_value.toString().trimmed();
    }

    QString textOrNothing() const { return isThere() ? text() : QString(); }

    // The place of a text in a list of words.
    int word(const QStringList& words) const
    {
        const int index = m_value.isString() ? words.indexOf(m_value.toString()) : -1;
        if (index < 0)
            expected(translated("one of %1").arg(words.join(", ")));
        return index;
    }

    // False where it isn't there.
    bool isTrue() const
    {
        if (isThere() && !m_value.isBool())
            expected(translated("true or false"));
        return m_value.toBool();
    }

private:
    QJsonValue m_value;
    QString m_name;
};

const QStringList& targetNames()
{
    static const QStringList names{"grey", "rgb", "r", "g", "b", "a"};
    return names;
}

PackingSource readSource(const Place& place)
{
    PackingSource source;
    if (place.value().isString()) {
        source.usage = place.text().toLower();
        return source;
    }
    if (!place.value().isObject())
        place.expected(translated("a usage, an object or, at the end, a number from 0 to 1"));
    place.onlyKeys({"usage", "output", "channel", "invert", "optional"});
    source.usage = place.at("usage").textOrNothing().toLower();
    source.identifier = place.at("output").textOrNothing();
    if (source.usage.isEmpty() == source.identifier.isEmpty())
        place.fail(translated("expected either a usage or an output"));
    const Place channel = place.at("channel");
    if (channel.isThere())
        source.channel = SourceChannel(1 + channel.word({"r", "g", "b", "a", "luminance"}));
    source.isInverted = place.at("invert").isTrue();
    source.isOptional = place.at("optional").isTrue();
    return source;
}

double readConstant(const Place& place)
{
    const double number = place.value().toDouble();
    if (!(number >= 0.0 && number <= 1.0))
        place.expected(translated("a number from 0 to 1"));
    return number;
}

// A source, a number, or a list of sources with or without a number at its end.
PackingChannel readChannel(const Place& place, PackingTarget target)
{
    PackingChannel channel{target, {}, {}};
    const bool isList = place.value().isArray();
    const int count = isList ? place.value().toArray().size() : 1;
    if (count == 0)
        place.fail(translated("the list is empty"));
    for (int i = 0; i < count; ++i) {
        const Place entry = isList ? place.at(i) : place;
        if (entry.value().isDouble() && i == count - 1)
            channel.constant = readConstant(entry);
        else
            channel.sources.append(readSource(entry));
    }
    return channel;
}

void checkTargets(const Place& place)
{
    const QJsonObject object = place.value().toObject();
    const auto has = [&](const char* key) { return object.contains(QLatin1String(key)); };
    const int single = int(has("r")) + int(has("g")) + int(has("b"));
    const bool isGrey = has("grey") && object.size() == 1;
    const bool isColour = !has("grey") && single == (has("rgb") ? 0 : 3);
    if (!isGrey && !isColour)
        place.fail(translated("expected 'grey' alone, or 'rgb' or all of 'r', 'g' and 'b', with or without "
                              "'a'"));
}

QVector<PackingChannel> readChannels(const Place& place)
{
    place.onlyKeys(targetNames());
    checkTargets(place);
    QVector<PackingChannel> channels;
    for (int i = 0; i < targetNames().size(); ++i) {
        const Place channel = place.at(targetNames().at(i));
        if (channel.isThere())
            channels.append(readChannel(channel, PackingTarget(i)));
    }
    if (std::all_of(channels.cbegin(), channels.cend(),
                    [](const PackingChannel& channel) { return channel.sources.isEmpty(); }))
        place.fail(translated("there are numbers alone; expected an output"));
    return channels;
}

PictureDepth readDepth(const Place& place, const QString& format)
{
    if (!place.isThere())
        return PictureDepth::OfPicture;
    QVector<PictureDepth> depths = depthsOf(format);
    QStringList names;
    for (const PictureDepth depth : qAsConst(depths))
        names.append('"' + depthName(depth) + '"');
    const auto depth = depthFromName(place.value().toString());
    if (!depth || !depths.contains(*depth))
        place.expected(translated("one of %1").arg(names.join(", ")) +
                       (format.isEmpty() ? QString() : translated(" for %1").arg(format)));
    return *depth;
}

PackingFile readFile(const Place& place)
{
    place.onlyKeys({"name", "format", "depth", "channels"});
    PackingFile file;
    file.name = place.at("name").text();
    const Place format = place.at("format");
    if (format.isThere())
        file.format = pictureFormats().at(format.word(pictureFormats()));
    file.depth = readDepth(place.at("depth"), file.format);
    file.channels = readChannels(place.at("channels"));
    return file;
}

PackingTemplate readTemplate(const Place& root)
{
    root.onlyKeys({"label", "description", "pattern", "normals", "files"});
    PackingTemplate result;
    result.label = root.at("label").textOrNothing();
    result.description = root.at("description").textOrNothing();
    result.pattern = root.at("pattern").textOrNothing();
    const Place normals = root.at("normals");
    if (normals.isThere())
        result.normals = NormalDirection(1 + normals.word({"opengl", "directx"}));
    const Place files = root.at("files");
    if (!files.value().isArray() || files.value().toArray().isEmpty())
        files.expected(translated("a list of files"));
    QStringList names;
    for (int i = 0; i < files.value().toArray().size(); ++i) {
        result.files.append(readFile(files.at(i)));
        const QString& name = result.files.last().name;
        if (names.contains(name))
            files.at(i).at("name").fail(translated("'%1' is there twice").arg(name));
        names.append(name);
    }
    return result;
}

QString syntaxError(const QByteArray& text, const QJsonParseError& error)
{
    const QByteArray before = text.left(error.offset);
    const int lineStart = before.lastIndexOf('\n') + 1;
    return translated("line %1, column %2: %3")
        .arg(before.count('\n') + 1)
        .arg(QString::fromUtf8(before.mid(lineStart)).size() + 1)
        .arg(error.errorString());
}

} // namespace

QString packingTargetName(PackingTarget target)
{
    return targetNames().at(int(target));
}

std::optional<PackingTemplate> parsePackingTemplate(const QByteArray& text, QString& reason)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        reason = syntaxError(text, error);
        return {};
    }
    try {
        return readTemplate(
            Place(document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object()), {}));
    } catch (const Mistake& mistake) {
        reason = mistake.reason;
        return {};
    }
}

std::optional<PackingTemplate> readPackingTemplate(const QString& path, QString& reason)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        reason = file.errorString();
        return {};
    }
    const QByteArray text = file.read(largestFile + 1);
    if (text.size() > largestFile) {
        reason = translated("it is too large for a template");
        return {};
    }
    return parsePackingTemplate(text, reason);
}

} // namespace Zph::Applications::Player
