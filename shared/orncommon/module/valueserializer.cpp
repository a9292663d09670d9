#include "orncommon/module/valueserializer.h"

#include "orncommon/module/componentreader.h"
#include "orncommon/module/enum.h"

#include <charconv>
#include <vector>

namespace Orn::Module {

namespace {

void beginComponent(std::string& text)
{
    if (!text.empty())
        text += ',';
}

template<class Number> void write(std::string& text, Number component)
{
    beginComponent(text);
    char digits[32]; // the shortest form of a double takes 24
    text.append(digits, std::to_chars(digits, digits + sizeof digits, component).ptr);
}

void write(std::string& text, bool component)
{
    beginComponent(text);
    text += component ? "true" : "false";
}

void write(std::string& text, const std::string& component)
{
    beginComponent(text);
    text += '"';
    for (const char byte : component) {
        if (byte == '"' || byte == '\\')
            text += '\\';
        text += byte;
    }
    text += '"';
}

template<class T, std::size_t N> void write(std::string& text, const std::array<T, N>& components)
{
    for (const T& component : components)
        write(text, component);
}

void write(std::string& text, const ColorRGB& color)
{
    write(text, std::array{color.r, color.g, color.b});
}

void write(std::string& text, const ColorRGBA& color)
{
    write(text, std::array{color.r, color.g, color.b, color.a});
}

void write(std::string& text, const Matrix3f& matrix)
{
    write(text, matrix.values);
}

void write(std::string& text, const Transform& transform)
{
    write(text, transform.linear);
    write(text, transform.translation);
}

template<class T> bool writePlain(const ValueData& data, std::string& text)
{
    const auto* typed = dynamic_cast<const ValueDataT<T>*>(&data);
    if constexpr (std::is_same_v<T, std::shared_ptr<Plugin>>)
        return false;
    else if constexpr (std::is_same_v<T, std::string>)
        return typed && (text = typed->value, true);
    else
        return typed && (write(text, typed->value), true);
}

template<class T> bool writeList(const ValueData& data, std::string& text)
{
    const auto* typed = dynamic_cast<const ValueDataT<std::vector<T>>*>(&data);
    if constexpr (std::is_same_v<T, std::shared_ptr<Plugin>>) {
        return false;
    } else {
        if (!typed)
            return false;
        for (const T& item : typed->value)
            write(text, item);
        return true;
    }
}

bool writeEnum(const ValueData& data, std::string& text)
{
    const auto* typed = dynamic_cast<const ValueDataT<Enum>*>(&data);
    const EnumDesc::Item* item = typed ? typed->value.desc()->findValue(typed->value.value()) : nullptr;
    if (item)
        text = item->key;
    return item;
}

template<class T> std::unique_ptr<ValueData> readPlain(const std::string& text, const Type& type)
{
    if constexpr (std::is_same_v<T, std::string>)
        return std::make_unique<ValueDataT<T>>(type, text);
    ComponentReader reader(text);
    T payload{};
    if (!reader.read(payload) || !reader.atEnd())
        return nullptr;
    return std::make_unique<ValueDataT<T>>(type, std::move(payload));
}

template<class T> std::unique_ptr<ValueData> readList(const std::string& text, const Type& type)
{
    ComponentReader reader(text);
    std::vector<T> items;
    while (!reader.atEnd()) {
        T item{};
        if (!reader.read(item))
            return nullptr;
        items.push_back(std::move(item));
    }
    if (!items.empty() && items.size() != type.getCompoundSize())
        return nullptr;
    return std::make_unique<ValueDataT<std::vector<T>>>(type, std::move(items));
}

std::unique_ptr<ValueData> readEnum(const std::string& key, const Type& type)
{
    const EnumDesc::Item* item = type.getEnumDesc()->findKey(key);
    if (!item)
        return nullptr;
    return std::make_unique<ValueDataT<Enum>>(type, Enum(type.getEnumDesc(), item->value));
}

} // namespace

std::string ValueSerializer::sToTypedValueStr(const std::string& typeName, const std::string& valueText)
{
    return typeName + '(' + valueText + ')';
}

bool ValueSerializer::sFromTypedValueStr(const std::string& text, const std::string& typeName,
                                         std::string& valueText)
{
    const std::string start = typeName + '(';
    if (typeName.empty() || text.size() <= start.size() || text.compare(0, start.size(), start) != 0 ||
        text.back() != ')')
        return false;
    valueText = text.substr(start.size(), text.size() - start.size() - 1);
    return true;
}

bool ValueSerializer::sToBareText(const ValueData& data, std::string& text)
{
    text.clear();
    const Type& type = data.type();
    bool written = type.code() == Type::Void;
    if (type.code() == Type::Enumeration)
        written = writeEnum(data, text);
    else if (type.code() == Type::List)
        visitPlainPayload(int(type.getCompoundItemType().code()), [&](auto tag) {
            written = writeList<typename decltype(tag)::Payload>(data, text);
        });
    else
        visitPlainPayload(int(type.code()), [&](auto tag) {
            written = writePlain<typename decltype(tag)::Payload>(data, text);
        });
    return written;
}

std::unique_ptr<ValueData> ValueSerializer::sFromBareText(const std::string& text, const Type& type)
{
    std::unique_ptr<ValueData> data;
    if (type.code() == Type::Void && text.empty())
        data = std::make_unique<ValueDataVoid>();
    else if (type.code() == Type::Enumeration)
        data = readEnum(text, type);
    else if (type.code() == Type::List)
        visitPlainPayload(int(type.getCompoundItemType().code()),
                          [&](auto tag) { data = readList<typename decltype(tag)::Payload>(text, type); });
    else
        visitPlainPayload(int(type.code()),
                          [&](auto tag) { data = readPlain<typename decltype(tag)::Payload>(text, type); });
    return data;
}

} // namespace Orn::Module
