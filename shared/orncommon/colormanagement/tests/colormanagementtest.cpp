#include "orncommon/colormanagement/engineselection.h"
#include "orncommon/colormanagement/legacycolormanagementengine.h"
#include "orncommon/colormanagement/linearsrgbtosrgbcolorspacetransform.h"
#include "orncommon/colormanagement/nulllogger.h"
#include "orncommon/core/defaultsettings.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <stdexcept>
#include <vector>

using namespace Orn::ColorManagement;

namespace {

struct RecordingLogger : ILogger
{
    void logInfo(std::string const& text) const override { lines.push_back("I " + text); }
    void logWarning(std::string const& text) const override { lines.push_back("W " + text); }
    void logError(std::string const& text) const override { lines.push_back("E " + text); }

    mutable std::vector<std::string> lines;
};

std::string const usingLegacy = "I Using the legacy color management engine.";
std::string const failed =
    "E Error while creating the color management engine. Continuing with the legacy engine.";

struct OtherEngine : LegacyColorManagementEngine
{
    using LegacyColorManagementEngine::LegacyColorManagementEngine;
};

std::vector<EngineFactory> testFactories()
{
    using Settings = QSharedPointer<Orn::Core::ISettings>;
    using Logger = std::shared_ptr<ILogger const>;
    auto const working = [](Settings const&, Logger const& logger) {
        auto engine = std::make_shared<OtherEngine>(logger);
        engine->init();
        return engine;
    };
    auto const broken = [](Settings const&, Logger const&) -> std::shared_ptr<ColorManagementEngine> {
        throw std::runtime_error("no such configuration");
    };
    return {{"ocio", working}, {"kce", broken}};
}

TEST(EngineSelection, FollowsTheSettingAndFallsBack)
{
    struct
    {
        char const* wanted;
        bool isOther;
        std::vector<std::string> lines;
    } const rows[] = {
        {nullptr, false, {usingLegacy}},
        {"legacy", false, {usingLegacy}},
        {"ocio", true, {}},
        {"kce", false, {failed, usingLegacy}},
        {"of a later version", false, {failed, usingLegacy}},
    };
    for (auto const& row : rows) {
        QTemporaryDir folder;
        QSharedPointer<Orn::Core::ISettings> const settings(
            new Orn::Core::DefaultSettings(folder.filePath("settings.ini"), Orn::Core::DefaultSettings::Ini));
        if (row.wanted != nullptr)
            settings->setValue("preferences/colormanagement/colorManagementEngine", row.wanted);
        auto const logger = std::make_shared<RecordingLogger>();
        EngineSelection const selection = selectColorManagementEngine(settings, logger, testFactories());
        ASSERT_TRUE(selection.engine);
        EXPECT_EQ(dynamic_cast<OtherEngine*>(selection.engine.get()) != nullptr, row.isOther);
        EXPECT_EQ(logger->lines, row.lines);
        EXPECT_TRUE(settings->group().isEmpty());
        float grey[3] = {0.5f, 0.5f, 0.5f};
        selection.linearToDisplay->applyRGB(grey);
        EXPECT_NEAR(grey[0], row.isOther ? 0.5f : 0.7353569f, 1e-5f);
    }
}

TEST(LegacyEngine, LeavesColoursAlone)
{
    LegacyColorManagementEngine engine(NullLogger::create());
    engine.init();
    std::string const working = engine.getWorkingColorSpaceName();
    EXPECT_EQ(engine.getDefaultColorSpaceForImage("a.exr", Orn::Surfaces::RGBA32F, true), working);
    EXPECT_TRUE(engine.getThumbnailTransform()->isNoOp());
    float colour[3] = {0.1f, 0.5f, 7.0f};
    engine.createTransform(working, working)->applyRGB(colour);
    engine.getWorkingSpaceToDisplayTransform()->applyRGB(colour);
    EXPECT_EQ(colour[0], 0.1f);
    EXPECT_EQ(colour[2], 7.0f);
    EXPECT_EQ(engine.createTransform("nothing", working), nullptr);
}

TEST(LinearsRGBTosRGB, WalksRowsAndLeavesAlphaAndPadding)
{
    auto const transform = LinearsRGBTosRGBColorSpaceTransform::create();
    // 128 encodes to 187.8; two rows of one pixel and two bytes of padding.
    std::vector<unsigned char> pixels = {128, 0, 255, 128, 9, 9, 0, 128, 0, 7, 9, 9};
    transform->apply(1, 2, PixelFormat::RGBA8, AlphaMode::Straight, 6, pixels.data());
    EXPECT_EQ(pixels, (std::vector<unsigned char>{188, 0, 255, 128, 9, 9, 0, 188, 0, 7, 9, 9}));
    // 0.107 / 0.5 = 0.214 encodes to 0.5, times 0.5.
    float premultiplied[4] = {0.10702057f, 0.0f, 0.0f, 0.5f};
    transform->apply(1, 1, PixelFormat::RGBA32F, AlphaMode::Premultiplied, 16,
                     reinterpret_cast<unsigned char*>(premultiplied));
    EXPECT_NEAR(premultiplied[0], 0.25f, 1e-6f);
    EXPECT_EQ(premultiplied[3], 0.5f);
}

} // namespace
