#include "applications/player/session/outputfetch.h"

#include "applications/player/session/textureconversion.h"
#include "common/engine/backend.h"

#include <array>
#include <cstring>

namespace Zph::Applications::Player {

namespace {

using Words = std::array<quint32, 4>;

template<typename T> ValueOrSurfacePlayer numeric(const Words& words)
{
    static_assert(sizeof(T) <= sizeof(Words));
    T payload;
    std::memcpy(&payload, words.data(), sizeof payload);
    return ValueOrSurfacePlayer(std::make_unique<Orn::Module::Value::DataT<T>>(payload));
}

ValueOrSurfacePlayer numericOfType(quint32 type, const Words& words)
{
    switch (type) {
    case VELLOR_TYPE_FLOAT:
        return numeric<float>(words);
    case VELLOR_TYPE_FLOAT2:
        return numeric<std::array<float, 2>>(words);
    case VELLOR_TYPE_FLOAT3:
        return numeric<std::array<float, 3>>(words);
    case VELLOR_TYPE_FLOAT4:
        return numeric<std::array<float, 4>>(words);
    case VELLOR_TYPE_INTEGER:
        return numeric<int>(words);
    case VELLOR_TYPE_INTEGER2:
        return numeric<std::array<int, 2>>(words);
    case VELLOR_TYPE_INTEGER3:
        return numeric<std::array<int, 3>>(words);
    default:
        return numeric<std::array<int, 4>>(words);
    }
}

template<typename T> bool copyIf(const ValueOrSurfacePlayer::ValueData& number, InputValue& value)
{
    const auto* data = dynamic_cast<const Orn::Module::Value::DataT<T>*>(&number);
    if (data)
        std::memcpy(value.words.data(), &data->value, sizeof data->value);
    return data;
}

bool canBeFetched(quint32 type)
{
    return type <= VELLOR_TYPE_INTEGER4 && type != VELLOR_TYPE_STRING && type != VELLOR_TYPE_STRING + 1;
}

} // namespace

quint32 fetchOutput(VellorHandle* handle, quint32 index, ValueOrSurfacePlayer& result)
{
    VellorOutputDesc desc = {};
    if (const quint32 error = Zph::Engine::handleGetOutputDesc(handle, index, &desc))
        return error;
    if (!canBeFetched(desc.type))
        return VELLOR_ERROR_TYPE;
    if (desc.type == VELLOR_TYPE_IMAGE) {
        VellorTexture texture = {};
        const quint32 error = Zph::Engine::handleGetOutputs(handle, 0, index, 1, &texture);
        if (error == VELLOR_OK)
            result = ValueOrSurfacePlayer(surfaceFromTexture(texture));
        return error;
    }
    Words words = {};
    const quint32 error = Zph::Engine::handleGetOutputs(handle, VELLOR_FETCH_NUMERIC, index, 1, words.data());
    if (error == VELLOR_OK)
        result = numericOfType(desc.type, words);
    return error;
}

InputValue componentsOf(const ValueOrSurfacePlayer::ValueData& number)
{
    InputValue value;
    copyIf<float>(number, value) || copyIf<int>(number, value) ||
        copyIf<std::array<float, 2>>(number, value) || copyIf<std::array<float, 3>>(number, value) ||
        copyIf<std::array<float, 4>>(number, value) || copyIf<std::array<int, 2>>(number, value) ||
        copyIf<std::array<int, 3>>(number, value) || copyIf<std::array<int, 4>>(number, value);
    return value;
}

} // namespace Zph::Applications::Player
