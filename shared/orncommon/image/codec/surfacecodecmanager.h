#pragma once

#include "orncommon/image/codec/surfacecodecfactory.h"

#include <QObject>
#include <QVector>

namespace Orn::Image::Codec {

/// The factories in order of registration: the first that can do a thing does it. Registration happens at
/// start-up; afterwards everything may be called from any thread. The program uses `instance()`.
class SurfaceCodecManager : public QObject
{
    Q_OBJECT

public:
    SurfaceCodecManager();
    ~SurfaceCodecManager() override;

    static SurfaceCodecManager& instance();

    void registerFactory(QSharedPointer<SurfaceCodecFactory> const& factory);

    QList<ImageFormat> const& getReadableFormats() const { return m_readableFormats; }
    QList<ImageFormat> const& getWritableFormats() const { return m_writableFormats; }

    /// A codec for the device; null when no factory has one. An empty format leaves it to the content.
    QSharedPointer<SurfaceCodec> createReader(QIODevice& device, QByteArray const& format) const;
    QSharedPointer<SurfaceCodec> createWriter(QIODevice& device, QByteArray const& format) const;

    void setOptions(Action action, QByteArray const& optionId, SurfaceCodecOptions const& options);

    /// False, and nothing changed, for an id that no factory knows.
    bool getOptions(SurfaceCodecOptions& options, Action action, QByteArray const& optionId) const;
    bool getOptionsDescs(SurfaceCodecOptions& options, Action action, QByteArray const& optionId) const;

    /// Empty when the format has no options.
    QByteArray getFormatOptionIdFromFormat(QByteArray const& format) const;
    QList<ImageFormat> getImageFormats(QByteArray const& optionId) const;

    /// The image in a file; null, with a warning, when there is none. `options` may be null.
    QSharedPointer<Surfaces::Surface> loadFile(QString const& path,
                                               SurfaceCodecOptions* options = nullptr) const;

    /// Writes the surface in the format of the path's suffix. Options that the caller does not set have the
    /// format's default. A failure gives false and leaves a file that stood there as it was, and nothing
    /// beside it.
    bool saveFile(QSharedPointer<Surfaces::Surface> const& surface, QString const& path,
                  SurfaceCodecOptions const* options = nullptr) const;

Q_SIGNALS:
    void formatsChanged();

private:
    void onFactoriesChanged();
    QSharedPointer<SurfaceCodec> createCodec(QIODevice& device, QByteArray const& format,
                                             int capability) const;
    SurfaceCodecOptions completeOptions(QByteArray const& format, SurfaceCodecOptions const* options) const;

    QVector<QSharedPointer<SurfaceCodecFactory>> m_factories;
    QList<ImageFormat> m_readableFormats;
    QList<ImageFormat> m_writableFormats;
};

} // namespace Orn::Image::Codec
