#include "applications/player/images/widgets/imageserverfactories.h"
#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QApplication>
#include <QStandardPaths>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    QApplication::setOrganizationName("VellorTest");
    QApplication::setApplicationName("playerimagewidgets_test");
    Orn::Image::Codec::registerDefaultCodecs(Orn::Image::Codec::SurfaceCodecManager::instance());
    Zph::Applications::Player::registerDefaultImageServerFactories();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
