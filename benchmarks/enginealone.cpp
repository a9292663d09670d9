#include "benchmarks/enginealone.h"

#include "common/engine/backend.h"

#include <QtGlobal>

#include <algorithm>
#include <cstring>

namespace {

constexpr quint64 kMemoryBudget = 0x100000000ull; // the window's
constexpr std::size_t kDataAlignment = 16;

void* allocate(uint64_t size, uint64_t alignment)
{
    void* block = nullptr;
    return posix_memalign(&block, std::max<uint64_t>(alignment, 8), size) == 0 ? block : nullptr;
}

void release(void* block)
{
    std::free(block);
}

void fetch(VellorHandle* handle, uint32_t index, void*)
{
    VellorOutputDesc desc = {};
    Zph::Engine::handleGetOutputDesc(handle, index, &desc);
    if (desc.type != VELLOR_TYPE_IMAGE)
        return;
    VellorTexture texture = {};
    if (Zph::Engine::handleGetOutputs(handle, 0, index, 1, &texture) != VELLOR_OK)
        qFatal("The engine didn't give an output");
    std::free(texture.buffer);
}

template<class Callback> void setCallback(VellorContext* context, uint32_t id, Callback* callback)
{
    Zph::Engine::contextSetCallback(context, id, reinterpret_cast<VellorFunction>(callback));
}

} // namespace

EngineAlone::EngineAlone(const QByteArray& binary, quint32 threads, quint32 flags)
    : m_data(allocate(quint64(binary.size()), kDataAlignment)), m_size(quint64(binary.size()))
{
    std::memcpy(m_data.get(), binary.constData(), m_size);
    const quint32 words[3] = {threads, 0, flags};
    std::memcpy(m_resources.reserved0, words, sizeof words);
    m_resources.memoryBudget = kMemoryBudget;
    VellorDevice device = {};
    if (Zph::Engine::contextInit(&m_context, &device, VELLOR_API_VERSION, 0) != VELLOR_OK)
        qFatal("The engine makes no context");
    setCallback(m_context, VELLOR_CALLBACK_OUTPUT_COMPLETE, &fetch);
    setCallback(m_context, VELLOR_CALLBACK_ALLOCATION, &allocate);
    setCallback(m_context, VELLOR_CALLBACK_RELEASE, &release);
    makeHandle();
}

EngineAlone::~EngineAlone()
{
    Zph::Engine::handleRelease(m_handle);
    Zph::Engine::contextRelease(m_context);
}

void EngineAlone::makeHandle()
{
    if (Zph::Engine::handleInit(&m_handle, m_context, m_data.get(), m_size, &m_resources) != VELLOR_OK)
        qFatal("The engine refuses the package");
}

void EngineAlone::restart()
{
    Zph::Engine::handleRelease(m_handle);
    makeHandle();
}

void EngineAlone::push(int index, quint32 type, const Zph::Applications::Player::InputValue& value)
{
    if (Zph::Engine::handlePushSetInput(m_handle, 0, quint32(index), type, value.words.data(), nullptr) !=
        VELLOR_OK)
        qFatal("The engine takes no such value for input %d", index);
}

void EngineAlone::generate(const Uids& outputs)
{
    Zph::Engine::handleFlush(m_handle);
    Zph::Engine::handlePushOutputs(m_handle, VELLOR_PUSH_UIDS, outputs.data(), quint32(outputs.size()),
                                   nullptr);
    if (Zph::Engine::handleStart(m_handle, 0) != VELLOR_OK)
        qFatal("The engine doesn't compute");
}

EngineAlone::Uids EngineAlone::pictures() const
{
    VellorDataDesc data = {};
    Zph::Engine::handleGetDesc(m_handle, &data);
    Uids uids;
    for (quint32 index = 0; index < data.outputsCount; ++index) {
        VellorOutputDesc desc = {};
        Zph::Engine::handleGetOutputDesc(m_handle, index, &desc);
        if (desc.type == VELLOR_TYPE_IMAGE)
            uids.push_back(desc.uid);
    }
    return uids;
}
