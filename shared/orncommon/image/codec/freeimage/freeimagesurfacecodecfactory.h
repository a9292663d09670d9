#pragma once

#include "orncommon/image/codec/surfacecodecfactory.h"

#include <map>
#include <memory>

namespace Orn::Image::Codec {

class FreeImageMgr;

/// All formats of FreeImage.
class FreeimageSurfaceCodecFactory : public SurfaceCodecFactory
{
public:
    /// `names`: descriptions to list in place of FreeImage's own, by these.
    explicit FreeimageSurfaceCodecFactory(std::map<QString, QString> const& names);
    ~FreeimageSurfaceCodecFactory() override;

    int capabilities(QIODevice& device, QByteArray const& format) override;
    QSharedPointer<SurfaceCodec> create(QIODevice& device, QByteArray const& format) override;
    QList<ImageFormat> readFormats() const override;
    QList<ImageFormat> writeFormats() const override;
    QByteArray getFormatOptionIdFromFormat(QByteArray const& format) const override;
    QList<ImageFormat> getImageFormats(QByteArray const& optionId) const override;

private:
    QList<ImageFormat> formatsOf(int plugin) const;

    std::map<QString, QString> m_names;
    std::shared_ptr<FreeImageMgr> m_mgr;
};

} // namespace Orn::Image::Codec
