#pragma once

// Source files and what is wrong with them.
//
// A place is a file and a byte offset; lines and columns are worked out when a message is written. Messages
// are collected, not thrown, so that one run tells all errors of a package. The same message for the same
// place is told once, since a graph that is used many times is looked at many times.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vellor::cooker {

struct Place
{
    std::int32_t file = -1; // index in Sources; -1: nowhere
    std::uint32_t offset = 0;
};

/// A piece of text and where it stands.
struct SourceText
{
    std::string text;
    Place place;
    bool given = false;

    explicit operator bool() const { return given; }
};

class Sources
{
public:
    /// Keeps the bytes of a file. The name is used for messages.
    std::int32_t add(std::string name, std::string bytes);

    const std::string& name(std::int32_t file) const { return m_files[file]->name; }
    const std::string& bytes(std::int32_t file) const { return m_files[file]->bytes; }
    std::int32_t count() const { return static_cast<std::int32_t>(m_files.size()); }

    /// Where the byte number index of a text stands whose entities and line ends an XML parser has replaced.
    Place within(const SourceText& text, std::size_t index) const;

    /// "file:line:column", counted from 1, columns in characters. "" for nowhere.
    std::string describe(Place place) const;

private:
    struct File
    {
        std::string name, bytes;
        std::vector<std::uint32_t> lineStarts;
    };
    std::vector<std::unique_ptr<File>> m_files;
};

class Diagnostics
{
public:
    explicit Diagnostics(const Sources& sources) : m_sources(sources) {}

    void error(Place place, const std::string& text);

    bool any() const { return !m_messages.empty(); }
    /// No more messages are taken: whoever works through a long list may stop.
    bool full() const { return m_messages.size() >= kMaxMessages; }

    /// One line each, "file:line:column: text", by file and place.
    std::vector<std::string> messages() const;

private:
    static constexpr std::size_t kMaxMessages = 500;

    const Sources& m_sources;
    std::set<std::pair<std::pair<std::int32_t, std::uint32_t>, std::string>> m_messages;
};

/// "'a', 'b' or 'c'", for messages.
std::string quotedList(const std::vector<std::string>& names);

} // namespace vellor::cooker
