#pragma once

#include "orncommon/image/codec/imageformat.h"
#include "orncommon/image/codec/surfacecodec.h"
#include "orncommon/image/codec/surfacecodecoptions.h"

#include <QByteArray>
#include <QHash>
#include <QIODevice>
#include <QList>

namespace Orn::Image::Codec {

/// Makes the codecs of one library. A format is an extension in lower case, an option id the name of a group
/// of options ("png"). Set up at start-up, then only read, from any thread.
class SurfaceCodecFactory
{
public:
    enum Capability
    {
        CanRead = 1,
        CanWrite = 2,
    };

    virtual ~SurfaceCodecFactory() = default;

    /// Bits of Capability. The device may be closed; its position is as before afterwards.
    virtual int capabilities(QIODevice& device, QByteArray const& format) = 0;
    virtual QSharedPointer<SurfaceCodec> create(QIODevice& device, QByteArray const& format) = 0;
    virtual QList<ImageFormat> readFormats() const = 0;
    virtual QList<ImageFormat> writeFormats() const = 0;

    /// The option id of a format; empty when the factory has none.
    virtual QByteArray getFormatOptionIdFromFormat(QByteArray const& format) const;

    /// The formats that an option id stands for.
    virtual QList<ImageFormat> getImageFormats(QByteArray const& optionId) const;

    /// Values and descriptions of an option id. The getters give false, and leave `options` alone, for an id
    /// that the factory does not know; the setters ignore such an id but for the first `setOptionsDesc`,
    /// which declares it.
    void setOptions(Action action, QByteArray const& optionId, SurfaceCodecOptions const& options);
    bool getOptions(SurfaceCodecOptions& options, Action action, QByteArray const& optionId) const;
    void setOptionsDesc(Action action, QByteArray const& optionId, SurfaceCodecOptions const& options);
    bool getOptionsDescs(SurfaceCodecOptions& options, Action action, QByteArray const& optionId) const;

private:
    struct Options
    {
        SurfaceCodecOptions options;
    };
    using OptionsOfIds = QHash<QByteArray, Options>;

    OptionsOfIds& optionsOf(Action action) { return m_options[int(action)]; }
    OptionsOfIds const& optionsOf(Action action) const { return m_options[int(action)]; }

    OptionsOfIds m_options[2];
};

} // namespace Orn::Image::Codec
