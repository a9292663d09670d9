#include "resources/resources.h"

#include <QApplication>
#include <QStandardPaths>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    QApplication::setOrganizationName("VellorTest");
    QApplication::setApplicationName("playertweaks_test");
    Orn::Resources::initResources();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
