#pragma once

#include "orncommon/module/value.h"
#include "orncommon/surfaces/surface.h"

#include <QMetaType>
#include <QSharedPointer>

#include <memory>
#include <variant>

/// The unsigned 32-bit type in the signatures of signals and slots.
using ORNUInt32 = quint32;

namespace Zph::Applications::Player {

/// The result of one output: nothing, a number or a picture. Copying clones a number and shares a picture.
class ValueOrSurfacePlayer
{
public:
    using ValueData = Orn::Module::Value::Data;
    using SurfacePtr = QSharedPointer<Orn::Surfaces::Surface>;

    ValueOrSurfacePlayer() = default;
    /// A null pointer gives the empty result, in both.
    explicit ValueOrSurfacePlayer(std::unique_ptr<ValueData> value);
    explicit ValueOrSurfacePlayer(SurfacePtr surface);
    ValueOrSurfacePlayer(const ValueOrSurfacePlayer& other);
    ValueOrSurfacePlayer(ValueOrSurfacePlayer&& other) noexcept = default;
    ValueOrSurfacePlayer& operator=(ValueOrSurfacePlayer other) noexcept;
    ~ValueOrSurfacePlayer() = default;

    bool isEmpty() const { return m_content.index() == 0; }
    bool isValue() const { return m_content.index() == 1; }
    bool isSurface() const { return m_content.index() == 2; }

    /// Owned by this object; null unless isValue().
    const ValueData* value() const;
    /// Null unless isSurface().
    SurfacePtr surface() const;

private:
    std::variant<std::monostate, std::unique_ptr<ValueData>, SurfacePtr> m_content;
};

} // namespace Zph::Applications::Player

Q_DECLARE_METATYPE(Zph::Applications::Player::ValueOrSurfacePlayer)
