#include "applications/tool/inputvalues.h"

#include "applications/player/description/valuetype.h"
#include "applications/tool/failure.h"
#include "applications/tool/identifiers.h"
#include "applications/tool/valueparser.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QFileInfo>

#include <algorithm>

namespace vellor::tool {

using namespace Zph::Applications::Player;

namespace {

Input identityOf(const PackageInput& input)
{
    Input identity(input.type);
    identity.bind({input.uid, input.type, nullptr});
    identity.describe(input.index, input.element);
    return identity;
}

} // namespace

InputValues::InputValues(const PackageModel& package, const QStringList& graphs,
                         std::optional<double> sequenceRate)
    : m_sequenceRate(sequenceRate)
{
    for (const PackageInput& input : package.inputs()) {
        if (!input.element.isNull() && input.graphKey != DescriptionIndex::globalKey() &&
            !graphs.contains(input.graphKey))
            continue;
        const InputDetails details = inputDetails(input);
        m_entries.push_back(
            {identityOf(input), input, details, input.defaultValue, details.defaultText, {}, {}, 0, false});
        if (input.type != ValueType::Image)
            continue;
        m_entries.back().image = std::make_shared<ImageInput>();
        m_entries.back().dirty = true; // without a picture too, it has to stand for one
    }
}

void InputValues::apply(const PresetDescription& preset, const QString& graphKey)
{
    for (Entry& entry : m_entries) {
        if (entry.input.graphKey != graphKey)
            continue;
        const PresetInput* found = preset.valueFor(entry.identity);
        if (entry.input.type == ValueType::Image) {
            if (found)
                readPictures(entry, found->text);
            continue;
        }
        entry.dirty = true;
        entry.text = found ? found->text : entry.details.defaultText;
        entry.value = found ? found->value : entry.input.defaultValue;
    }
}

bool InputValues::isDefault(const Entry& entry)
{
    if (entry.input.type == ValueType::Image)
        return entry.text.isEmpty();
    if (entry.input.type == ValueType::Text)
        return entry.text == entry.details.defaultText;
    return entry.value.equals(entry.input.defaultValue, componentCount(entry.input.type));
}

bool InputValues::isPanelDefault(const Entry& entry)
{
    const int components = componentCount(entry.input.type);
    return components == 0 ? isDefault(entry) : entry.value.equals(panelDefault(entry.input), components);
}

PresetDescription InputValues::collectForWindow(const QString& graphKey) const
{
    return collect(graphKey, &isPanelDefault);
}

PresetDescription InputValues::collect(const QString& graphKey, bool (*isLeftOut)(const Entry&)) const
{
    PresetDescription preset;
    preset.pkgurl = graphKey;
    for (const Entry& entry : m_entries) {
        if (entry.input.graphKey != graphKey || isLeftOut(entry))
            continue;
        preset.inputs.append(
            {entry.identity.identifier(), entry.input.uid, entry.input.type, entry.value, entry.text});
    }
    std::sort(preset.inputs.begin(), preset.inputs.end(),
              [](const PresetInput& a, const PresetInput& b) { return a.uid < b.uid; });
    return preset;
}

bool InputValues::isCompatible(const PresetDescription& preset, const QString& graphKey) const
{
    return std::any_of(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
        return entry.input.graphKey == graphKey && preset.names(entry.identity);
    });
}

const Input* InputValues::withUid(quint32 uid) const
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [uid](const Entry& entry) { return entry.input.uid == uid; });
    return found == m_entries.end() ? nullptr : &found->identity;
}

InputValue InputValues::valueOf(const PackageInput& input) const
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const Entry& entry) { return entry.input.uid == input.uid; });
    return found == m_entries.end() ? input.defaultValue : found->value;
}

std::pair<std::vector<std::size_t>, QString> InputValues::parsed(const char* option,
                                                                 const QString& assignment) const
{
    const int equals = assignment.indexOf('=');
    if (equals <= 0)
        throw UsageError(std::string(option) + ' ' + assignment.toStdString() + ": expected ID=VALUE");
    return {findOrThrow(assignment.left(equals)), assignment.mid(equals + 1)};
}

void InputValues::assign(const QString& assignment)
{
    const auto [places, text] = parsed("--set", assignment);
    for (const std::size_t place : places) {
        try {
            assignText(m_entries[place], text);
        } catch (const UsageError& error) {
            throw UsageError("--set " + assignment.toStdString() + ": " + error.what());
        }
    }
}

void InputValues::assignPicture(const QString& assignment)
{
    const auto [places, path] = parsed("--image", assignment);
    for (const std::size_t place : places) {
        Entry& entry = m_entries[place];
        if (entry.input.type != ValueType::Image)
            throw UsageError("--image " + assignment.toStdString() + ": the input takes no picture");
        readPictures(entry, path);
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

void InputValues::showPicture(Entry& entry, const QString& path)
{
    if (!QFileInfo(path).isFile())
        throw Failure(UnreadableFile, path + ": the file can't be read");
    const auto picture = Orn::Image::Codec::SurfaceCodecManager::instance().loadFile(path);
    if (!picture)
        throw Failure(UnreadableFile, path + ": the file holds no picture that this program reads");
    entry.image = std::make_shared<ImageInput>(); // the engine may still have the one before
    entry.image->setSource(picture);
    entry.dirty = true;
}

void InputValues::readPicture(Entry& entry, const QString& path)
{
    showPicture(entry, path);
    entry.text = QFileInfo(path).absoluteFilePath();
    entry.sequence.reset();
}

void InputValues::readPictures(Entry& entry, const QString& path) const
{
    readPicture(entry, path);
    if (!m_sequenceRate)
        return;
    entry.sequence = findImageSequence(entry.text);
    if (entry.sequence)
        entry.sequenceNumber = entry.sequence->firstFrame;
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

bool InputValues::hasTime() const
{
    return !find("$time").empty() || std::any_of(m_entries.begin(), m_entries.end(), [](const Entry& entry) {
        return entry.sequence.has_value();
    });
}

void InputValues::setTime(float seconds)
{
    for (Entry& entry : m_entries) {
        if (!entry.sequence)
            continue;
        const int number = entry.sequence->numberAt(seconds, float(*m_sequenceRate), TimeClamping::Clamp);
        if (number == entry.sequenceNumber)
            continue;
        showPicture(entry, entry.sequence->file(number));
        entry.sequenceNumber = number;
    }
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
        return engine.pushImage(index, entry.image);
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
