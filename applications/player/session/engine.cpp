#include "applications/player/session/engine.h"

#include "applications/player/session/outputfetch.h"
#include "applications/player/session/videomemory.h"
#include "common/engine/backend.h"
#include "orncommon/core/channellogger.h"

#include <vellor/cpuengine.h>

#include <algorithm>
#include <cstring>
#include <map>

namespace Zph::Applications::Player {

namespace {

const Orn::Core::Log::ChannelLogger logger("Engine");

constexpr quint64 memoryBudget = 0x100000000ull; // bytes
constexpr std::size_t dataAlignment = 16;
constexpr std::size_t minimalAlignment = 8;

/// Engines are found by their handle in the callbacks that get nothing else. Entries stay, empty once the
/// engine is gone: a handle that is made at the place of an old one takes its entry over.
std::map<VellorHandle*, Engine*>& engines()
{
    static std::map<VellorHandle*, Engine*> map;
    return map;
}

float secondsSince(std::clock_t start)
{
    return float(double(std::clock() - start) / CLOCKS_PER_SEC);
}

template<typename Callback> void setCallback(VellorContext* context, quint32 id, Callback callback)
{
    Zph::Engine::contextSetCallback(context, id, reinterpret_cast<VellorFunction>(callback));
}

/// The interface leaves the words ahead of the budgets to each engine. The project's own reads some there; no
/// other engine has been given anything else than 0.
VellorHardResources hardResources(quint32 engineId, const EngineOptions& options)
{
    VellorHardResources resources = {};
    resources.memoryBudget = memoryBudget;
    quint32 words[VELLOR_CPU_WORD_COUNT] = {};
    words[VELLOR_CPU_WORD_THREADS] = options.threads;
    words[VELLOR_CPU_WORD_FLAGS] = options.flags;
    if (engineId == VELLOR_ENGINE_SSE2)
        std::memcpy(resources.reserved0, words, sizeof words);
    if (engineId == VELLOR_ENGINE_OPENGL3) {
        const quint64 known = VideoMemory::total();
        const quint64 amount = known ? known : memoryBudget;
        logger.info(QStringLiteral("OpenGL engine VRAM amount dedicated: %1MB").arg(amount >> 21));
        resources.videoMemoryBudget = amount / 2;
    }
    return resources;
}

} // namespace

Engine::Engine(QObject* parent, QIODevice& data, const EngineOptions& options)
    : QThread(parent), m_options(options)
{
    qRegisterMetaType<ValueOrSurfacePlayer>();
    qRegisterMetaType<ORNUInt32>("ORNUInt32");
    if (Zph::Engine::contextInit(&m_context, &m_device, VELLOR_API_VERSION, 0) != VELLOR_OK)
        return;
    m_flags |= ContextMade;
    registerCallbacks();
    VellorVersion version = {};
    Zph::Engine::getCurrentVersion(&version, VELLOR_API_VERSION);
    m_engineId = version.engineId;
    if (!readData(data) || !createHandle())
        return;
    engines()[m_handle] = this;
}

Engine::~Engine()
{
    stopThread();
    VellorHandle* const handle = m_handle;
    releaseHandle();
    if (const auto entry = engines().find(handle); entry != engines().end() && entry->second == this)
        entry->second = nullptr;
    if (m_flags & ContextMade)
        Zph::Engine::contextRelease(m_context);
}

void Engine::registerCallbacks()
{
    setCallback(m_context, VELLOR_CALLBACK_OUTPUT_COMPLETE, &Engine::onOutputComplete);
    setCallback(m_context, VELLOR_CALLBACK_PROGRESS, &Engine::onProgress);
    setCallback(m_context, VELLOR_CALLBACK_IMAGE_INPUT, &Engine::onImageInput);
    setCallback(m_context, VELLOR_CALLBACK_CACHE_STORE, &Engine::onCacheStore);
    setCallback(m_context, VELLOR_CALLBACK_ALLOCATION, &Engine::onAllocation);
    setCallback(m_context, VELLOR_CALLBACK_RELEASE, &Engine::onRelease);
}

bool Engine::readData(QIODevice& data)
{
    const QByteArray bytes = data.readAll();
    m_dataSize = quint64(bytes.size());
    m_data.reset(onAllocation(std::max<quint64>(m_dataSize, 1), dataAlignment));
    if (!m_data)
        return false;
    std::memcpy(m_data.get(), bytes.constData(), m_dataSize);
    return true;
}

bool Engine::createHandle()
{
    const VellorHardResources resources = hardResources(m_engineId, m_options);
    if (Zph::Engine::handleInit(&m_handle, m_context, m_data.get(), m_dataSize, &resources) != VELLOR_OK) {
        m_handle = nullptr;
        return false;
    }
    VellorDataDesc desc = {};
    if (Zph::Engine::handleGetDesc(m_handle, &desc) != VELLOR_OK || desc.outputsCount == 0)
        return false;
    m_flags |= HandleValid;
    return true;
}

void Engine::releaseHandle()
{
    if (m_handle) {
        Zph::Engine::contextRestoreStates(m_context);
        Zph::Engine::handleRelease(m_handle);
    }
    m_handle = nullptr;
    m_flags &= ~HandleValid;
}

void Engine::stopThread()
{
    if (isRunning()) {
        stop();
        wait();
    }
}

VellorHandle* Engine::handleOrNull() const
{
    return m_flags & HandleValid ? m_handle : nullptr;
}

bool Engine::pushInput(int index, quint32 type, const void* value)
{
    return handleOrNull() &&
           Zph::Engine::handlePushSetInput(m_handle, 0, quint32(index), type, value, nullptr) == VELLOR_OK;
}

bool Engine::pushImage(int index, std::shared_ptr<ImageSource> source)
{
    if (!handleOrNull() || Zph::Engine::handlePushSetInput(m_handle, 0, quint32(index), VELLOR_TYPE_IMAGE,
                                                           nullptr, source.get()) != VELLOR_OK)
        return false;
    m_images[index] = std::move(source);
    return true;
}

void Engine::start()
{
    stopThread();
    m_stopping = false;
    if (m_flags & Asynchronous)
        QThread::start(QThread::InheritPriority);
    else
        run();
}

void Engine::stop()
{
    if (!handleOrNull())
        return;
    m_stopping = true;
    uint32_t state = 0;
    Zph::Engine::handleGetState(m_handle, nullptr, &state);
    if (state & VELLOR_STATE_RUNNING)
        Zph::Engine::handleStop(m_handle, VELLOR_STOP_DEFAULT);
}

void Engine::setAsynchronous(bool asynch)
{
    m_flags = quint8(asynch ? m_flags | Asynchronous : m_flags & ~Asynchronous);
}

void Engine::recreate()
{
    stopThread();
    releaseHandle();
    if (m_data)
        createHandle();
}

void Engine::run()
{
    if (!handleOrNull()) {
        emit errorCallback(tr("Vellor engine not correctly initialized"));
        return;
    }
    m_busyTime = 0;
    restartClock();
    Zph::Engine::contextRestoreStates(m_context);
    const uint32_t result = Zph::Engine::handleStart(m_handle, 0);
    addBusyTime();
    emit finishedCallback(m_busyTime);
    if (result != VELLOR_OK)
        emit errorCallback(tr("Cannot start generation (%1)").arg(result));
}

void Engine::restartClock()
{
    m_startClock = std::clock();
    m_lastProgress = 0;
}

void Engine::addBusyTime()
{
    m_busyTime += secondsSince(m_startClock);
}

void Engine::outputComplete(quint32 index)
{
    addBusyTime();
    ValueOrSurfacePlayer result;
    const quint32 error = fetchOutput(m_handle, index, result);
    if (error != VELLOR_OK) {
        if (!m_stopping) // a stop may come between, and is no failure
            emit errorCallback(tr("Output grab failed (%1)").arg(error));
        restartClock();
        return;
    }
    emit outputCompleteCallback(index, result);
    restartClock();
    Zph::Engine::contextRestoreStates(m_context);
}

void Engine::progress(quint32 current, quint32 total)
{
    if (current % 4 != 0 || total == 0)
        return;
    const float now = secondsSince(m_startClock);
    if (now <= m_lastProgress + m_options.progressInterval)
        return;
    emit progressCallback(int(quint64(current) * 100 / total));
    m_lastProgress = now;
    Zph::Engine::contextRestoreStates(m_context);
}

// ---- Callbacks of the engine

void Engine::onOutputComplete(VellorHandle*, uint32_t index, void* user)
{
    static_cast<Engine*>(user)->outputComplete(index);
}

void Engine::onProgress(VellorHandle* handle, uint32_t current, uint32_t total)
{
    if (Engine* engine = engines()[handle])
        engine->progress(current, total);
}

void Engine::onImageInput(VellorHandle*, uint32_t, uint32_t, void** image, const VellorImageRequest* request)
{
    if (*image)
        *image = const_cast<VellorTexture*>(
            static_cast<ImageSource*>(*image)->prepare(request->width, request->height));
}

void Engine::onCacheStore(VellorHandle* handle, uint32_t flags, uint32_t entry, char* buffer, uint64_t size)
{
    if (Engine* engine = engines()[handle])
        engine->m_cacheStore.access(flags, entry, buffer, size);
}

void* Engine::onAllocation(uint64_t size, uint64_t alignment)
{
    void* block = nullptr;
    const std::size_t raised = std::max<std::size_t>(alignment, minimalAlignment);
    return posix_memalign(&block, raised, size) == 0 ? block : nullptr;
}

void Engine::onRelease(void* block)
{
    std::free(block);
}

} // namespace Zph::Applications::Player
