#include "applications/player/output/picturefile.h"

#include "orncommon/image/codec/surfacecodec.h"
#include "orncommon/image/codec/surfacecodecmanager.h"
#include "orncommon/image/surfaceoperations.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace Zph::Applications::Player {

namespace {

using namespace Orn::Surfaces;
using Orn::Image::Codec::SurfaceCodecManager;
using Orn::Image::Codec::SurfaceCodecOptions;
using SurfacePtr = QSharedPointer<Surface>;

QString translated(const char* text)
{
    return QCoreApplication::translate("PictureFile", text);
}

QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

// Asked for once: asking changes it for a moment, for all threads.
mode_t usualPermissions()
{
    static const mode_t permissions = [] {
        const mode_t mask = umask(0);
        umask(mask);
        return 0666 & ~mask;
    }();
    return permissions;
}

// A file on its way to `path`. Where the system can, it has no name until all of it is there, so that not
// even a process that is killed leaves a part of it.
class FileOnItsWay
{
public:
    FileOnItsWay(const QString& path, const std::atomic<bool>* cancelled)
        : m_path(path), m_file(hiddenName() + "XXXXXX"), m_device(m_file, cancelled)
    {
    }

    // False with a reason().
    bool open() { return m_file.open() && m_device.open(QIODevice::WriteOnly); }
    QIODevice& device() { return m_device; }
    bool hasFailed() const { return m_device.hasFailed(); }

    // Empty if the file stands at its path now.
    QString finish()
    {
        if (m_device.hasFailed() || !m_device.flush())
            return m_device.isCancelled() ? translated("cancelled") : m_device.reason();
        if (fchmod(m_file.handle(), usualPermissions()) != 0)
            return systemError();
        static std::atomic<int> counter{0};
        const QString named = hiddenName() + QString::number(getpid()) + '-' + QString::number(++counter);
        if (!m_file.rename(named))
            return m_file.errorString();
        if (std::rename(QFile::encodeName(named).constData(), QFile::encodeName(m_path).constData()) != 0)
            return systemError(); // the file goes with the object
        m_file.setAutoRemove(false);
        return {};
    }

    QString reason() const
    {
        return QFileInfo(m_path).dir().exists() ? m_file.errorString() : translated("there is no such folder");
    }

private:
    // Encoders don't all look at whether their bytes are taken.
    class Device : public QIODevice
    {
    public:
        Device(QFileDevice& file, const std::atomic<bool>* cancelled) : m_file(file), m_cancelled(cancelled)
        {
        }

        bool isCancelled() const { return m_cancelled && *m_cancelled; }
        bool hasFailed() const { return m_hasFailed || isCancelled(); }
        qint64 size() const override { return m_file.size(); }
        qint64 pos() const override { return m_file.pos(); }
        bool seek(qint64 position) override
        {
            return keepReason(QIODevice::seek(position) && m_file.seek(position));
        }
        bool flush() { return keepReason(m_file.flush()); }
        // Why bytes were not taken, the first time.
        const QString& reason() const { return m_reason; }

    protected:
        qint64 readData(char*, qint64) override { return -1; }
        qint64 writeData(const char* data, qint64 size) override
        {
            return !hasFailed() && keepReason(m_file.write(data, size) == size) ? size : -1;
        }

    private:
        bool keepReason(bool isDone)
        {
            if (isDone || m_hasFailed)
                return isDone;
            m_hasFailed = true;
            m_reason = errno != 0 ? systemError() : m_file.errorString();
            return false;
        }

        QFileDevice& m_file;
        const std::atomic<bool>* m_cancelled;
        bool m_hasFailed = false;
        QString m_reason;
    };

    QString hiddenName() const
    {
        const QFileInfo info(m_path);
        return info.dir().filePath('.' + info.fileName() + '.');
    }

