// The C face of the linker. No exception passes it: each function turns what is thrown into a result code.

#include "platform/linker/linker.h"
#include "platform/program/assembly.h"
#include "platform/program/packagearchive.h"
#include "platform/program/programwriter.h"

#include <vellor/linker.h>

#include <algorithm>
#include <exception>
#include <iterator>
#include <memory>
#include <new>

struct VellorLinkerContext
{
    VellorLinkerMessageCallback message = nullptr;
    VellorLinkerXmlCallback xml = nullptr;
    int sizeLimit = vellor::program::kMaxLog2Size;

    void tell(const std::string& text)
    {
        constexpr std::int32_t kFailure = 2;
        if (message)
            message(this, kFailure, text.c_str());
    }
};

struct VellorLinkerHandle
{
    VellorLinkerContext* context = nullptr;
    std::vector<std::vector<std::uint8_t>> pushed;
    std::vector<std::uint8_t> image;
};

namespace {

using namespace vellor;

// Binary images are the same for all engines; the foreign ones may stand in for each other here.
constexpr std::uint32_t kCompatibility = 1;
const VellorLinkerEngineDesc kEngines[] = {{19, 0, "vellor_engine_cpu", nullptr, kCompatibility, 0},
                                           {7, 0, "vellor_engine_d3d10", nullptr, kCompatibility, 0},
                                           {11, 0, "vellor_engine_d3d11", nullptr, kCompatibility, 0},
                                           {12, 0, "vellor_engine_ogl3", nullptr, kCompatibility, 0},
                                           {0, 0, nullptr, nullptr, 0, 0}};

template<typename Work> std::uint32_t guarded(VellorLinkerContext* context, const Work& work)
{
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return VELLOR_LINKER_ERROR_OUT_OF_MEMORY;
    } catch (const std::exception& exception) {
        try {
            if (context)
                context->tell(exception.what());
        } catch (const std::exception&) {
        }
        return VELLOR_LINKER_ERROR_LINK;
    }
}

/// One link on its way through the handle.
class Link
{
public:
    explicit Link(VellorLinkerHandle& handle) : m_handle(handle), m_context(*handle.context) {}

    std::uint32_t run()
    {
        if (m_handle.pushed.empty())
            return VELLOR_LINKER_ERROR_NO_ASSEMBLY;
        for (const std::vector<std::uint8_t>& bytes : m_handle.pushed) {
            const std::uint32_t code = program::isArchive(bytes) ? addArchive(bytes) : addAssembly(bytes);
            if (code != VELLOR_LINKER_OK)
                return code;
        }
        std::string error;
        const auto linked = linker::link(m_programs, m_context.sizeLimit, error);
        if (!linked)
            return failed(VELLOR_LINKER_ERROR_LINK, error);
        m_handle.image = program::writeProgram(*linked);
        return VELLOR_LINKER_OK;
    }

private:
    std::uint32_t failed(std::uint32_t code, const std::string& text)
    {
        m_context.tell(text);
        return code;
    }

    std::uint32_t addArchive(program::ByteView bytes)
    {
        std::string error;
        const auto archive = program::readArchive(bytes, error);
        if (!archive)
            return failed(VELLOR_LINKER_ERROR_INVALID_ARCHIVE, error);
        if (archive->assembly.empty())
            return failed(VELLOR_LINKER_ERROR_EMPTY_ARCHIVE, "the archive holds no package.vlrasm");
        const std::uint32_t code = addAssembly(archive->assembly);
        if (code == VELLOR_LINKER_OK && !archive->description.empty() && m_context.xml)
            m_context.xml(&m_context, m_descriptions++, archive->description.c_str());
        return code;
    }

    std::uint32_t addAssembly(program::ByteView bytes)
    {
        std::string error;
        auto programs = program::readAssembly(bytes, error);
        if (!programs)
            return failed(VELLOR_LINKER_ERROR_INVALID_ASSEMBLY, error);
        m_programs.insert(m_programs.end(), std::make_move_iterator(programs->begin()),
                          std::make_move_iterator(programs->end()));
        return VELLOR_LINKER_OK;
    }

    VellorLinkerHandle& m_handle;
    VellorLinkerContext& m_context;
    std::vector<program::Program> m_programs;
    std::int32_t m_descriptions = 0;
};

} // namespace

