#include "applications/player/packing/normalformat.h"

#include <algorithm>
#include <cmath>

namespace Zph::Applications::Player {

namespace {

constexpr int invertedX = 1, invertedY = 2, shortZ = 4, noZ = 8, yInAlpha = shortZ | noZ;

// Without links nobody knows, and the input is taken to mean what it is called.
bool alters(const PackageInput& input, const PackageOutput& output, const AlterationLinks& links)
{
    return std::size_t(input.index) >= links.size() || links[std::size_t(input.index)].count(output.uid) != 0;
}

int turnedAxes(int format, NormalDirection direction)
{
    return (format & (invertedX | invertedY)) ^ (direction == NormalDirection::OpenGl ? invertedY : 0);
}

} // namespace

bool holdsNormals(const PackageOutput& output)
{
    return std::any_of(output.usages.cbegin(), output.usages.cend(), [](const QString& usage) {
        return usage.endsWith(QLatin1String("normal"), Qt::CaseInsensitive);
    });
}

int normalFormatOf(const PackageOutput& output, const PackageModel& package, const InputValueOf& valueOf)
{
    for (const PackageInput& input : package.inputs()) {
        const bool isNear =
            input.graphKey == output.graphKey || input.graphKey == DescriptionIndex::globalKey();
        if (isNear && input.element.attribute("identifier") == QLatin1String("$normalformat") &&
            alters(input, output, package.alterationLinks()))
            return valueOf(input).intAt(0) & (invertedX | invertedY | shortZ | noZ);
    }
    const QString tag = package.description().output(output.uid).element.attribute("usertag");
    return tag.compare(QLatin1String("opengl"), Qt::CaseInsensitive) == 0 ? invertedY : 0;
}

void turnNormals(float* pixels, unsigned channels, std::size_t count, int format, NormalDirection direction)
{
    const bool turnsX = (turnedAxes(format, direction) & invertedX) != 0;
    const bool turnsY = (turnedAxes(format, direction) & invertedY) != 0;
    const int packed = format & yInAlpha;
    if (channels < 3 || invertedNormals(format, direction) == 0)
        return;
    for (float* const end = pixels + count * channels; pixels != end; pixels += channels) {
        float x = pixels[0], y = pixels[1], z = pixels[2];
        if (packed == yInAlpha && channels == 4) {
            y = pixels[3];
            pixels[3] = 1.0f;
        }
        if (turnsX)
            x = 1.0f - x;
        if (turnsY)
            y = 1.0f - y;
        if (packed == shortZ) {
            z = 0.5f + 0.5f * z;
        } else if (packed != 0) {
            const float u = 2.0f * x - 1.0f, v = 2.0f * y - 1.0f;
            z = 0.5f + 0.5f * std::sqrt(std::max(0.0f, 1.0f - u * u - v * v));
        }
        pixels[0] = x;
        pixels[1] = y;
        pixels[2] = z;
    }
}

std::optional<int> invertedNormals(int format, NormalDirection direction)
{
    if (direction == NormalDirection::OfPackage)
        return 0;
    return format & yInAlpha ? std::optional<int>() : turnedAxes(format, direction);
}

} // namespace Zph::Applications::Player
