#include "platform/cooker/literals.h"

#include "platform/program/types.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace vellor::cooker {

using program::ValueType;
using program::Words;

namespace {

struct NamedType
{
    const char* name;
    InputType type;
};

const NamedType kTypes[] = {
    {"float", {ValueType::Float}},   {"float2", {ValueType::Float2}},  {"float3", {ValueType::Float3}},
    {"float4", {ValueType::Float4}}, {"int", {ValueType::Int}},        {"int2", {ValueType::Int2}},
    {"int3", {ValueType::Int3}},     {"int4", {ValueType::Int4}},      {"image", {ValueType::Image}},
    {"text", {ValueType::String}},   {"bool", {ValueType::Int, true}},
};

struct NamedCode
{
    const char* name;
    std::uint8_t code;
};

const NamedCode kLayouts[] = {{"rgba", 0}, {"rgbx", 4}, {"rgb", 8}, {"grey", 12}};
const NamedCode kDepths[] = {{"8", 0}, {"16", 0x10}, {"32f", 0x40}, {"16f", 0x50}};
constexpr std::uint8_t kSrgb = 0x20, kGreyLayout = 12;

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::optional<std::uint32_t> parseWord(ValueType type, const std::string& text)
{
    if (program::isFloat(type)) {
        const auto number = parseFloat(text);
        return number ? std::optional(program::floatBits(*number)) : std::nullopt;
    }
    if (text == "on" || text == "true")
        return 1u;
    if (text == "off" || text == "false")
        return 0u;
    const auto number = parseInt(text);
    return number ? std::optional(static_cast<std::uint32_t>(*number)) : std::nullopt;
}

/// Size of the UTF-8 sequence at offset, 0 when it is ill-formed or a zero.
std::size_t sequenceSize(const std::string& text, std::size_t offset, char32_t& character)
{
    const auto byte = [&](std::size_t i) {
        return offset + i < text.size() ? static_cast<unsigned char>(text[offset + i]) : 0u;
    };
    const unsigned first = byte(0);
    const std::size_t size = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
    if (size == 0 || first == 0)
        return 0;
    character = size == 1 ? first : first & (0xFFu >> (size + 1));
    for (std::size_t i = 1; i < size; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
        character = character << 6 | (byte(i) & 0x3F);
    }
    const bool tooLong = (size == 3 && character < 0x800) || (size == 4 && character < 0x10000);
    const bool outside = character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF);
    return tooLong || outside ? 0 : size;
}

} // namespace

std::string trimmed(const std::string& text)
{
    const auto begin = std::find_if_not(text.begin(), text.end(), isSpace);
    const auto end = std::find_if_not(text.rbegin(), text.rend(), isSpace).base();
    return begin < end ? std::string(begin, end) : std::string();
}

std::vector<std::string> splitList(const std::string& text)
{
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t comma; (comma = text.find(',', start)) != std::string::npos; start = comma + 1)
        parts.push_back(trimmed(text.substr(start, comma - start)));
    parts.push_back(trimmed(text.substr(start)));
    return parts;
}

std::optional<float> parseFloat(const std::string& text)
{
    const char* first = text.data() + (text.size() > 1 && text[0] == '+' && text[1] != '-');
    const char* last = text.data() + text.size();
    double value = 0.0;
    const auto [end, code] = std::from_chars(first, last, value);
    if (code != std::errc() || end != last || !std::isfinite(static_cast<float>(value)))
        return std::nullopt;
    return static_cast<float>(value);
}

std::optional<std::int32_t> parseInt(const std::string& text)
{
    const bool negative = !text.empty() && text[0] == '-';
    std::size_t start = !text.empty() && (negative || text[0] == '+');
    const bool hexadecimal = text.compare(start, 2, "0x") == 0;
    start += hexadecimal ? 2 : 0;
    std::uint64_t value = 0;
    const char* last = text.data() + text.size();
    const auto [end, code] = std::from_chars(text.data() + start, last, value, hexadecimal ? 16 : 10);
    if (code != std::errc() || end != last || value > (negative ? 0x80000000u : 0xFFFFFFFFu))
        return std::nullopt;
    const auto word = static_cast<std::uint32_t>(value);
    return static_cast<std::int32_t>(negative ? 0u - word : word);
}

std::optional<std::array<float, 4>> parseHexColor(const std::string& text)
{
    if ((text.size() != 7 && text.size() != 9) || text[0] != '#')
        return std::nullopt;
    std::array<float, 4> color{0, 0, 0, 1};
    for (std::size_t i = 0; 2 * i + 1 < text.size(); ++i) {
        unsigned value = 0;
        const char* first = text.data() + 1 + 2 * i;
        const auto [end, code] = std::from_chars(first, first + 2, value, 16);
        if (code != std::errc() || end != first + 2)
            return std::nullopt;
        color[i] = static_cast<float>(value) / 255.0f;
    }
    return color;
}

