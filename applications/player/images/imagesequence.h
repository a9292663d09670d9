#pragma once

#include <QString>

#include <optional>

namespace Zph::Applications::Player {

// What a sequence shows before its first and behind its last frame.
enum class TimeClamping
{
    None = 0, // nothing
    Clamp = 1,
    Repeat = 2
};

// Numbered pictures in one folder: "shot_a012.png", "shot_a013.png"...
struct ImageSequence
{
    QString pattern; // the path, with "*" where the number stands
    int digits = 1;  // of the number, padded with zeros
    int firstFrame = 0;
    int frameCount = 1;

    QString file(int number) const;

    // The number of the frame for a time in seconds; below firstFrame where there is none. Repeating, the
    // times up to 0 count down from the last frame.
    int numberAt(float time, float framesPerSecond, TimeClamping clamping) const;
};

// The sequence that a file begins: the last digits of its name are the number, and the file of the number
// after it is there. As many frames as follow one another without a gap.
std::optional<ImageSequence> findImageSequence(const QString& path);

} // namespace Zph::Applications::Player
