#pragma once

#include <QtGlobal>

namespace Zph::Applications::Player {

// Where inputs are handed to: the engine session, or a recorder in tests.
class InputSink
{
public:
    virtual ~InputSink() = default;

    // Sets input `index` of the engine. `value` is read during the call: as many 32-bit components as `type`
    // has, with 16 bytes readable; zero-terminated UCS-4 for a text; a VellorTexture for an image; null for
    // an empty text or no image. False when the engine refused the value.
    virtual bool pushInput(int index, quint32 type, const void* value) = 0;
};

} // namespace Zph::Applications::Player
