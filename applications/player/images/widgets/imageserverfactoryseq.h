#pragma once

#include "applications/player/images/widgets/imageserverfactorystill.h"

namespace Zph::Applications::Player {

// For files that begin a numbered sequence, where the user says that it is to be one.
class ImageServerFactorySeq : public ImageServerFactoryStill
{
public:
    QString name() const override;
    ImageServerBase* create(const QString& path, QObject* parent) override;
};

} // namespace Zph::Applications::Player
