#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QAtomicInt>
#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QFileInfo>

namespace Orn::Image::Codec {

namespace {

void appendNew(QList<ImageFormat>& list, QList<ImageFormat> const& added)
{
    for (ImageFormat const& format : added)
        if (!list.contains(format))
            list.append(format);
}

QByteArray formatOf(QString const& path)
{
    return QFileInfo(path).suffix().toLower().toUtf8();
}

/// A name beside the target that no other save uses.
QString temporaryPath(QString const& path)
{
    static QAtomicInt counter;
    return QStringLiteral("%1.%2-%3.tmp")
        .arg(path)
        .arg(QCoreApplication::applicationPid())
        .arg(counter.fetchAndAddRelaxed(1));
}

/// A new file that goes again unless it was put in the target's place.
class TemporaryFile
{
public:
    explicit TemporaryFile(QString const& target) : m_target(target), m_file(temporaryPath(target)) {}
    ~TemporaryFile()
    {
        if (!m_isOurs)
            return;
        m_file.close();
        m_file.remove();
    }
    TemporaryFile(TemporaryFile const&) = delete;
    TemporaryFile& operator=(TemporaryFile const&) = delete;

    bool open() { return m_isOurs = m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly); }
    QFile& file() { return m_file; }

    bool replaceTarget()
    {
        if (!m_file.flush() || m_file.error() != QFileDevice::NoError)
            return false;
        m_file.close();
        if (QFile::exists(m_target) && !QFile::remove(m_target))
            return false;
        bool const renamed = m_file.rename(m_target);
        m_isOurs = !renamed;
        return renamed;
    }

private:
    QString m_target;
    QFile m_file;
    bool m_isOurs = false;
};

} // namespace

SurfaceCodecManager::SurfaceCodecManager() = default;
SurfaceCodecManager::~SurfaceCodecManager() = default;

SurfaceCodecManager& SurfaceCodecManager::instance()
{
    static SurfaceCodecManager manager;
    return manager;
}

void SurfaceCodecManager::registerFactory(QSharedPointer<SurfaceCodecFactory> const& factory)
{
    m_factories.append(factory);
    onFactoriesChanged();
}

void SurfaceCodecManager::onFactoriesChanged()
{
    for (auto const& factory : m_factories) {
        appendNew(m_readableFormats, factory->readFormats());
        appendNew(m_writableFormats, factory->writeFormats());
    }
    Q_EMIT formatsChanged();
}

QSharedPointer<SurfaceCodec> SurfaceCodecManager::createCodec(QIODevice& device, QByteArray const& format,
                                                              int capability) const
{
    for (auto const& factory : m_factories)
        if ((factory->capabilities(device, format) & capability) != 0)
            return factory->create(device, format);
    return {};
}

QSharedPointer<SurfaceCodec> SurfaceCodecManager::createReader(QIODevice& device,
                                                               QByteArray const& format) const
{
    return createCodec(device, format, SurfaceCodecFactory::CanRead);
}

QSharedPointer<SurfaceCodec> SurfaceCodecManager::createWriter(QIODevice& device,
                                                               QByteArray const& format) const
{
    return createCodec(device, format, SurfaceCodecFactory::CanWrite);
}

void SurfaceCodecManager::setOptions(Action action, QByteArray const& optionId,
                                     SurfaceCodecOptions const& options)
{
    for (auto const& factory : m_factories)
        factory->setOptions(action, optionId, options);
}

bool SurfaceCodecManager::getOptions(SurfaceCodecOptions& options, Action action,
                                     QByteArray const& optionId) const
{
    for (auto const& factory : m_factories)
        if (factory->getOptions(options, action, optionId))
            return true;
    return false;
}

bool SurfaceCodecManager::getOptionsDescs(SurfaceCodecOptions& options, Action action,
                                          QByteArray const& optionId) const
{
    for (auto const& factory : m_factories)
        if (factory->getOptionsDescs(options, action, optionId))
            return true;
    return false;
}

QByteArray SurfaceCodecManager::getFormatOptionIdFromFormat(QByteArray const& format) const
{
    for (auto const& factory : m_factories) {
        QByteArray const id = factory->getFormatOptionIdFromFormat(format);
        if (!id.isEmpty())
            return id;
    }
    return {};
}

QList<ImageFormat> SurfaceCodecManager::getImageFormats(QByteArray const& optionId) const
{
    QList<ImageFormat> formats;
    for (auto const& factory : m_factories)
        appendNew(formats, factory->getImageFormats(optionId));
    return formats;
}

QSharedPointer<Surfaces::Surface> SurfaceCodecManager::loadFile(QString const& path,
                                                                SurfaceCodecOptions* options) const
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning().noquote().nospace() << "FileTextureLoader >> Loading " << path << " Failed";
        return {};
    }
    auto const reader = createReader(file, formatOf(path));
    if (reader.isNull()) {
        qWarning("Can't find image codec");
        return {};
    }
    QSharedPointer<Surfaces::Surface> surface;
    if (!reader->read(surface, options)) {
        qWarning("Can't load file: corrupted file ?");
        return {};
    }
    return surface;
}

SurfaceCodecOptions SurfaceCodecManager::completeOptions(QByteArray const& format,
                                                         SurfaceCodecOptions const* options) const
{
    SurfaceCodecOptions complete;
    getOptions(complete, Action::Write, getFormatOptionIdFromFormat(format));
    if (options != nullptr)
        complete.mergeValues(*options);
    return complete;
}

bool SurfaceCodecManager::saveFile(QSharedPointer<Surfaces::Surface> const& surface, QString const& path,
                                   SurfaceCodecOptions const* options) const
{
    QByteArray const format = formatOf(path);
    TemporaryFile temporary(path);
    if (!temporary.open())
        return false;
    auto const writer = createWriter(temporary.file(), format);
    if (writer.isNull())
        return false;
    SurfaceCodecOptions const complete = completeOptions(format, options);
    return writer->write(surface, &complete) && temporary.replaceTarget();
}

} // namespace Orn::Image::Codec
