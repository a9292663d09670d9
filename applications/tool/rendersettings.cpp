#include "applications/tool/rendersettings.h"

#include "applications/tool/packingoption.h"

#include <QRegularExpression>

#include <cmath>

namespace vellor::tool {

using namespace Zph::Applications::Player;

namespace {

QString textOf(const Arguments& arguments, const char* option, const char* fallback = "")
{
    return QString::fromStdString(arguments.value(option, fallback));
}

[[noreturn]] void wrong(const char* option, const QString& expected, const QString& text)
{
    throw UsageError(QStringLiteral("%1: expected %2, not '%3'").arg(option, expected, text).toStdString());
}

QString readFormat(const Arguments& arguments)
{
    QString format = textOf(arguments, "--format", "png").toLower();
    if (format.startsWith('.'))
        format.remove(0, 1);
    const QStringList known = pictureFormats();
    if (!known.contains(format))
        wrong("--format", "one of " + known.join(", "), format);
    return format;
}

/// With a template, the format that it is for is known later.
PictureDepth readDepth(const Arguments& arguments, const QString& format)
{
    if (!arguments.has("--depth"))
        return PictureDepth::OfPicture;
    const QString text = textOf(arguments, "--depth");
    const QVector<PictureDepth> held = depthsOf(arguments.has("--template") ? QString() : format);
    const auto depth = depthFromName(text);
    if (depth && held.contains(*depth))
        return *depth;
    QStringList names;
    for (const PictureDepth each : held)
        names.append(depthName(each));
    wrong("--depth", names.join(" or ") + " for " + format, text);
}

FrameRange readFrames(const Arguments& arguments)
{
    static const QRegularExpression range(QStringLiteral("^([0-9]{1,9})(?:-([0-9]{1,9}))?$"));
    const QString text = textOf(arguments, "--frames");
    const QRegularExpressionMatch match = range.match(text);
    FrameRange frames;
    frames.first = match.captured(1).toInt();
    const int last = match.captured(2).isEmpty() ? frames.first : match.captured(2).toInt();
    frames.count = last - frames.first + 1;
    if (arguments.has("--frames") && (!match.hasMatch() || frames.count < 1))
        wrong("--frames", "a range like 0-99", text);
    return frames;
}

/// With a template, for those of its files that have levels of quality.
QVariantMap readQuality(const Arguments& arguments, const QString& format)
{
    if (!arguments.has("--quality"))
        return {};
    const QString text = textOf(arguments, "--quality");
    bool valid = false;
    const int quality = text.toInt(&valid);
    if (!valid || quality < 0 || quality > 100)
        wrong("--quality", "a number from 0 to 100", text);
    if (qualityOption(format).isEmpty() && !arguments.has("--template"))
        throw UsageError(QStringLiteral("--quality: %1 has no levels of quality").arg(format).toStdString());
    return withQuality(quality);
}

double readRate(const Arguments& arguments)
{
    const QString text = textOf(arguments, "--fps", "30");
    bool valid = false;
    const double rate = text.toDouble(&valid);
    if (!valid || !(rate > 0.0) || !std::isfinite(rate))
        wrong("--fps", "a number above 0", text);
    return rate;
}

MetadataChoices readMetadata(const Arguments& arguments)
{
    using Metadata = MetadataChoices::Metadata;
    const QString text = textOf(arguments, "--metadata", "none");
    if (text == "none")
        return {Metadata::Disabled};
    if (text == "embedded")
        return {Metadata::Embedded};
    if (text == "file")
        return {Metadata::File};
    wrong("--metadata", "embedded, file or none", text);
}

} // namespace

const std::vector<Option>& renderOptions()
{
    static const std::vector<Option> options{
        {"--directory", "-o", "DIR", "the folder for the files, made if needed; the current one by default"},
        {"--format", nullptr, "EXT", "the format of the files: png (the default), tga, tif, exr, jpg..."},
        {"--depth", nullptr, "8|16|16f|32f",
         "bits of a channel, f for floating point; what the output has by default"},
        {"--quality", nullptr, "N",
         "for formats that lose some of the picture: 0 gives the smallest file, 100 the best; 75 by default"},
        {"--pattern", nullptr, "NAME",
         "the names of files: %O output, %G graph, %P package, %F path, %U usage, %I uid, %R preset, #### "
         "frame"},
        {"--frames", nullptr, "A-B",
         "renders the frames from A to B, for packages with an input $time or a sequence of --image"},
        {"--fps", nullptr, "N", "frames in a second; 30 by default"},
        kTemplate,
        {"--metadata", nullptr, "embedded|file|none",
         "keeps the package and the values at the end of each picture's file, or in a .vlrmeta file beside "
         "it, "
         "for the window to open; none by default"},
        {"--hash", nullptr, nullptr,
         "prints the MD5 digest of each output's raw pixels; writes files only with -o"},
    };
    return options;
}

RenderSettings readRenderSettings(const Arguments& arguments)
{
    RenderSettings settings;
    ExportChoices& files = settings.files;
    if (!arguments.has("--hash") || arguments.has("--directory"))
        files.folder = textOf(arguments, "--directory", ".");
    files.pattern = textOf(arguments, "--pattern");
    files.picture.format = readFormat(arguments);
    files.picture.depth = readDepth(arguments, files.picture.format);
    files.picture.codec = readQuality(arguments, files.picture.format);
    files.isAnimation = arguments.has("--frames");
    files.frames = readFrames(arguments);
    files.frames.rate = readRate(arguments);
    files.metadata = readMetadata(arguments);
    return settings;
}

} // namespace vellor::tool
