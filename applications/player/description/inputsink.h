#pragma once

#include <QtGlobal>

#include <memory>

struct VellorTexture;

namespace Zph::Applications::Player {

// What stands behind an image input: asked for its picture when the engine is about to read it.
class ImageSource
{
public:
    virtual ~ImageSource() = default;

    // The picture for a place that is `width` x `height` pixels large, or null for none. It stays valid until
    // the next call. Called on the thread that runs the engine.
    virtual const VellorTexture* prepare(quint32 width, quint32 height) = 0;
};

// Where inputs are handed to: the engine session, or a recorder in tests.
class InputSink
{
public:
    virtual ~InputSink() = default;

    // Sets input `index` of the engine. `value` is read during the call: as many 32-bit components as `type`
    // has, with 16 bytes readable; zero-terminated UCS-4 for a text; null for an empty text. False when the
    // engine refused the value.
    virtual bool pushInput(int index, quint32 type, const void* value) = 0;

    // Sets an image input; null for no image. The sink shares the source until the input gets another one or
    // the engine goes, so nobody can delete what a generation would ask. False when the engine refused.
    virtual bool pushImage(int index, std::shared_ptr<ImageSource> source) = 0;
};

} // namespace Zph::Applications::Player
