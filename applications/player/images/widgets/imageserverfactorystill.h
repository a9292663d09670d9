#pragma once

#include "applications/player/images/widgets/imageserverfactorybase.h"

namespace Zph::Applications::Player {

class ImageServerFactoryStill : public ImageServerFactoryBase
{
public:
    QString name() const override;
    QString filters() const override;
    ImageServerBase* create(const QString& path, QObject* parent) override;
};

} // namespace Zph::Applications::Player
