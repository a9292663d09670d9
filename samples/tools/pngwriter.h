#pragma once

#include "samples/tests/samplepackage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <string>

namespace vellor::samples {

/// PNG files with stored, not compressed, rows.
class PngWriter
{
public:
    explicit PngWriter(const std::string& path) : m_file(path, std::ios::binary)
    {
        for (std::uint32_t i = 0; i < 256; ++i) {
            std::uint32_t c = i;
            for (int k = 0; k < 8; ++k)
                c = (c >> 1) ^ ((c & 1u) ? 0xedb88320u : 0u);
            m_table[i] = c;
        }
    }

    void write(const Picture& picture, int tiles)
    {
        const int width = picture.width * tiles, height = picture.height * tiles;
        m_file << "\x89PNG\r\n\x1a\n";
        std::string header = big(width) + big(height) + std::string("\x08\x02\0\0\0", 5);
        chunk("IHDR", header);
        std::string rows = pixels(picture, width, height), data("\x78\x01", 2);
        std::uint32_t a = 1, b = 0;
        for (const char c : rows) {
            a = (a + static_cast<unsigned char>(c)) % 65521u;
            b = (b + a) % 65521u;
        }
        for (std::size_t at = 0; at < rows.size(); at += 65535) {
            const auto count = static_cast<std::uint16_t>(std::min<std::size_t>(65535, rows.size() - at));
            const std::uint16_t lengths[2] = {count, static_cast<std::uint16_t>(~count)};
            data += at + count == rows.size() ? '\1' : '\0';
            for (const std::uint16_t length : lengths)
                data += {static_cast<char>(length & 255), static_cast<char>(length >> 8)};
            data.append(rows, at, count);
        }
        chunk("IDAT", data + big(static_cast<int>((b << 16) | a)));
        chunk("IEND", {});
    }

private:
    static std::string big(int number)
    {
        const auto n = static_cast<std::uint32_t>(number);
        return {static_cast<char>(n >> 24), static_cast<char>(n >> 16), static_cast<char>(n >> 8),
                static_cast<char>(n)};
    }

    static std::string pixels(const Picture& picture, int width, int height)
    {
        std::string rows;
        for (int y = 0; y < height; ++y) {
            rows += '\0';
            for (int x = 0; x < width; ++x) {
                for (int c = 0; c < 3; ++c) {
                    const float value = picture.at(x, y, picture.channels == 1 ? 0 : c);
                    rows += static_cast<char>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255.0f));
                }
            }
        }
        return rows;
    }

    void chunk(const char* name, const std::string& data)
    {
        const std::string body = name + data;
        std::uint32_t sum = ~0u;
        for (const char c : body)
            sum = m_table[(sum ^ static_cast<unsigned char>(c)) & 255u] ^ (sum >> 8);
        m_file << big(static_cast<int>(data.size())) << body << big(static_cast<int>(~sum));
    }

    std::ofstream m_file;
    std::array<std::uint32_t, 256> m_table{};
};

} // namespace vellor::samples
