#pragma once

#include <QtGlobal>

#include <array>
#include <cstring>

namespace Zph::Applications::Player {

// Up to four 32-bit components, kept as raw words so that comparing and copying never goes through
// floating-point rules: -0.0 differs from 0.0, and a NaN equals itself.
struct InputValue
{
    std::array<quint32, 4> words{};

    static InputValue fromFloats(float x, float y = 0, float z = 0, float w = 0)
    {
        return fromComponents<float>({x, y, z, w});
    }
    static InputValue fromInts(qint32 x, qint32 y = 0, qint32 z = 0, qint32 w = 0)
    {
        return fromComponents<qint32>({x, y, z, w});
    }

    // Component `i` (0 to 3) read as a float or as an integer.
    float floatAt(int i) const { return component<float>(i); }
    qint32 intAt(int i) const { return component<qint32>(i); }
    void setFloat(int i, float value) { std::memcpy(&words.at(size_t(i)), &value, sizeof value); }
    void setInt(int i, qint32 value) { std::memcpy(&words.at(size_t(i)), &value, sizeof value); }

    // Equality over the first `components` words; always true for 0 of them.
    bool equals(const InputValue& other, int components) const
    {
        return std::memcmp(words.data(), other.words.data(), sizeof(quint32) * size_t(components)) == 0;
    }

private:
    template<class T> static InputValue fromComponents(const std::array<T, 4>& components)
    {
        static_assert(sizeof components == sizeof words);
        InputValue value;
        std::memcpy(value.words.data(), components.data(), sizeof value.words);
        return value;
    }
    template<class T> T component(int i) const
    {
        T value;
        std::memcpy(&value, &words.at(size_t(i)), sizeof value);
        return value;
    }
};

static_assert(sizeof(InputValue) == 16, "the engine reads 16 bytes");

} // namespace Zph::Applications::Player
