#pragma once

#include "applications/player/description/inputsink.h"
#include "applications/player/session/cachestore.h"
#include "applications/player/session/valueorsurfaceplayer.h"

#include <QIODevice>
#include <QThread>

#include <vellor/engine.h>

#include <atomic>
#include <cstdlib>
#include <ctime>
#include <map>
#include <memory>

namespace Zph::Applications::Player {

/// What a session asks of its engine beside pictures.
struct EngineOptions
{
    quint32 threads = 0;           ///< of a generation, the caller's among them; 0: the engine's choice
    quint32 flags = 0;             ///< as the engine at hand reads them; 0: the engine's choice
    float progressInterval = 1.0f; ///< seconds of processor time between two progress signals
};

/// One engine context and one engine handle on one binary package: the engine's side of an open document.
///
/// The engine's callbacks become signals, its finished outputs ValueOrSurfacePlayer results. Times are
/// processor time of the whole process, without what the receivers of outputs take. By default a generation
/// runs on the caller's thread, inside start(), and every signal is emitted there; when asynchronous, on this
/// thread. Deleted before the engine library is unloaded.
class Engine : public QThread, public InputSink
{
    Q_OBJECT

public:
    /// Reads `data`, which is open, to its end. If the engine refuses the package handleOrNull() stays null.
    Engine(QObject* parent, QIODevice& data, const EngineOptions& options = {});
    ~Engine() override;

    /// The handle, or null when there is none: to everyone else that means that there is no engine.
    VellorHandle* handleOrNull() const;

    /// Tells the engine the value of an input: as <vellor/engine.h> says for its type. False when it is
    /// refused.
    bool pushInput(int index, quint32 type, const void* value) override;
    bool pushImage(int index, std::shared_ptr<ImageSource> source) override;

signals:
    /// An output is done. `index` is the engine's index of the output.
    void outputCompleteCallback(ORNUInt32 index, Zph::Applications::Player::ValueOrSurfacePlayer result);
    /// Per cent, about once in the interval of the options.
    void progressCallback(int progress);
    /// A generation is over, or failed. Seconds.
    void finishedCallback(float duration);
    void errorCallback(const QString& message);

public slots:
    /// Runs a generation on what was pushed. When not asynchronous, returns when it is over.
    void start();
    /// Asks a running generation to end soon.
    void stop();
    void setAsynchronous(bool asynch);
    /// Makes the handle anew from the package.
    void recreate();

protected:
    void run() override;

private:
    enum Flag : quint8
    {
        ContextMade = 1,
        Asynchronous = 2,
        HandleValid = 4
    };
    struct Free
    {
        void operator()(void* block) const { std::free(block); }
    };

    static void onOutputComplete(VellorHandle* handle, uint32_t index, void* user);
    static void onProgress(VellorHandle* handle, uint32_t current, uint32_t total);
    static void onImageInput(VellorHandle* handle, uint32_t inputIndex, uint32_t inputUid, void** image,
                             const VellorImageRequest* request);
    static void onCacheStore(VellorHandle* handle, uint32_t flags, uint32_t entry, char* buffer,
                             uint64_t size);
    static void* onAllocation(uint64_t size, uint64_t alignment);
    static void onRelease(void* block);

    void registerCallbacks();
    bool readData(QIODevice& data);
    bool createHandle();
    void releaseHandle();
    void stopThread();
    void outputComplete(quint32 index);
    void progress(quint32 current, quint32 total);
    void restartClock();
    void addBusyTime();

    std::unique_ptr<void, Free> m_data;
    quint64 m_dataSize = 0;
    VellorDevice m_device = {};
    EngineOptions m_options;
    VellorContext* m_context = nullptr;
    VellorHandle* m_handle = nullptr;
    CacheStore m_cacheStore;
    std::map<int, std::shared_ptr<ImageSource>> m_images; // by input index
    quint32 m_engineId = 0;
    std::clock_t m_startClock = 0;
    float m_busyTime = 0;     // seconds
    float m_lastProgress = 0; // seconds since m_startClock
    quint8 m_flags = 0;
    std::atomic<bool> m_stopping{false}; // since the last start
};

} // namespace Zph::Applications::Player
