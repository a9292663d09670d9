#include "applications/tool/inputvalues.h"

#include "applications/player/description/input.h"
#include "applications/player/description/valuetype.h"
#include "applications/tool/failure.h"
#include "applications/tool/identifiers.h"
#include "applications/tool/valueparser.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QFileInfo>

namespace vellor::tool {

using namespace Zph::Applications::Player;

InputValues::InputValues(const PackageModel& package, const QStringList& graphs)
{
    for (const PackageInput& input : package.inputs()) {
        if (!input.element.isNull() && input.graphKey != DescriptionIndex::globalKey() &&
            !graphs.contains(input.graphKey))
            continue;
        const InputDetails details = inputDetails(input);
        m_entries.push_back({input, details, input.defaultValue, details.defaultText, {}, false});
        if (input.type != ValueType::Image)
            continue;
        m_entries.back().image = std::make_shared<ImageInput>();
        m_entries.back().dirty = true; // without a picture too, it has to stand for one
    }
}

void InputValues::apply(const PresetDescription& preset)
{
    for (Entry& entry : m_entries) {
        if (entry.input.graphKey != preset.pkgurl)
            continue;
        Input identity(entry.input.type);
        identity.describe(entry.input.index, entry.input.element);
        const PresetInput* found = preset.find(identity);
        const bool isGiven = found && found->type == entry.input.type;
        entry.dirty = true;
        if (entry.input.type == ValueType::Image && isGiven)
            readPicture(entry, found->text);
        entry.text = isGiven ? found->text : entry.details.defaultText;
        entry.value = isGiven ? found->value : entry.input.defaultValue;
    }
}

void InputValues::assign(const QString& assignment)
{
    const int equals = assignment.indexOf('=');
    if (equals <= 0)
        throw UsageError("--set " + assignment.toStdString() + ": expected ID=VALUE");
    for (const std::size_t index : findOrThrow(assignment.left(equals))) {
        try {
            assignText(m_entries[index], assignment.mid(equals + 1));
        } catch (const UsageError& error) {
            throw UsageError("--set " + assignment.toStdString() + ": " + error.what());
        }
    }
}

void InputValues::assignText(Entry& entry, const QString& text)
{
    entry.dirty = true;
    if (entry.input.type == ValueType::Text)
        entry.text = text;
    else if (entry.input.type == ValueType::Image)
        readPicture(entry, text);
    else
        entry.value = parseValue(entry.input.type, entry.details, text);
}

void InputValues::readPicture(Entry& entry, const QString& path)
{
    if (!QFileInfo(path).isFile())
        throw Failure(UnreadableFile, path + ": the file can't be read");
    const auto picture = Orn::Image::Codec::SurfaceCodecManager::instance().loadFile(path);
    if (!picture)
        throw Failure(UnreadableFile, path + ": the file holds no picture that this program reads");
    entry.image->setSource(picture);
}

void InputValues::setSize(const QString& size)
{
    const InputValue value = parseSize(size);
    const std::vector<std::size_t> found = find("$outputsize");
    if (found.empty())
        throw UsageError("--size: the package has no input $outputsize, its sizes are fixed");
    for (const std::size_t index : found) {
        m_entries[index].value = value;
        m_entries[index].dirty = true;
    }
}

void InputValues::setSeed(const QString& seed)
{
    if (find("$randomseed").empty())
        throw UsageError("--seed: the package has no input $randomseed");
    assign("$randomseed=" + seed);
}

void InputValues::setTime(float seconds)
{
    for (const std::size_t index : find("$time")) {
        m_entries[index].value = InputValue::fromFloats(seconds);
        m_entries[index].dirty = true;
    }
}

void InputValues::push(InputSink& engine)
{
    for (Entry& entry : m_entries) {
        if (entry.dirty && !pushOne(entry, engine))
            throw Failure(Failed, "the engine refuses the value of the input '" + idOf(entry.input) + "'");
        entry.dirty = false;
    }
}

bool InputValues::pushOne(const Entry& entry, InputSink& engine) const
{
    const int index = entry.input.index;
    const quint32 type = entry.input.type;
    if (type == ValueType::Text) {
        QVector<uint> units = entry.text.toUcs4();
        units.append(0);
        return engine.pushInput(index, type, units.constData());
    }
    if (type == ValueType::Image)
        return engine.pushImage(index, entry.image.get());
    return engine.pushInput(index, type, entry.value.words.data());
}

std::vector<std::size_t> InputValues::find(const QString& identifier) const
{
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        if (idOf(m_entries[i].input) == identifier)
            found.push_back(i);
    }
    return found;
}

std::vector<std::size_t> InputValues::findOrThrow(const QString& identifier) const
{
    const std::vector<std::size_t> found = find(identifier);
    if (!found.empty())
        return found;
    QStringList names;
    for (const Entry& entry : m_entries)
        names.append(idOf(entry.input));
    names.removeDuplicates();
    names.sort();
    throw UsageError("there is no input '" + identifier.toStdString() + "'; there are " +
                     names.join(", ").toStdString());
}

} // namespace vellor::tool
