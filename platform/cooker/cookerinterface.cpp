// The C face of the cooker. No exception passes it: each function turns what is thrown into a result code.

#include "platform/cooker/cooker.h"
#include "platform/cooker/packageloader.h"

#include <vellor/cooker.h>

#include <exception>
#include <filesystem>
#include <memory>
#include <new>

struct VellorCookerContext
{
    vellor::cooker::CookOptions options;
    VellorCookerStageCallback stage = nullptr;
    VellorCookerMessageCallback message = nullptr;

    void tell(const std::string& text)
    {
        constexpr std::int32_t kFailure = 2;
        if (message)
            message(this, kFailure, text.c_str());
    }
};

struct VellorCookerHandle
{
    VellorCookerContext* context = nullptr;
    std::vector<vellor::cooker::PackageFile> files;
    std::map<std::string, std::string> aliases;
    vellor::cooker::CookResult result;
    bool cooked = false;
};

namespace {

using namespace vellor::cooker;

template<typename Work> std::uint32_t guarded(VellorCookerContext* context, const Work& work)
{
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return VELLOR_COOKER_ERROR_OUT_OF_MEMORY;
    } catch (const std::exception& exception) {
        try {
            if (context)
                context->tell(exception.what());
        } catch (const std::exception&) {
        }
        return VELLOR_COOKER_ERROR_BACK_END;
    }
}

/// UTF-8 of a zero-terminated text of code points; nullopt when one of them is none.
std::optional<std::string> toUtf8(const std::uint32_t* text)
{
    std::string bytes;
    for (; *text; ++text) {
        const std::uint32_t c = *text;
        if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
            return std::nullopt;
        if (c < 0x80) {
            bytes += static_cast<char>(c);
            continue;
        }
        const int rest = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        bytes += static_cast<char>((0xFF00u >> (rest + 1) & 0xFFu) | c >> (6 * rest));
        for (int i = rest - 1; i >= 0; --i)
            bytes += static_cast<char>(0x80 | (c >> (6 * i) & 0x3F));
    }
    return bytes;
}

int log2Floor(std::uint32_t value)
{
    int log = 0;
    while (value >>= 1)
        ++log;
    return log;
}

std::uint32_t codeOf(CookEnd end)
{
    switch (end) {
    case CookEnd::Done:
        return VELLOR_COOKER_OK;
    case CookEnd::BadFile:
        return VELLOR_COOKER_ERROR_FRONT_END;
    case CookEnd::BadGraph:
        return VELLOR_COOKER_ERROR_INTERMEDIARY;
    case CookEnd::BadProgram:
        break;
    }
    return VELLOR_COOKER_ERROR_BACK_END;
}

std::int32_t codeOf(CookStage stage)
{
    switch (stage) {
    case CookStage::Loading:
        return VELLOR_COOKER_STAGE_LOADING;
    case CookStage::Flattening:
        return VELLOR_COOKER_STAGE_FLATTENING;
    case CookStage::FrontEnd:
        return VELLOR_COOKER_STAGE_FRONT_END;
    case CookStage::BackEnd:
        break;
    }
    return VELLOR_COOKER_STAGE_BACK_END;
}

} // namespace

void vellorCookerGetCurrentVersion(VellorCookerVersion* version)
{
    if (version)
        *version = {
            1, 0, 0, 0, "Vellor Cooker", VELLOR_BUILD_DATE, vellor::program::stableId(VELLOR_BUILD_DATE), 0};
}

uint32_t vellorCookerContextInit(VellorCookerContext** context, uint32_t apiVersion)
{
    if (!context)
        return VELLOR_COOKER_ERROR_INVALID_ARGUMENT;
    *context = nullptr;
    if (apiVersion != VELLOR_COOKER_API_VERSION)
        return VELLOR_COOKER_ERROR_API_VERSION;
    return guarded(nullptr, [&] {
        auto made = std::make_unique<VellorCookerContext>();
        made->options.dynamicOutputSize = made->options.dynamicRandomSeed = made->options.dynamicPixelSize =
            false;
        *context = made.release();
        return VELLOR_COOKER_OK;
    });
}

uint32_t vellorCookerContextRelease(VellorCookerContext* context)
{
    delete context;
    return VELLOR_COOKER_OK;
}

uint32_t vellorCookerContextSetCallback(VellorCookerContext* context, uint32_t callbackId,
                                        VellorFunction callback)
{
    if (!context)
        return VELLOR_COOKER_ERROR_INVALID_ARGUMENT;
    if (callbackId == VELLOR_COOKER_CALLBACK_STAGE)
        context->stage = reinterpret_cast<VellorCookerStageCallback>(callback);
    else if (callbackId == VELLOR_COOKER_CALLBACK_MESSAGE)
        context->message = reinterpret_cast<VellorCookerMessageCallback>(callback);
    else
        return VELLOR_COOKER_ERROR_INVALID_ARGUMENT;
    return VELLOR_COOKER_OK;
}

