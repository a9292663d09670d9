#pragma once

#include "applications/player/output/picturefile.h"

#include <optional>

namespace Zph::Applications::Player {

// Which channel of which output goes to which channel of which file: what a template for packing says, with
// no package in sight. docs/templates.md has the form that people write.

// Which way green points in normals that are written.
enum class NormalDirection
{
    OfPackage, // as the package has it
    OpenGl,    // up the picture
    Direct3d   // down the picture
};

// What is taken of an output's pixel.
enum class SourceChannel
{
    Own, // of a channel of colour the same one; of a single channel the grey value
    Red,
    Green,
    Blue,
    Alpha,
    Luminance
};

// An output, by one of the two names.
struct PackingSource
{
    QString usage;      // lower case; or empty
    QString identifier; // or empty
    SourceChannel channel = SourceChannel::Own;
    bool isInverted = false; // 1 - value
    bool isOptional = false; // few packages have it: nothing is said where it isn't there
};

// The channels of a file that a template can speak of.
enum class PackingTarget
{
    Grey, // the file has this one alone
    Rgb,  // three at once
    Red,
    Green,
    Blue,
    Alpha
};

struct PackingChannel
{
    PackingTarget target = PackingTarget::Grey;
    QVector<PackingSource> sources; // the first that the package has counts
    std::optional<double> constant; // 0 to 1, where it has none of them
};

struct PackingFile
{
    QString name;   // stands for "%O" in patterns; not empty, and unique in its template
    QString format; // an extension of pictureFormats(); empty: whatever was chosen otherwise
    PictureDepth depth = PictureDepth::OfPicture; // the same
    // Grey; or red, green and blue in one or in three, with or without alpha. In the order of the file.
    QVector<PackingChannel> channels;
};

struct PackingTemplate
{
    QString label; // for people; may be empty
    QString description;
    QString pattern; // of base names; empty: the usual one
    NormalDirection normals = NormalDirection::OfPackage;
    QVector<PackingFile> files; // at least one
};

// "grey", "rgb", "r", "g", "b", "a".
QString packingTargetName(PackingTarget target);

} // namespace Zph::Applications::Player
