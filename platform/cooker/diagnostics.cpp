#include "platform/cooker/diagnostics.h"

#include <algorithm>

namespace vellor::cooker {

namespace {

bool isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

std::size_t utf8Length(unsigned long codePoint)
{
    return codePoint < 0x80 ? 1 : codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
}

/// Sizes, in the source and once decoded, of the entity that begins at offset; {1, 1} when there is none.
std::pair<std::size_t, std::size_t> entitySizes(const std::string& bytes, std::size_t offset)
{
    constexpr std::size_t kLongest = 10; // &#x10FFFF;
    const std::size_t end = bytes.find(';', offset);
    if (end == std::string::npos || end - offset >= kLongest)
        return {1, 1};
    if (offset + 2 >= end || bytes[offset + 1] != '#')
        return {end - offset + 1, 1};
    const bool hexadecimal = bytes[offset + 2] == 'x';
    const std::string digits = bytes.substr(offset + (hexadecimal ? 3 : 2), end - offset);
    return {end - offset + 1, utf8Length(std::strtoul(digits.c_str(), nullptr, hexadecimal ? 16 : 10))};
}

} // namespace

std::int32_t Sources::add(std::string name, std::string bytes)
{
    auto file = std::make_unique<File>();
    file->name = std::move(name);
    file->bytes = std::move(bytes);
    file->lineStarts = {0};
    for (std::size_t i = 0; i < file->bytes.size(); ++i) {
        if (file->bytes[i] == '\n')
            file->lineStarts.push_back(static_cast<std::uint32_t>(i + 1));
    }
    m_files.push_back(std::move(file));
    return count() - 1;
}

Place Sources::within(const SourceText& text, std::size_t index) const
{
    if (text.place.file < 0)
        return text.place;
    const std::string& bytes = m_files[text.place.file]->bytes;
    std::size_t at = text.place.offset;
    for (std::size_t decoded = 0; decoded < index && at < bytes.size();) {
        std::pair<std::size_t, std::size_t> step{1, 1};
        if (bytes[at] == '&')
            step = entitySizes(bytes, at);
        else if (bytes[at] == '\r' && at + 1 < bytes.size() && bytes[at + 1] == '\n')
            step = {2, 1};
        at += step.first;
        decoded += step.second;
    }
    return {text.place.file, static_cast<std::uint32_t>(std::min(at, bytes.size()))};
}

std::string Sources::describe(Place place) const
{
    if (place.file < 0 || place.file >= count())
        return {};
    const File& file = *m_files[place.file];
    const auto line = std::upper_bound(file.lineStarts.begin(), file.lineStarts.end(), place.offset) - 1;
    const std::size_t end = std::min<std::size_t>(place.offset, file.bytes.size());
    const auto column = std::count_if(file.bytes.begin() + *line, file.bytes.begin() + end,
                                      [](char byte) { return !isContinuation(byte); });
    return file.name + ":" + std::to_string(line - file.lineStarts.begin() + 1) + ":" +
           std::to_string(column + 1);
}

void Diagnostics::error(Place place, const std::string& text)
{
    if (full())
        return;
    std::string line = text; // one line, whatever is quoted in it
    std::replace_if(
        line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    m_messages.insert({{place.file, place.offset}, std::move(line)});
}

std::vector<std::string> Diagnostics::messages() const
{
    std::vector<std::string> lines;
    for (const auto& [place, text] : m_messages) {
        const std::string where = m_sources.describe({place.first, place.second});
        lines.push_back(where.empty() ? text : where + ": " + text);
    }
    if (full())
        lines.push_back("too many errors: the rest is left out");
    return lines;
}

std::string quotedList(const std::vector<std::string>& names)
{
    constexpr std::size_t kMost = 40;
    std::string list;
    for (std::size_t i = 0; i < names.size() && i < kMost; ++i) {
        if (i > 0)
            list += i + 1 == names.size() ? " or " : ", ";
        list += "'" + names[i] + "'";
    }
    return names.size() > kMost ? list + ", ..." : list;
}

} // namespace vellor::cooker
