#pragma once

#include "orncommon/image/surfaceoperations.h"

#include <QColor>

#include <utility>
#include <variant>

namespace Orn::Image::Core {

/// What a control holds that takes a colour or an image: nothing, one of them, never both.
class ValueOrSurface
{
public:
    ValueOrSurface() = default;
    explicit ValueOrSurface(QColor const& value) : m_held(value) {}
    /// A null surface is nothing.
    explicit ValueOrSurface(SharedSurface surface)
    {
        if (!surface.isNull())
            m_held = std::move(surface);
    }

    bool isEmpty() const { return std::holds_alternative<std::monostate>(m_held); }
    bool isValue() const { return std::holds_alternative<QColor>(m_held); }
    bool isSurface() const { return std::holds_alternative<SharedSurface>(m_held); }

    /// An invalid colour unless isValue().
    QColor value() const { return isValue() ? std::get<QColor>(m_held) : QColor(); }
    /// Null unless isSurface().
    SharedSurface surface() const { return isSurface() ? std::get<SharedSurface>(m_held) : SharedSurface(); }

private:
    std::variant<std::monostate, QColor, SharedSurface> m_held;
};

} // namespace Orn::Image::Core
