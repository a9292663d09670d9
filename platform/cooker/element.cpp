#include "platform/cooker/element.h"

#include "platform/cooker/literals.h"

#include <algorithm>

namespace vellor::cooker {

namespace {

constexpr unsigned kParseOptions =
    pugi::parse_cdata | pugi::parse_escapes | pugi::parse_eol | pugi::parse_wconv_attribute;

bool contains(const std::vector<std::string>& names, const char* name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

Document::Document(const Sources& sources, std::int32_t file, Diagnostics& diagnostics)
    : m_bytes(sources.bytes(file)), m_file(file), m_diagnostics(diagnostics)
{
    std::size_t offset = 0;
    if (!isUtf8(m_bytes, offset)) {
        diagnostics.error({file, static_cast<std::uint32_t>(offset)}, "the file is not UTF-8 text");
        return;
    }
    const pugi::xml_parse_result result =
        m_tree.load_buffer_inplace(m_bytes.data(), m_bytes.size(), kParseOptions, pugi::encoding_utf8);
    if (!result) {
        const auto at = static_cast<std::uint32_t>(std::max<std::ptrdiff_t>(result.offset, 0));
        diagnostics.error({file, at}, std::string("XML: ") + result.description());
        m_tree.reset();
        return;
    }
    for (pugi::xml_node other = root().next_sibling(); other; other = other.next_sibling()) {
        if (other.type() == pugi::node_element)
            diagnostics.error(placeOf(other.name()), "a file has one root element only");
    }
}

Place Document::placeOf(const char* text) const
{
    const char* begin = m_bytes.data();
    const bool inside = text >= begin && text <= begin + m_bytes.size();
    return {m_file, inside ? static_cast<std::uint32_t>(text - begin) : 0u};
}

Element::Element(const Document& document, pugi::xml_node node) : m_document(document), m_node(node)
{
}

Element::~Element()
{
    checkAttributes();
    checkChildren();
}

SourceText Element::attribute(const char* name)
{
    if (!contains(m_attributes, name))
        m_attributes.push_back(name);
    const pugi::xml_attribute found = m_node.attribute(name);
    if (!found)
        return {{}, place(), false};
    return {found.value(), m_document.placeOf(found.value()), true};
}

SourceText Element::required(const char* name)
{
    SourceText text = attribute(name);
    if (!text)
        error(place(), tag() + " needs the attribute '" + name + "'");
    else if (trimmed(text.text).empty())
        error(text.place, std::string("'") + name + "' must not be empty");
    return text;
}

SourceText Element::oneOf(const char* name, const std::vector<std::string>& names)
{
    SourceText text = attribute(name);
    if (text && !contains(names, text.text.c_str())) {
        error(text.place, "'" + text.text + "' does not fit here; expected " + quotedList(names));
        text.given = false;
    }
    return text;
}

bool Element::flag(const char* name, bool absent)
{
    const SourceText text = oneOf(name, {"on", "off"});
    return text ? text.text == "on" : absent;
}

SourceText Element::content()
{
    m_contentRead = true;
    SourceText content{{}, place(), false};
    for (const pugi::xml_node child : m_node.children()) {
        const bool isText = child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata;
        if (!isText || trimmed(child.value()).empty())
            continue;
        if (content)
            error(m_document.placeOf(child.value()), "the text of " + tag() + " must be in one piece");
        else
            content = {child.value(), m_document.placeOf(child.value()), true};
    }
    return content;
}

void Element::checkAttributes() const
{
    std::vector<std::string> seen;
    for (const pugi::xml_attribute attribute : m_node.attributes()) {
        const Place at = m_document.placeOf(attribute.name());
        if (contains(seen, attribute.name()))
            error(at, std::string("the attribute '") + attribute.name() + "' is given twice");
        else if (!contains(m_attributes, attribute.name()))
            error(at, tag() + " has no attribute '" + attribute.name() + "'; expected " +
                          (m_attributes.empty() ? "none" : quotedList(m_attributes)));
        else
            seen.push_back(attribute.name());
    }
}

void Element::checkChildren() const
{
    for (const pugi::xml_node child : m_node.children()) {
        if (child.type() == pugi::node_element && !contains(m_children, child.name()))
            error(m_document.placeOf(child.name()),
                  std::string("<") + child.name() + "> may not stand in " + tag() + "; expected " +
                      (m_children.empty() ? "nothing" : quotedList(m_children)));
        const bool isText = child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata;
        if (isText && !m_contentRead && !trimmed(child.value()).empty())
            error(m_document.placeOf(child.value()), "text may not stand in " + tag());
    }
}

} // namespace vellor::cooker
