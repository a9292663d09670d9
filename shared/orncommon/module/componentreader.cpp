#include "orncommon/module/componentreader.h"

#include <charconv>

namespace Orn::Module {

namespace {

constexpr std::string_view whiteSpace = " \t\r\n";

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

} // namespace

ComponentReader::ComponentReader(std::string_view text) : m_rest(trimmed(text)), m_atEnd(m_rest.empty())
{
}

bool ComponentReader::fail()
{
    m_rest = {};
    m_atEnd = true;
    return false;
}

bool ComponentReader::next(std::string_view& component)
{
    if (m_atEnd)
        return false;
    const std::size_t comma = m_rest.find(',');
    component = trimmed(m_rest.substr(0, comma));
    m_atEnd = comma == std::string_view::npos;
    m_rest = m_atEnd ? std::string_view() : m_rest.substr(comma + 1);
    return true;
}

template<class T> bool ComponentReader::readNumber(T& component)
{
    std::string_view text;
    if (!next(text))
        return false;
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, component);
    return (error == std::errc() && stop == end) || fail();
}

bool ComponentReader::read(bool& component)
{
    std::string_view text;
    if (!next(text))
        return false;
    component = text == "true" || text == "1";
    return component || text == "false" || text == "0" || fail();
}

bool ComponentReader::read(int& component)
{
    return readNumber(component);
}

bool ComponentReader::read(unsigned int& component)
{
    return readNumber(component);
}

bool ComponentReader::read(float& component)
{
    return readNumber(component);
}

bool ComponentReader::read(double& component)
{
    return readNumber(component);
}

bool ComponentReader::read(std::string& component)
{
    const std::size_t open = m_rest.find_first_not_of(whiteSpace);
    if (m_atEnd || open == std::string_view::npos || m_rest[open] != '"')
        return fail();
    component.clear();
    std::size_t at = open + 1;
    for (; at < m_rest.size() && m_rest[at] != '"'; ++at) {
        if (m_rest[at] == '\\' && ++at == m_rest.size())
            return fail();
        component += m_rest[at];
    }
    if (at == m_rest.size())
        return fail();
    m_rest.remove_prefix(at + 1);
    std::string_view behind;
    // What stands between the closing quote and the next comma can only be white space.
    return next(behind) && (behind.empty() || fail());
}

} // namespace Orn::Module
