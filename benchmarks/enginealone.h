#pragma once

#include "applications/player/description/inputvalue.h"

#include <QByteArray>

#include <vellor/engine.h>

#include <cstdlib>
#include <memory>
#include <vector>

/// The engine without a window: what any host has to pay for the same pictures. Finished outputs are fetched
/// in the callback and dropped. Allocates with the same callbacks as the window.
class EngineAlone
{
public:
    using Uids = std::vector<quint32>;

    /// `threads` 0 is the engine's choice; `flags` are the engine's own.
    explicit EngineAlone(const QByteArray& binary, quint32 threads = 0, quint32 flags = 0);
    ~EngineAlone();
    EngineAlone(const EngineAlone&) = delete;
    EngineAlone& operator=(const EngineAlone&) = delete;

    /// A new handle in the same context, so that nothing is cached.
    void restart();
    void push(int index, quint32 type, const Zph::Applications::Player::InputValue& value);
    /// Computes and fetches.
    void generate(const Uids& outputs);

    /// The uids of all outputs that are pictures.
    Uids pictures() const;

private:
    struct Free
    {
        void operator()(void* block) const { std::free(block); }
    };
    void makeHandle();

    std::unique_ptr<void, Free> m_data;
    quint64 m_size;
    VellorHardResources m_resources = {};
    VellorContext* m_context = nullptr;
    VellorHandle* m_handle = nullptr;
};
