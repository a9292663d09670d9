// The C face of the cooker, as a program sees it: order of calls, result codes, callbacks, ownership.

#include <vellor/cooker.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

std::vector<int> stages;
std::vector<std::string> messages;

void onStage(VellorCookerContext*, int32_t stage)
{
    stages.push_back(stage);
}
void onMessage(VellorCookerContext*, int32_t level, const char* text)
{
    messages.push_back(std::to_string(level) + " " + text);
}

class CookerInterface : public testing::Test
{
protected:
    void SetUp() override
    {
        stages.clear();
        messages.clear();
        m_folder = std::filesystem::temp_directory_path() / ("vellor-cooker-" + std::to_string(getpid()));
        std::filesystem::create_directories(m_folder);
        ASSERT_EQ(vellorCookerContextInit(&m_context, VELLOR_COOKER_API_VERSION), VELLOR_COOKER_OK);
        vellorCookerContextSetCallback(m_context, VELLOR_COOKER_CALLBACK_STAGE,
                                       reinterpret_cast<VellorFunction>(onStage));
        vellorCookerContextSetCallback(m_context, VELLOR_COOKER_CALLBACK_MESSAGE,
                                       reinterpret_cast<VellorFunction>(onMessage));
        ASSERT_EQ(vellorCookerHandleInit(&m_handle, m_context), VELLOR_COOKER_OK);
    }

    void TearDown() override
    {
        EXPECT_EQ(vellorCookerHandleRelease(m_handle), VELLOR_COOKER_OK);
        EXPECT_EQ(vellorCookerContextRelease(m_context), VELLOR_COOKER_OK);
        std::filesystem::remove_all(m_folder);
    }

    uint32_t push(const std::string& name)
    {
        const std::u32string path = (m_folder / name).u32string();
        std::vector<uint32_t> wide(path.begin(), path.end());
        wide.push_back(0);
        return vellorCookerHandlePushPackageFileW(m_handle, wide.data());
    }

    uint32_t pushText(const std::string& name, const std::string& text)
    {
        std::ofstream(m_folder / name) << text;
        return push(name);
    }

    std::string description()
    {
        const char* xml = nullptr;
        EXPECT_EQ(vellorCookerHandleGetIODesc(m_handle, &xml), VELLOR_COOKER_OK);
        return xml ? xml : "";
    }

    std::filesystem::path m_folder;
    VellorCookerContext* m_context = nullptr;
    VellorCookerHandle* m_handle = nullptr;
};

const char* const kGood = R"(<package formatversion="1"><graph identifier="g"><inputs>
<input identifier="$outputsize"/><input identifier="$randomseed"/><input identifier="$pixelsize"/></inputs>
<nodes><node id="n" type="uniform"/></nodes><outputs><output identifier="o" from="n"/></outputs></graph></package>)";

TEST_F(CookerInterface, CooksInStages)
{
    ASSERT_EQ(pushText("gr\u00fcn.vlr", kGood), VELLOR_COOKER_OK);
    const void* data = nullptr;
    uint64_t size = 0;
    EXPECT_EQ(vellorCookerHandleGetAssembly(m_handle, &data, &size), VELLOR_COOKER_ERROR_NO_RESULTS);
    EXPECT_EQ(vellorCookerHandleCook(m_handle), VELLOR_COOKER_OK);
    EXPECT_EQ(stages, (std::vector<int>{0, 1, 2, 4}));
    EXPECT_EQ(messages, std::vector<std::string>{});
    EXPECT_EQ(vellorCookerHandleGetAssembly(m_handle, &data, &size), VELLOR_COOKER_OK);
    ASSERT_GT(size, 8u);
    EXPECT_EQ(std::string(static_cast<const char*>(data), 6), "VLRASM");
    EXPECT_NE(description().find("pkg://g"), std::string::npos);
}

TEST_F(CookerInterface, LeavesOpenWhatTheOptionSays)
{
    const char* const names[] = {"$outputsize", "$randomseed", "$pixelsize"};
    ASSERT_EQ(pushText("a.vlr", kGood), VELLOR_COOKER_OK);
    for (uint32_t bits = 0; bits < 8; ++bits) {
        vellorCookerContextSetOption(m_context, VELLOR_COOKER_OPTION_DYNAMIC, bits);
        ASSERT_EQ(vellorCookerHandleCook(m_handle), VELLOR_COOKER_OK);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(description().find(names[i]) != std::string::npos, (bits >> i & 1) != 0)
                << names[i] << bits;
    }
}

TEST_F(CookerInterface, TellsFailuresByCodeAndMessage)
{
    EXPECT_EQ(vellorCookerHandleCook(m_handle), VELLOR_COOKER_ERROR_NO_PACKAGES);
    EXPECT_EQ(push("gone.vlr"), VELLOR_COOKER_ERROR_IO);
    EXPECT_EQ(push(""), VELLOR_COOKER_ERROR_IO);
    EXPECT_EQ(vellorCookerHandlePushIncludeDirA(m_handle, "vlr", "/no/such/folder"),
              VELLOR_COOKER_ERROR_INVALID_DIRECTORY);
    EXPECT_EQ(vellorCookerHandlePushIncludeDirA(m_handle, "vlr", m_folder.c_str()), VELLOR_COOKER_OK);

    ASSERT_EQ(pushText("a.vlr", "<package formatversion=\"1\"><graph identifier=\"g\"><nodes><node id=\"n\" "
                                "type=\"x\"/></nodes></graph></package>"),
              VELLOR_COOKER_OK);
    EXPECT_EQ(vellorCookerHandleCook(m_handle), VELLOR_COOKER_ERROR_INTERMEDIARY);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].find("2 " + (m_folder / "a.vlr").string() + ":1:"), 0u) << messages[0];
    ASSERT_EQ(pushText("b.vlr", "<package"), VELLOR_COOKER_OK);
    EXPECT_EQ(vellorCookerHandleCook(m_handle), VELLOR_COOKER_ERROR_FRONT_END);
    const char* xml = nullptr;
    EXPECT_EQ(vellorCookerHandleGetIODesc(m_handle, &xml), VELLOR_COOKER_ERROR_NO_RESULTS);
}

TEST_F(CookerInterface, RefusesOtherVersionsAndNothing)
{
    VellorCookerContext* context = m_context;
    EXPECT_EQ(vellorCookerContextInit(&context, 0x10000), VELLOR_COOKER_ERROR_API_VERSION);
    EXPECT_EQ(context, nullptr);
    EXPECT_EQ(vellorCookerContextInit(nullptr, VELLOR_COOKER_API_VERSION),
              VELLOR_COOKER_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(vellorCookerHandlePushPackageFileW(m_handle, nullptr), VELLOR_COOKER_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(vellorCookerHandleCook(nullptr), VELLOR_COOKER_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(vellorCookerContextSetOption(m_context, 99, 0), VELLOR_COOKER_ERROR_INVALID_ARGUMENT);
}

} // namespace
