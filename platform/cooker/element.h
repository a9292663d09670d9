#pragma once

#include "platform/cooker/diagnostics.h"

#include <pugixml.hpp>

#include <string>
#include <vector>

namespace vellor::cooker {

/// The tree of one file. It was parsed in place, so that every pointer of it tells an offset.
class Document
{
public:
    /// Parses a file of sources; what is wrong goes to diagnostics.
    Document(const Sources& sources, std::int32_t file, Diagnostics& diagnostics);

    /// The root element; empty when the file could not be parsed.
    pugi::xml_node root() const { return m_tree.document_element(); }
    Place placeOf(const char* text) const;
    Diagnostics& diagnostics() const { return m_diagnostics; }

private:
    std::string m_bytes;
    std::int32_t m_file;
    Diagnostics& m_diagnostics;
    pugi::xml_document m_tree;
};

/// One element while it is read. It remembers what was asked for; whatever else is there is an error at the
/// end of its life, told with what was expected.
class Element
{
public:
    Element(const Document& document, pugi::xml_node node);
    ~Element();
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;

    /// The attribute; not given when it is absent.
    SourceText attribute(const char* name);
    /// As attribute, but its absence or emptiness is an error.
    SourceText required(const char* name);
    /// An attribute that is one of the names, or absent.
    SourceText oneOf(const char* name, const std::vector<std::string>& names);
    /// "on", "off" or absent.
    bool flag(const char* name, bool absent);

    /// Calls read(node) for each child element of that name.
    template<typename Read> void children(const char* name, const Read& read)
    {
        m_children.push_back(name);
        for (const pugi::xml_node child : m_node.children(name))
            read(child);
    }

    /// The text between the tags; not given when there is none but white space.
    SourceText content();

    std::string tag() const { return std::string("<") + m_node.name() + ">"; }
    Place place() const { return m_document.placeOf(m_node.name()); }
    void error(Place place, const std::string& text) const { m_document.diagnostics().error(place, text); }

private:
    void checkAttributes() const;
    void checkChildren() const;

    const Document& m_document;
    pugi::xml_node m_node;
    std::vector<std::string> m_attributes, m_children;
    bool m_contentRead = false;
};

} // namespace vellor::cooker
