#pragma once

#include "applications/player/description/input.h"
#include "applications/player/description/inputdetails.h"
#include "applications/player/description/inputsink.h"
#include "applications/player/images/imageinput.h"
#include "applications/player/images/imagesequence.h"
#include "applications/player/presets/presetdescription.h"

#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace vellor::tool {

/// The values of the inputs of some graphs of a package, from the command line, and which of them the engine
/// has not been told yet. What is wrong with a value is thrown as UsageError, a picture that can't be read as
/// Failure.
class InputValues
{
public:
    using PackageModel = Zph::Applications::Player::PackageModel;
    using PresetDescription = Zph::Applications::Player::PresetDescription;

    /// All at their defaults: inputs of the graphs with these keys, and of no graph. With a rate, in frames a
    /// second, numbered pictures of assignPicture() and of presets are sequences.
    InputValues(const PackageModel& package, const QStringList& graphs,
                std::optional<double> sequenceRate = {});

    /// Applies a preset to a graph, which need not be the one that it was made for: inputs that it doesn't
    /// name, or under another type, go back to their defaults, save pictures, which stay.
    void apply(const PresetDescription& preset, const QString& graphKey);
    /// The values of a graph that aren't defaults, by uid.
    PresetDescription collect(const QString& graphKey) const { return collect(graphKey, &isDefault); }
    /// The values of a graph without which the window would show something else, by uid.
    PresetDescription collectForWindow(const QString& graphKey) const;
    /// Whether a preset names an input of the graph.
    bool isCompatible(const PresetDescription& preset, const QString& graphKey) const;
    /// Null where there is none.
    const Zph::Applications::Player::Input* withUid(quint32 uid) const;
    /// The value of a number, its default where it isn't one of these inputs.
    Zph::Applications::Player::InputValue valueOf(const Zph::Applications::Player::PackageInput& input) const;

    /// "ID=VALUE": numbers with "," between them, "#rrggbb" for a colour, a choice by its number or label, a
    /// text, the path of a picture. In each graph that has such an input.
    void assign(const QString& assignment);
    /// "ID=FILE" for inputs that take a picture.
    void assignPicture(const QString& assignment);

    /// `size` is "1024" or "1024x512", powers of two up to 16384.
    void setSize(const QString& size);
    void setSeed(const QString& seed);
    /// Seconds; a sequence holds its last picture beyond its end. Nothing happens where no input depends on
    /// time. Throws Failure for a picture of a sequence that can't be read.
    void setTime(float seconds);
    bool hasTime() const;

    /// Tells the engine what it has not been told yet. Throws Failure for a value that it refuses.
    void push(Zph::Applications::Player::InputSink& engine);

private:
    struct Entry
    {
        Zph::Applications::Player::Input identity;
        Zph::Applications::Player::PackageInput input;
        Zph::Applications::Player::InputDetails details;
        Zph::Applications::Player::InputValue value;
        QString text; // of a text input, or the path of a picture
        std::shared_ptr<Zph::Applications::Player::ImageInput> image; // of an image input
        std::optional<Zph::Applications::Player::ImageSequence> sequence;
        int sequenceNumber = 0; // of the picture that `image` has
        bool dirty = false;
    };

    static bool isDefault(const Entry& entry);
    static bool isPanelDefault(const Entry& entry);
    PresetDescription collect(const QString& graphKey, bool (*isLeftOut)(const Entry&)) const;
    std::vector<std::size_t> find(const QString& identifier) const;
    /// Throws UsageError with the inputs that there are.
    std::vector<std::size_t> findOrThrow(const QString& identifier) const;
    bool pushOne(const Entry& entry, Zph::Applications::Player::InputSink& engine) const;
    static void assignText(Entry& entry, const QString& text);
    /// The places of the inputs and the value of "ID=VALUE".
    std::pair<std::vector<std::size_t>, QString> parsed(const char* option, const QString& assignment) const;
    static void showPicture(Entry& entry, const QString& path);
    static void readPicture(Entry& entry, const QString& path);
    /// The same, or a sequence.
    void readPictures(Entry& entry, const QString& path) const;

    std::optional<double> m_sequenceRate;
    std::vector<Entry> m_entries;
};

} // namespace vellor::tool