std::optional<std::array<float, 4>> parseColor(const std::string& text)
{
    const std::string value = trimmed(text);
    if (auto color = parseHexColor(value))
        return color;
    const std::vector<std::string> parts = splitList(value);
    if (parts.size() != 3 && parts.size() != 4)
        return std::nullopt;
    std::array<float, 4> color{0, 0, 0, 1};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto number = parseFloat(parts[i]);
        if (!number)
            return std::nullopt;
        color[i] = *number;
    }
    return color;
}

std::optional<Words> parseWords(ValueType type, const std::string& text)
{
    const std::size_t count = program::componentCount(type);
    Words words{};
    if (type == ValueType::Float4 || type == ValueType::Float3) {
        if (const auto color = parseColor(text)) {
            for (std::size_t i = 0; i < count; ++i)
                words[i] = program::floatBits((*color)[i]);
            return words;
        }
    }
    const std::vector<std::string> parts = splitList(text);
    if (parts.size() != 1 && parts.size() != count)
        return std::nullopt;
    for (std::size_t i = 0; i < count; ++i) {
        const auto word = parseWord(type, parts[parts.size() == 1 ? 0 : i]);
        if (!word)
            return std::nullopt;
        words[i] = *word;
    }
    return words;
}

std::string expectedWords(ValueType type)
{
    const std::string noun = program::isFloat(type) ? "number" : "whole number";
    const int count = program::componentCount(type);
    if (count == 1)
        return "a " + noun;
    std::string text = std::to_string(count) + " " + noun + "s separated by commas";
    if (type == ValueType::Float3 || type == ValueType::Float4)
        text += ", or a colour like #c08040";
    return text;
}

std::string printFloat(float value)
{
    char buffer[64];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

std::string printWords(ValueType type, const Words& words)
{
    std::string text;
    for (int i = 0; i < program::componentCount(type); ++i) {
        text += i > 0 ? "," : "";
        text += program::isFloat(type) ? printFloat(program::bitsFloat(words[i]))
                                       : std::to_string(static_cast<std::int32_t>(words[i]));
    }
    return text;
}

std::optional<InputType> parseInputType(const std::string& name)
{
    for (const NamedType& entry : kTypes) {
        if (name == entry.name)
            return entry.type;
    }
    return std::nullopt;
}

std::string typeName(ValueType type)
{
    for (const NamedType& entry : kTypes) {
        if (type == entry.type.type)
            return entry.name;
    }
    return "unknown";
}

const std::vector<std::string>& inputTypeNames()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> list;
        for (const NamedType& entry : kTypes)
            list.push_back(entry.name);
        return list;
    }();
    return names;
}

std::optional<PictureFormat> parseFormat(const std::string& name)
{
    for (const NamedCode& layout : kLayouts) {
        for (const NamedCode& depth : kDepths) {
            const std::string plain = std::string(layout.name) + depth.name;
            const bool srgb = name == plain + "-srgb";
            if (srgb || name == plain) {
                const auto code = static_cast<std::uint8_t>(layout.code | depth.code | (srgb ? kSrgb : 0));
                return PictureFormat{code, layout.code == kGreyLayout};
            }
        }
    }
    return std::nullopt;
}

std::vector<std::string> formatNames()
{
    std::vector<std::string> names;
    for (const NamedCode& layout : kLayouts) {
        for (const NamedCode& depth : kDepths)
            names.push_back(std::string(layout.name) + depth.name);
    }
    return names;
}

bool isName(const std::string& text)
{
    constexpr std::size_t kLongest = 256;
    const auto fits = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    };
    return !text.empty() && text.size() <= kLongest && (text[0] < '0' || text[0] > '9') &&
           std::all_of(text.begin(), text.end(), fits);
}

bool isUtf8(const std::string& text, std::size_t& offset)
{
    char32_t character;
    for (offset = 0; offset < text.size();) {
        const std::size_t size = sequenceSize(text, offset, character);
        if (size == 0)
            return false;
        offset += size;
    }
    return true;
}

std::u32string toUtf32(const std::string& text)
{
    std::u32string characters;
    char32_t character = 0;
    for (std::size_t offset = 0; offset < text.size();) {
        const std::size_t size = sequenceSize(text, offset, character);
        if (size == 0)
            break;
        characters.push_back(character);
        offset += size;
    }
    return characters;
}

} // namespace vellor::cooker
