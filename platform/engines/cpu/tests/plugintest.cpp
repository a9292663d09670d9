// The engine as a host meets it: a file that is loaded, asked, used and unloaded.

#include "platform/engines/cpu/tests/programbuilder.h"
#include "platform/program/programwriter.h"

#include <vellor/engine.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace vellor::cpu::testing {
namespace {

const char* const kSymbols[] = {"vellorGetCurrentVersionImpl",
                                "vellorContextInitImpl",
                                "vellorContextRelease",
                                "vellorContextSetCallback",
                                "vellorContextMemoryFree",
                                "vellorContextRestoreStates",
                                "vellorHandleInit",
                                "vellorHandleRelease",
                                "vellorHandlePushOutputs",
                                "vellorHandleFlush",
                                "vellorHandleStart",
                                "vellorHandleGetState",
                                "vellorHandleSwitchHard",
                                "vellorHandleStop",
                                "vellorHandleGetOutputs",
                                "vellorHandlePushSetInput",
                                "vellorHandleGetDesc",
                                "vellorHandleGetOutputDesc",
                                "vellorHandleGetInputDesc",
                                "vellorHandleGetInputImageDesc",
                                "vellorHandleSyncSetLabel",
                                "vellorHandleSyncGetLabel",
                                "vellorHandleGetParentContext",
                                "vellorHandleTransferCache"};

class Library
{
public:
    Library() : library_(dlopen(VELLOR_ENGINE_FILE, RTLD_NOW | RTLD_LOCAL)) {}
    ~Library()
    {
        if (library_)
            dlclose(library_);
    }
    template<class Function> Function get(const char* symbol) const
    {
        return reinterpret_cast<Function>(dlsym(library_, symbol));
    }
    bool loaded() const { return library_ != nullptr; }

private:
    void* library_;
};

program::Program uniformProgram()
{
    ProgramBuilder build;
    const int node = build.node("uniform", build.sizeValue(3, 2));
    build.constant(node, "colour", 0.5f);
    build.output(node, VELLOR_FORMAT_GRAYSCALE);
    return build.program;
}

TEST(Plugin, GivesItsVersionAndAllSymbols)
{
    const Library library;
    ASSERT_TRUE(library.loaded()) << dlerror();
    for (const char* symbol : kSymbols)
        EXPECT_NE(library.get<void*>(symbol), nullptr) << symbol;
    VellorVersion version{};
    library.get<VellorGetCurrentVersionImplFn>(kSymbols[0])(&version, VELLOR_API_VERSION);
    EXPECT_EQ(version.engineId, 19u);
    EXPECT_EQ(version.status, 0u);
    EXPECT_GT(version.interfaceRevision, 0x10007u);
    EXPECT_EQ(version.linkerCompatibility, 1u);
    EXPECT_STRNE(version.name, "");
    EXPECT_STREQ(version.label, "");
    EXPECT_NE(version.build, nullptr);
    library.get<VellorGetCurrentVersionImplFn>(kSymbols[0])(&version, 0x20000);
    EXPECT_NE(version.status, 0u);
}

/// One life of the library: a picture from a binary image, damaged images refused.
void useOnce(const std::vector<std::uint8_t>& image)
{
    const Library library;
    ASSERT_TRUE(library.loaded()) << dlerror();
    VellorContext* context = nullptr;
    VellorDevice device{0xdeadbeef, 0};
    const auto init = library.get<VellorContextInitImplFn>("vellorContextInitImpl");
    EXPECT_NE(init(&context, &device, 0x10001, 0), 0u);
    ASSERT_EQ(init(&context, &device, VELLOR_API_VERSION, 0), 0u);

    const auto handleInit = library.get<VellorHandleInitFn>("vellorHandleInit");
    VellorHandle* handle = nullptr;
    VellorHardResources resources{};
    resources.memoryBudget = 0x100000000ull;
    for (std::size_t size = 0; size < image.size(); size += 7)
        ASSERT_NE(handleInit(&handle, context, image.data(), size, &resources), 0u) << size;
    for (std::size_t at = 0; at < image.size(); at += 3) {
        std::vector<std::uint8_t> damaged = image;
        damaged[at] ^= 0x10;
        ASSERT_NE(handleInit(&handle, context, damaged.data(), damaged.size(), &resources), 0u) << at;
    }
    ASSERT_EQ(handle, nullptr);
    ASSERT_EQ(handleInit(&handle, context, image.data(), image.size(), &resources), 0u);
    const std::uint32_t uid = 200;
    EXPECT_EQ(library.get<VellorHandlePushOutputsFn>("vellorHandlePushOutputs")(handle, 2, &uid, 1, nullptr),
              0u);
    EXPECT_EQ(library.get<VellorHandleStartFn>("vellorHandleStart")(handle, 0), 0u);
    VellorTexture texture{};
    ASSERT_EQ(library.get<VellorHandleGetOutputsFn>("vellorHandleGetOutputs")(handle, 0, 0, 1, &texture), 0u);
    EXPECT_EQ(texture.width, 8);
    EXPECT_EQ(texture.height, 4);
    const auto* bytes = static_cast<const std::uint8_t*>(texture.buffer);
    EXPECT_EQ(std::vector<std::uint8_t>(bytes, bytes + 32), std::vector<std::uint8_t>(32, 128));
    library.get<VellorContextMemoryFreeFn>("vellorContextMemoryFree")(context, texture.buffer);
    library.get<VellorHandleReleaseFn>("vellorHandleRelease")(handle);
    library.get<VellorContextReleaseFn>("vellorContextRelease")(context);
}

TEST(Plugin, UnloadsAndWorksAgain)
{
    const std::vector<std::uint8_t> image = program::writeProgram(uniformProgram());
    for (int life = 0; life < 3; ++life) {
        useOnce(image);
        EXPECT_EQ(dlopen(VELLOR_ENGINE_FILE, RTLD_NOW | RTLD_NOLOAD), nullptr) << "still in the process";
    }
}

} // namespace
} // namespace vellor::cpu::testing
