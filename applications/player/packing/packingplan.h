#pragma once

#include "applications/player/output/basename.h"
#include "applications/player/packing/normalformat.h"
#include "applications/player/packing/packingtemplate.h"

namespace Zph::Applications::Player {

// One channel of a file that will be written.
struct PlannedChannel
{
    int source = -1;                            // in PlannedFile::sources; -1: the constant
    SourceChannel channel = SourceChannel::Own; // never Own
    bool isInverted = false;
    float constant = 0;
};

// A picture that a file is made of.
struct PlannedSource
{
    PackageOutput output;
    int normalFormat = -1; // of normals; -1 for what holds none
};

struct PlannedFile
{
    QString graphKey;
    QString name;
    QString format; // as in PackingFile: may be empty
    PictureDepth depth = PictureDepth::OfPicture;
    NormalDirection normals = NormalDirection::OfPackage;
    QVector<PlannedChannel> channels; // grey; red, green, blue; or these and alpha
    QVector<PlannedSource> sources;   // in the order of the channels, each once; at least one

    bool hasAlpha() const { return channels.size() == 4; }
    // What tokens of a pattern that speak of an output mean, and what metadata calls the file by.
    const PackageOutput& mainOutput() const { return sources.first().output; }
};

// What a template makes of a package.
struct PackingPlan
{
    QString pattern;            // the template's; may be empty
    QVector<PlannedFile> files; // by graph, then as in the template
    QStringList notes;          // for the user: which channel is a number for want of an output

    // The outputs that are needed, in the order of the package.
    QVector<PackageOutput> outputs() const;

    // Whether the template leaves the format, or the depth, of some file to whoever exports.
    bool leavesFormat() const;
    bool leavesDepth() const;
    // Gives the files that lack them a format and a depth, which may be PictureDepth::OfPicture. Returns an
    // empty text, or which file can't be of the depth or would lose its alpha.
    QString settle(const QString& format, PictureDepth depth);
};

// What the tokens of a pattern stand for in a file's name: those of its main output, but its own name for %O.
BaseNameSource packedBaseNameSource(const PlannedFile& file, const PackageModel& package,
                                    const QString& preset);

// Finds the outputs that a template names, graph by graph, among `outputs`, which are in the package's order:
// of several with one usage the first. A file of a graph that has none of its outputs is left out, and alpha
// where there is neither an output nor a number; any other channel without an output gets its number, or 0.
PackingPlan planPacking(const PackingTemplate& content, const PackageModel& package,
                        const QVector<PackageOutput>& outputs, const InputValueOf& valueOf);

} // namespace Zph::Applications::Player