void vellorLinkerGetCurrentVersion(VellorLinkerVersion* version)
{
    if (version)
        *version = {
            1, 0, 0, 0, "Vellor Linker", VELLOR_BUILD_DATE, vellor::program::stableId(VELLOR_BUILD_DATE), 0};
}

const VellorLinkerEngineDesc* vellorLinkerGetEnginesList(void)
{
    return kEngines;
}

uint32_t vellorLinkerContextInit(VellorLinkerContext** context, uint32_t apiVersion, uint32_t engineId)
{
    if (!context)
        return VELLOR_LINKER_ERROR_INVALID_ARGUMENT;
    *context = nullptr;
    if (apiVersion != VELLOR_LINKER_API_VERSION)
        return VELLOR_LINKER_ERROR_API_VERSION;
    const bool isServed =
        engineId != 0 && std::any_of(std::begin(kEngines), std::end(kEngines),
                                     [&](const auto& engine) { return engine.engineId == engineId; });
    if (!isServed)
        return VELLOR_LINKER_ERROR_ENGINE_VERSION;
    return guarded(nullptr, [&] {
        *context = new VellorLinkerContext;
        return VELLOR_LINKER_OK;
    });
}

uint32_t vellorLinkerContextRelease(VellorLinkerContext* context)
{
    delete context;
    return VELLOR_LINKER_OK;
}

uint32_t vellorLinkerContextSetCallback(VellorLinkerContext* context, uint32_t callbackId,
                                        VellorFunction callback)
{
    if (!context)
        return VELLOR_LINKER_ERROR_INVALID_ARGUMENT;
    if (callbackId == VELLOR_LINKER_CALLBACK_MESSAGE)
        context->message = reinterpret_cast<VellorLinkerMessageCallback>(callback);
    else if (callbackId == VELLOR_LINKER_CALLBACK_XML)
        context->xml = reinterpret_cast<VellorLinkerXmlCallback>(callback);
    else
        return VELLOR_LINKER_ERROR_INVALID_ARGUMENT;
    return VELLOR_LINKER_OK;
}

uint32_t vellorLinkerContextSetOption(VellorLinkerContext* context, uint32_t option, uint32_t value)
{
    if (!context || option != VELLOR_LINKER_OPTION_SIZE_LIMIT)
        return VELLOR_LINKER_ERROR_INVALID_ARGUMENT;
    context->sizeLimit = 0;
    for (std::uint32_t left = value; left >>= 1;)
        ++context->sizeLimit;
    if (value == 0 || context->sizeLimit > static_cast<int>(program::kMaxLog2Size))
        context->sizeLimit = program::kMaxLog2Size;
    return VELLOR_LINKER_OK;
}

uint32_t vellorLinkerHandleInit(VellorLinkerHandle** handle, VellorLinkerContext* context)
{
    if (!handle)
        return VELLOR_LINKER_ERROR_INVALID_ARGUMENT;
    *handle = nullptr;
    if (!context)
        return VELLOR_LINKER_ERROR_INVALID_ARGUMENT;
    return guarded(context, [&] {
        *handle = new VellorLinkerHandle{context, {}, {}};
        return VELLOR_LINKER_OK;
    });
}

uint32_t vellorLinkerHandleRelease(VellorLinkerHandle* handle)
{
    delete handle;
    return VELLOR_LINKER_OK;
}

uint32_t vellorLinkerHandlePushAssemblyMemory(VellorLinkerHandle* handle, const void* data, uint64_t size)
{
    if (!handle || (!data && size != 0))
        return VELLOR_LINKER_ERROR_INVALID_ARGUMENT;
    return guarded(handle->context, [&] {
        const auto* first = static_cast<const std::uint8_t*>(data);
        handle->pushed.emplace_back(first, first + size);
        return VELLOR_LINKER_OK;
    });
}

uint32_t vellorLinkerHandleLink(VellorLinkerHandle* handle, const void** data, uint64_t* size)
{
    if (!handle || !data || !size)
        return VELLOR_LINKER_ERROR_INVALID_ARGUMENT;
    *data = nullptr;
    *size = 0;
    const std::uint32_t code = guarded(handle->context, [&] { return Link(*handle).run(); });
    if (code == VELLOR_LINKER_OK) {
        *data = handle->image.data();
        *size = handle->image.size();
    }
    return code;
}
