#pragma once

#include "orncommon/module/enum.h"
#include "orncommon/module/valuedata.h"

#include <vector>

namespace Orn::Module {

/// A value of any type, or the invalid value. Copying clones the record. No lock: copy it to cross threads.
class Value
{
public:
    using Data = ValueData;
    using DataVoid = ValueDataVoid;
    template<class T> using DataT = ValueDataT<T>;

    /// The invalid value, which equals only itself.
    Value() = default;
    explicit Value(std::unique_ptr<Data> data) : m_data(std::move(data)) {}
    template<class T, class = std::enable_if_t<plainCodeOf<T> != 0>>
    Value(T payload) : m_data(std::make_unique<DataT<T>>(std::move(payload)))
    {
    }
    Value(const Enum& payload);
    /// A list of as many items, which are plain payloads.
    template<class T, class = std::enable_if_t<plainCodeOf<T> != 0>> Value(std::vector<T> items);

    Value(const Value& other) : m_data(other.m_data ? other.m_data->clone() : nullptr) {}
    Value(Value&& other) noexcept = default;
    Value& operator=(Value other) noexcept
    {
        m_data.swap(other.m_data);
        return *this;
    }
    ~Value() = default;

    bool isValid() const { return m_data != nullptr; }
    /// The invalid type, if there is no record.
    Type type() const { return m_data ? m_data->type() : Type(); }
    const Data* data() const { return m_data.get(); }
    /// The payload if it is of this class, else null.
    template<class T> const T* get() const
    {
        const auto* typed = dynamic_cast<const DataT<T>*>(m_data.get());
        return typed ? &typed->value : nullptr;
    }

    /// The default record of a type: false, zero, empty, first item. Null for the invalid type, and for a
    /// list whose items are neither plain nor values.
    static std::unique_ptr<Data> createData(const Type& type);
    /// A list record of the length that the list type gives, all items alike.
    template<class T> static std::unique_ptr<Data> createListData(const Type& type, const T& item)
    {
        return std::make_unique<DataT<std::vector<T>>>(type, std::vector<T>(type.getCompoundSize(), item));
    }

    /// The value as text, in a form that sFromString reads: "float3(1,2,3)", or the bare "1,2,3". Structures,
    /// matrices, plugins, custom types and lists of values have no text: then `ok` is false and the result
    /// empty.
    std::string toString(bool* ok = nullptr, bool withTypeName = true) const;
    /// Reads a text with type name. Invalid, with `ok` false, if it is not a value of that type.
    static Value sFromString(const std::string& text, const Type& type, bool* ok = nullptr);

    friend bool operator==(const Value& a, const Value& b)
    {
        return a.m_data && b.m_data ? *a.m_data == *b.m_data : !a.m_data && !b.m_data;
    }
    friend bool operator!=(const Value& a, const Value& b) { return !(a == b); }

private:
    std::unique_ptr<Data> m_data;
};

template<class T, class> Value::Value(std::vector<T> items)
{
    const Type type = Type::sCreateList(plainTypeOf<T>(), items.size());
    m_data = std::make_unique<DataT<std::vector<T>>>(type, std::move(items));
}

} // namespace Orn::Module