    QString m_path;
    QTemporaryFile m_file;
    Device m_device;
};

PixelFormat inDepth(PixelFormat format, PictureDepth depth)
{
    switch (depth) {
    case PictureDepth::Bits8:
        return withChannels(L8, getChannelsCount(format));
    case PictureDepth::Bits16:
        return withChannels(L16, getChannelsCount(format));
    case PictureDepth::Half:
        return withChannels(L16F, getChannelsCount(format));
    case PictureDepth::Float:
        return withChannels(L32F, getChannelsCount(format));
    default:
        return format;
    }
}

// Null when there is no memory.
SurfacePtr converted(const SurfacePtr& picture, PictureDepth depth)
{
    const PixelFormat format = inDepth(picture->format(), depth);
    if (format == picture->format() || depth == PictureDepth::OfPicture)
        return picture;
    SurfacePtr result;
    const ConversionParameters opaque{255};
    Orn::Image::Core::convertTo(*picture, result, format, &opaque);
    return result;
}

SurfaceCodecOptions standardOptions(const QByteArray& format)
{
    using Orn::Image::Codec::Action;
    const SurfaceCodecManager& manager = SurfaceCodecManager::instance();
    SurfaceCodecOptions options;
    manager.getOptions(options, Action::Write, manager.getFormatOptionIdFromFormat(format));
    return options;
}

SurfaceCodecOptions codecOptions(const QByteArray& format, const Surface& picture, const QVariantMap& chosen)
{
    SurfaceCodecOptions options = standardOptions(format);
    if (format == "exr")
        options.setValue(QStringLiteral("exr_use_float"), getBitsPerChannel(picture.format()) == 32);
    for (auto option = chosen.begin(); option != chosen.end(); ++option)
        if (options.contains(option.key()))
            options.setValue(option.key(), option.value());
    return options;
}

} // namespace

QStringList pictureFormats()
{
    QStringList extensions;
    for (const auto& format : SurfaceCodecManager::instance().getWritableFormats())
        extensions.append(format.extension.toLower());
    extensions.removeDuplicates();
    extensions.sort();
    return extensions;
}

QVector<PictureDepth> depthsOf(const QString& format)
{
    using Depth = PictureDepth;
    static const QStringList of8 = {"tga", "targa", "bmp", "jpg", "jpeg", "jif", "jpe", "webp"};
    if (of8.contains(format))
        return {Depth::Bits8};
    if (format == "png")
        return {Depth::Bits8, Depth::Bits16};
    if (format == "exr")
        return {Depth::Half, Depth::Float};
    if (format == "hdr")
        return {Depth::Float};
    if (format == "tif" || format == "tiff")
        return {Depth::Bits8, Depth::Bits16, Depth::Float};
    return {Depth::Bits8, Depth::Bits16, Depth::Half, Depth::Float};
}

bool holdsAlpha(const QString& format)
{
    static const QStringList without = {"jpg", "jpeg", "jif", "jpe", "hdr", "wap", "wbm", "wbmp"};
    return !without.contains(format);
}

QString depthName(PictureDepth depth)
{
    static const char* const names[] = {"", "8", "16", "16f", "32f"};
    return QLatin1String(names[int(depth)]);
}

std::optional<PictureDepth> depthFromName(const QString& name)
{
    for (const auto depth :
         {PictureDepth::Bits8, PictureDepth::Bits16, PictureDepth::Half, PictureDepth::Float}) {
        if (name == depthName(depth))
            return depth;
    }
    return {};
}

QString qualityOption(const QString& format)
{
    const auto values = standardOptions(format.toLatin1()).values();
    for (auto option = values.begin(); option != values.end(); ++option)
        if (option.key().endsWith(QLatin1String("_quality")))
            return option.key();
    return {};
}

QVariantMap withQuality(int quality)
{
    QVariantMap options;
    for (const QString& format : pictureFormats()) {
        const QString name = qualityOption(format);
        if (!name.isEmpty())
            options.insert(name, quality);
    }
    return options;
}

PictureFileError writePictureFile(const SurfacePtr& picture, const QString& path,
                                  const PictureFileOptions& options)
{
    if (options.cancelled && *options.cancelled)
        return {translated("cancelled")};
    const SurfacePtr source = picture ? converted(picture, options.depth) : picture;
    if (!source || source->isEmpty())
        return {translated("there is no memory for the picture")};
    FileOnItsWay file(path, options.cancelled);
    if (!file.open())
        return {file.reason()};
    const QByteArray format = options.format.toLatin1();
    const auto writer = SurfaceCodecManager::instance().createWriter(file.device(), format);
    if (!writer)
        return {translated("pictures can't be written in the format '%1'").arg(options.format), true};
    const SurfaceCodecOptions codec = codecOptions(format, *source, options.codec);
    const bool isEncoded = writer->write(source, &codec);
    if (!isEncoded && !file.hasFailed())
        return {translated("the picture can't be written in the format '%1'").arg(options.format)};
    if (isEncoded && options.trailer && file.device().seek(file.device().size()))
        file.device().write(options.trailer(file.device().size()));
    return {file.finish()};
}

} // namespace Zph::Applications::Player