uint32_t vellorCookerContextSetOption(VellorCookerContext* context, uint32_t option, uint32_t value)
{
    if (!context)
        return VELLOR_COOKER_ERROR_INVALID_ARGUMENT;
    CookOptions& options = context->options;
    if (option == VELLOR_COOKER_OPTION_SIZE_LIMIT) {
        constexpr int kLargest = vellor::program::kMaxLog2Size;
        options.sizeLimit = value == 0 ? kLargest : std::min(log2Floor(value), kLargest);
    } else if (option == VELLOR_COOKER_OPTION_DYNAMIC) {
        options.dynamicOutputSize = value & VELLOR_COOKER_DYNAMIC_OUTPUT_SIZE;
        options.dynamicRandomSeed = value & VELLOR_COOKER_DYNAMIC_RANDOM_SEED;
        options.dynamicPixelSize = value & VELLOR_COOKER_DYNAMIC_PIXEL_SIZE;
    } else {
        return VELLOR_COOKER_ERROR_INVALID_ARGUMENT;
    }
    return VELLOR_COOKER_OK;
}

uint32_t vellorCookerHandleInit(VellorCookerHandle** handle, VellorCookerContext* context)
{
    if (!handle)
        return VELLOR_COOKER_ERROR_INVALID_ARGUMENT;
    *handle = nullptr;
    if (!context)
        return VELLOR_COOKER_ERROR_INVALID_ARGUMENT;
    return guarded(context, [&] {
        *handle = new VellorCookerHandle{context, {}, {}, {}, false};
        return VELLOR_COOKER_OK;
    });
}

uint32_t vellorCookerHandleRelease(VellorCookerHandle* handle)
{
    delete handle;
    return VELLOR_COOKER_OK;
}

uint32_t vellorCookerHandlePushPackageFileW(VellorCookerHandle* handle, const uint32_t* path)
{
    if (!handle || !path)
        return VELLOR_COOKER_ERROR_INVALID_ARGUMENT;
    return guarded(handle->context, [&] {
        const auto name = toUtf8(path);
        auto bytes = name ? readFile(*name) : std::nullopt;
        if (!bytes)
            return VELLOR_COOKER_ERROR_IO;
        handle->files.push_back({*name, std::move(*bytes)});
        return VELLOR_COOKER_OK;
    });
}

uint32_t vellorCookerHandlePushIncludeDirA(VellorCookerHandle* handle, const char* alias, const char* path)
{
    if (!handle || !alias || !path || !*alias)
        return VELLOR_COOKER_ERROR_INVALID_ARGUMENT;
    return guarded(handle->context, [&] {
        std::error_code code;
        if (!std::filesystem::is_directory(path, code))
            return VELLOR_COOKER_ERROR_INVALID_DIRECTORY;
        handle->aliases[alias] = path;
        return VELLOR_COOKER_OK;
    });
}

uint32_t vellorCookerHandleCook(VellorCookerHandle* handle)
{
    if (!handle)
        return VELLOR_COOKER_ERROR_INVALID_ARGUMENT;
    return guarded(handle->context, [&]() -> std::uint32_t {
        if (handle->files.empty())
            return VELLOR_COOKER_ERROR_NO_PACKAGES;
        VellorCookerContext* context = handle->context;
        CookOptions options = context->options;
        options.aliases = handle->aliases;
        handle->cooked = false;
        handle->result = cook(handle->files, vellor::nodes::allNodes(), options, [context](CookStage stage) {
            if (context->stage)
                context->stage(context, codeOf(stage));
        });
        for (const std::string& error : handle->result.errors)
            context->tell(error);
        handle->cooked = handle->result.end == CookEnd::Done;
        return codeOf(handle->result.end);
    });
}

uint32_t vellorCookerHandleGetAssembly(VellorCookerHandle* handle, const void** data, uint64_t* size)
{
    if (!handle || !data || !size)
        return VELLOR_COOKER_ERROR_INVALID_ARGUMENT;
    *data = handle->cooked ? handle->result.assembly.data() : nullptr;
    *size = handle->cooked ? handle->result.assembly.size() : 0;
    return handle->cooked ? VELLOR_COOKER_OK : VELLOR_COOKER_ERROR_NO_RESULTS;
}

uint32_t vellorCookerHandleGetIODesc(VellorCookerHandle* handle, const char** xml)
{
    if (!handle || !xml)
        return VELLOR_COOKER_ERROR_INVALID_ARGUMENT;
    *xml = handle->cooked ? handle->result.description.c_str() : nullptr;
    return handle->cooked ? VELLOR_COOKER_OK : VELLOR_COOKER_ERROR_NO_RESULTS;
}
