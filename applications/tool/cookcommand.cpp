#include "applications/tool/failure.h"
#include "applications/tool/sharedoptions.h"

#include "platform/program/packagearchive.h"

#include <vellor/cooker.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>

namespace vellor::tool {

namespace fs = std::filesystem;

namespace {

struct ReleaseContext
{
    void operator()(VellorCookerContext* context) const { vellorCookerContextRelease(context); }
};

struct ReleaseHandle
{
    void operator()(VellorCookerHandle* handle) const { vellorCookerHandleRelease(handle); }
};

bool hasMessages = false; // the cooker said why

void printMessage(VellorCookerContext*, std::int32_t, const char* text)
{
    hasMessages = true;
    std::fprintf(stderr, "%s\n", text);
}

int fail(ExitCode code, const std::string& text)
{
    std::fprintf(stderr, "vellor: %s\n", text.c_str());
    return code;
}

/// The code points of UTF-8; what is ill-formed becomes a character that no file is called by.
std::vector<std::uint32_t> widePath(const std::string& path)
{
    const std::u32string wide = fs::path(path).u32string();
    std::vector<std::uint32_t> text(wide.begin(), wide.end());
    text.push_back(0);
    return text;
}

void push(VellorCookerHandle* handle, const Arguments& arguments)
{
    for (const auto& alias : readAliases(arguments)) {
        if (vellorCookerHandlePushIncludeDirA(handle, alias.name.toUtf8(), alias.path.toUtf8()) !=
            VELLOR_COOKER_OK)
            throw Failure(UnreadableFile, alias.path + ": no such folder");
    }
    for (const std::string& file : arguments.files) {
        if (vellorCookerHandlePushPackageFileW(handle, widePath(file).data()) != VELLOR_COOKER_OK)
            throw Failure(UnreadableFile, QString::fromStdString(file) + ": the file can't be read");
    }
}

/// Writes beside the target first, so that a failure leaves no half-written file.
int writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes)
{
    const std::string partial = path + ".part";
    std::error_code code;
    {
        std::ofstream file(partial, std::ios::binary | std::ios::trunc);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        file.close();
        if (!file) {
            fs::remove(partial, code);
            return fail(Unwritable, path + ": the file can't be written");
        }
    }
    fs::rename(partial, path, code);
    if (!code)
        return Done;
    std::error_code ignored;
    fs::remove(partial, ignored);
    return fail(Unwritable, path + ": " + code.message());
}

int runCook(const Arguments& arguments)
{
    if (arguments.files.empty())
        throw UsageError("no file to cook");
    VellorCookerContext* rawContext = nullptr;
    if (vellorCookerContextInit(&rawContext, VELLOR_COOKER_API_VERSION) != VELLOR_COOKER_OK)
        return fail(Failed, "the cooker can't be started");
    const std::unique_ptr<VellorCookerContext, ReleaseContext> context(rawContext);
    vellorCookerContextSetCallback(rawContext, VELLOR_COOKER_CALLBACK_MESSAGE,
                                   reinterpret_cast<VellorFunction>(printMessage));
    vellorCookerContextSetOption(rawContext, VELLOR_COOKER_OPTION_DYNAMIC,
                                 VELLOR_COOKER_DYNAMIC_OUTPUT_SIZE | VELLOR_COOKER_DYNAMIC_RANDOM_SEED |
                                     VELLOR_COOKER_DYNAMIC_PIXEL_SIZE);
    VellorCookerHandle* rawHandle = nullptr;
    if (vellorCookerHandleInit(&rawHandle, rawContext) != VELLOR_COOKER_OK)
        return fail(Failed, "the cooker can't be started");
    const std::unique_ptr<VellorCookerHandle, ReleaseHandle> handle(rawHandle);
    push(rawHandle, arguments);
    if (const std::uint32_t code = vellorCookerHandleCook(rawHandle); code != VELLOR_COOKER_OK)
        return hasMessages ? Failed : fail(Failed, "cooking failed (" + std::to_string(code) + ")");

    const void* data = nullptr;
    std::uint64_t size = 0;
    const char* description = nullptr;
    vellorCookerHandleGetAssembly(rawHandle, &data, &size);
    vellorCookerHandleGetIODesc(rawHandle, &description);
    program::Archive archive;
    const auto* first = static_cast<const std::uint8_t*>(data);
    archive.assembly.assign(first, first + size);
    archive.description = description;
    std::string error;
    const auto bytes = program::writeArchive(archive, error);
    if (!bytes)
        return fail(Failed, error);
    const std::string standard = fs::path(arguments.files.front()).replace_extension(".vlrar").string();
    return writeFile(arguments.value("--output", standard), *bytes);
}

} // namespace

const Command cookCommand{
    "cook",
    "FILE.vlr...",
    "Cooks authoring files into one package. Errors come on standard error, one a line, with file, line and "
    "column.",
    {{"--output", "-o", "OUT.vlrar", "the package to write; beside the first file by default"}, kAlias},
    runCook};

} // namespace vellor::tool
