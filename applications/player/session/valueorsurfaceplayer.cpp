#include "applications/player/session/valueorsurfaceplayer.h"

namespace Zph::Applications::Player {

ValueOrSurfacePlayer::ValueOrSurfacePlayer(std::unique_ptr<ValueData> value)
{
    if (value)
        m_content = std::move(value);
}

ValueOrSurfacePlayer::ValueOrSurfacePlayer(SurfacePtr surface)
{
    if (surface)
        m_content = std::move(surface);
}

ValueOrSurfacePlayer::ValueOrSurfacePlayer(const ValueOrSurfacePlayer& other)
{
    if (other.isValue())
        m_content = std::unique_ptr<ValueData>(other.value()->clone());
    else if (other.isSurface())
        m_content = other.surface();
}

ValueOrSurfacePlayer& ValueOrSurfacePlayer::operator=(ValueOrSurfacePlayer other) noexcept
{
    m_content.swap(other.m_content);
    return *this;
}

const ValueOrSurfacePlayer::ValueData* ValueOrSurfacePlayer::value() const
{
    return isValue() ? std::get<1>(m_content).get() : nullptr;
}

ValueOrSurfacePlayer::SurfacePtr ValueOrSurfacePlayer::surface() const
{
    return isSurface() ? std::get<2>(m_content) : nullptr;
}

} // namespace Zph::Applications::Player
