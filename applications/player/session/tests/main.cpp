#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Ornex"));
    QCoreApplication::setApplicationName(QStringLiteral("Vellor Player Session Test"));
    auto& codecs = Orn::Image::Codec::SurfaceCodecManager::instance();
    Orn::Image::Codec::registerDefaultCodecs(codecs);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
