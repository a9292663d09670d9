#pragma once

// Little-endian bytes, written into a growing buffer and read back under bounds.
//
// A reader never throws and never reads past its end: a read beyond it gives zero and marks the reader as
// failed, which the caller asks once, after a whole record.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vellor::program {

/// Bytes that somebody else owns.
struct ByteView
{
    ByteView() = default;
    ByteView(const void* bytes, std::size_t count)
        : data(static_cast<const std::uint8_t*>(bytes)), size(count)
    {
    }
    ByteView(const std::vector<std::uint8_t>& bytes) : ByteView(bytes.data(), bytes.size()) {}

    const std::uint8_t* begin() const { return data; }
    const std::uint8_t* end() const { return data + size; }
    ByteView part(std::size_t offset, std::size_t count) const { return {data + offset, count}; }

    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
};

class ByteWriter
{
public:
    template<typename Integer> void put(Integer value)
    {
        for (std::size_t i = 0; i < sizeof(Integer); ++i)
            m_bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * i)));
    }

    void putBytes(ByteView bytes) { m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end()); }

    /// Length, bytes, and zeros up to the next multiple of four.
    void putText(std::string_view text)
    {
        put(static_cast<std::uint32_t>(text.size()));
        putBytes({text.data(), text.size()});
        align(4);
    }

    void align(std::size_t to)
    {
        while (m_bytes.size() % to != 0)
            m_bytes.push_back(0);
    }

    std::vector<std::uint8_t>& bytes() { return m_bytes; }

private:
    std::vector<std::uint8_t> m_bytes;
};

class ByteReader
{
public:
    explicit ByteReader(ByteView bytes) : m_bytes(bytes) {}

    template<typename Integer> Integer get()
    {
        std::uint64_t value = 0;
        const ByteView part = getBytes(sizeof(Integer));
        for (std::size_t i = 0; i < part.size; ++i)
            value |= static_cast<std::uint64_t>(part.data[i]) << (8 * i);
        return static_cast<Integer>(value);
    }

    /// The next count bytes; none of them when fewer are left.
    ByteView getBytes(std::size_t count)
    {
        if (m_failed || count > left()) {
            m_failed = true;
            return {};
        }
        const ByteView part = m_bytes.part(m_at, count);
        m_at += count;
        return part;
    }

    std::string getText()
    {
        const ByteView text = getBytes(get<std::uint32_t>());
        align(4);
        return {text.begin(), text.end()};
    }

    /// A number of records of at least recordSize bytes each. Fails when so many can't be there, so that the
    /// number may be used to reserve memory.
    std::size_t getCount(std::size_t recordSize)
    {
        const std::size_t count = get<std::uint32_t>();
        if (count > left() / recordSize)
            m_failed = true;
        return m_failed ? 0 : count;
    }

    void align(std::size_t to)
    {
        const std::size_t over = m_at % to;
        if (over != 0)
            getBytes(to - over);
    }

    std::size_t left() const { return m_bytes.size - m_at; }
    bool failed() const { return m_failed; }
    void fail() { m_failed = true; }

private:
    ByteView m_bytes;
    std::size_t m_at = 0;
    bool m_failed = false;
};

} // namespace vellor::program
