// Preset files and the records of exported bitmaps: what was read is written, and what was written is read
// back.

#include "applications/player/description/descriptionfile.h"
#include "applications/player/description/input.h"
#include "applications/player/metadata/metadatarecord.h"
#include "applications/player/metadata/metadatatrailer.h"
#include "applications/player/presets/mayapreset.h"
#include "applications/player/presets/presetfile.h"
#include "tests/fuzz/entries.h"
#include "tests/fuzz/promise.h"

#include <QBuffer>

namespace vellor::fuzz {

namespace {

using namespace Zph::Applications::Player;

const QDir folder(QStringLiteral("/fuzz/presets"));

QByteArray bytesOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), int(size)};
}

QVector<PresetDescription> presetsIn(const QByteArray& text)
{
    // One input is known to the package, for entries that leave out what they are.
    static const Input known = [] {
        Input input(ValueType::Float3);
        input.bind({7, ValueType::Float3, nullptr});
        return input;
    }();
    QDomDocument document;
    return parseDescription(text, document)
               ? readPresets(document.documentElement(), folder,
                             [](quint32 uid) { return uid == known.uid() ? &known : nullptr; })
               : QVector<PresetDescription>();
}

void requireSettled(const PresetDescription& preset)
{
    const QByteArray once = presetDocument({preset}, folder);
    const QVector<PresetDescription> read = presetsIn(once);
    require(read.size() == 1, "a preset that was written can be read", "");
    require(read[0].inputs.size() == preset.inputs.size(), "with all its inputs", "");
    const QByteArray twice = presetDocument(read, folder);
    require(presetDocument(presetsIn(twice), folder) == twice, "what was read is what was written", "");
    require(mayaPreset(preset.inputs).endsWith("endAttrPreset();\n"), "an attribute preset has its end", "");
}

void readRecord(const QByteArray& text)
{
    const auto record = parseMetadata(text, folder);
    if (!record)
        return;
    const QByteArray once = metadataDocument(*record, folder);
    const auto read = parseMetadata(once, folder);
    require(read && read->packageUrl == record->packageUrl && read->archive == record->archive &&
                read->presetFileName == record->presetFileName &&
                read->preset.has_value() == record->preset.has_value(),
            "a record that was written can be read", "");
    if (record->preset)
        requireSettled(*record->preset);
}

std::optional<QByteArray> trailerOf(QByteArray file)
{
    QBuffer device(&file);
    device.open(QIODevice::ReadOnly);
    return readMetadataTrailer(device);
}

} // namespace

void preset(const std::uint8_t* data, std::size_t size)
{
    for (const PresetDescription& read : presetsIn(bytesOf(data, size)))
        requireSettled(read);
}

void metadata(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = bytesOf(data, size);
    if (const auto found = trailerOf(bytes)) {
        require(found->size() + 8 <= bytes.size(), "no more than the file holds", "");
        readRecord(*found);
    }
    readRecord(bytes);
    require(trailerOf(QByteArray(int(size % 7), 'p') + metadataTrailer(bytes, qint64(size % 7))) == bytes,
            "what was appended is found", "");
}

} // namespace vellor::fuzz
