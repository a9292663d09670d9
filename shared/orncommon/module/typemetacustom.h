#pragma once

#include "orncommon/module/valuedata.h"

#include <typeinfo>

namespace Orn::Module {

/// Accepts only descriptions of its own class. T is default-constructible, copyable and comparable.
template<class T> class Type::TypeMetaCustom : public Type::Meta
{
public:
    explicit TypeMetaCustom(std::string name) : m_name(std::move(name)) {}

    bool isEqual(const Meta& other) const override { return typeid(other) == typeid(*this); }
    std::string typeName() const override { return m_name; }
    std::unique_ptr<ValueData> createData(const Type& type) const override
    {
        return std::make_unique<ValueDataT<T>>(type, T());
    }

private:
    std::string m_name;
};

} // namespace Orn::Module
