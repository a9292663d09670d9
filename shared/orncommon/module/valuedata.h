#pragma once

#include "orncommon/module/type.h"

#include <utility>

namespace Orn::Module {

/// The record of a value: its type and, in the classes below, its payload. Owned by one value and never
/// shared.
class ValueData
{
public:
    virtual ~ValueData() = default;

    virtual std::unique_ptr<ValueData> clone() const = 0;
    /// Same type and same payload; numbers without tolerance, so that a NaN equals nothing.
    virtual bool operator==(const ValueData& other) const = 0;

    const Type& type() const { return m_type; }

protected:
    explicit ValueData(Type type) : m_type(std::move(type)) {}
    ValueData(const ValueData&) = default;
    ValueData& operator=(const ValueData&) = delete;

private:
    Type m_type;
};

template<class T> class ValueDataT : public ValueData
{
public:
    /// For plain payloads.
    explicit ValueDataT(T payload) : ValueData(plainTypeOf<T>()), value(std::move(payload)) {}
    /// For all others; the type must be one that has this payload.
    ValueDataT(Type type, T payload) : ValueData(std::move(type)), value(std::move(payload)) {}

    std::unique_ptr<ValueData> clone() const override { return std::make_unique<ValueDataT>(*this); }

    bool operator==(const ValueData& other) const override
    {
        if (type() != other.type())
            return false;
        const auto* same = dynamic_cast<const ValueDataT*>(&other);
        return same && value == same->value;
    }

    T value;
};

/// Carries nothing.
class ValueDataVoid : public ValueData
{
public:
    ValueDataVoid() : ValueData(Type(Type::Void)) {}

    std::unique_ptr<ValueData> clone() const override { return std::make_unique<ValueDataVoid>(); }
    bool operator==(const ValueData& other) const override { return other.type().code() == Type::Void; }
};

} // namespace Orn::Module
