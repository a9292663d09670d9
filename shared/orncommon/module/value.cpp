#include "orncommon/module/value.h"

#include "orncommon/module/valueserializer.h"

namespace Orn::Module {

Value::Value(const Enum& payload) : m_data(std::make_unique<DataT<Enum>>(Type(payload.desc()), payload))
{
}

std::unique_ptr<Value::Data> Value::createData(const Type& type)
{
    if (type.meta())
        return type.meta()->createData(type);
    std::unique_ptr<Data> data;
    if (type.code() == Type::Void)
        data = std::make_unique<DataVoid>();
    visitPlainPayload(int(type.code()), [&](auto tag) {
        using Payload = typename decltype(tag)::Payload;
        data = std::make_unique<DataT<Payload>>(type, Payload());
    });
    return data;
}

std::string Value::toString(bool* ok, bool withTypeName) const
{
    std::string text;
    const bool written = m_data && ValueSerializer::sToBareText(*m_data, text);
    if (ok)
        *ok = written;
    if (!written)
        return {};
    return withTypeName ? ValueSerializer::sToTypedValueStr(type().name(), text) : text;
}

Value Value::sFromString(const std::string& text, const Type& type, bool* ok)
{
    std::string bare;
    Value value;
    if (ValueSerializer::sFromTypedValueStr(text, type.name(), bare))
        value = Value(ValueSerializer::sFromBareText(bare, type));
    if (ok)
        *ok = value.isValid();
    return value;
}

} // namespace Orn::Module
