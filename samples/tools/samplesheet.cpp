// Shows what a package makes, for people to look at:
//
//   samplesheet ENGINE FILE.vlr FOLDER [SIZE=9] [TILES=1] [input=1,2,3 ...]
//
// Writes each picture, and a lit view of each graph that has a surface, as PNG files into FOLDER. SIZE is the
// side as a power of two; TILES repeats the pictures, so that seams show. An input named "time" stands for
// $time.

#include "samples/tests/samplepackage.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <sstream>

using namespace vellor::samples;

namespace {

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

using Vec = std::array<float, 3>;

float dot(const Vec& a, const Vec& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vec unit(Vec v)
{
    const float length = std::sqrt(dot(v, v));
    return {v[0] / length, v[1] / length, v[2] / length};
}

/// One lamp at the upper left and a bright sky, seen from straight above; microfacets after Walter et al.
/// (2007).
class LitView
{
public:
    LitView(const Results& results, const std::string& graph, const SamplePackage& package)
    {
        for (const PackageOutput& output : package.outputs()) {
            const auto found = results.pictures.find(graph + "/" + output.identifier);
            if (output.graph == graph && found != results.pictures.end())
                m_byUsage[output.usage] = &found->second;
        }
    }

    bool possible() const { return m_byUsage.count("basecolor") && m_byUsage.count("normal"); }

    Picture draw() const
    {
        const Picture& base = *m_byUsage.at("basecolor");
        Picture result{base.width, base.height, 4, {}};
        for (int y = 0; y < base.height; ++y) {
            for (int x = 0; x < base.width; ++x) {
                const Vec colour = shade(x, y);
                for (const float c : colour)
                    result.values.push_back(std::pow(c / (0.9f + c) * 1.5f, 1.0f / 2.2f));
                result.values.push_back(1.0f);
            }
        }
        return result;
    }

private:
    float read(const char* usage, int x, int y, int channel, float fallback) const
    {
        const auto found = m_byUsage.find(usage);
        return found == m_byUsage.end() ? fallback : found->second->at(x, y, channel);
    }

    Vec shade(int x, int y) const
    {
        const Vec n = unit({read("normal", x, y, 0, 0.5f) * 2 - 1, read("normal", x, y, 1, 0.5f) * 2 - 1,
                            std::max(read("normal", x, y, 2, 1.0f) * 2 - 1, 0.05f)});
        const Vec light = unit({-0.55f, -0.6f, 0.6f}), view = {0, 0, 1};
        const Vec half = unit({light[0], light[1], light[2] + 1});
        const float roughness = std::max(read("roughness", x, y, 0, 0.5f), 0.05f);
        const float metallic = read("metallic", x, y, 0, 0), sky = read("ambientocclusion", x, y, 0, 1);
        const float a2 = std::pow(roughness, 4.0f), nh = std::max(dot(n, half), 0.0f);
        const float nl = std::max(dot(n, light), 0.0f), nv = std::max(dot(n, view), 0.05f);
        const float d = a2 / (3.14159f * std::pow(nh * nh * (a2 - 1) + 1, 2.0f));
        const float k = roughness * roughness / 2;
        const float g = nl / (nl * (1 - k) + k) * nv / (nv * (1 - k) + k);
        Vec colour{};
        for (int c = 0; c < 3; ++c) {
            const float base = std::pow(read("basecolor", x, y, c, 0.5f), 2.2f);
            const float f0 = 0.04f * (1 - metallic) + base * metallic;
            const float f = f0 + (1 - f0) * std::pow(1 - std::max(dot(half, view), 0.0f), 5.0f);
            const float specular = d * g * f / (4 * nv * std::max(nl, 0.05f) + 1e-4f) * nl * 1.7f;
            const float up = 0.5f + 0.5f * dot(n, unit({0.2f, -0.5f, 0.7f}));
            colour[c] = base * (1 - metallic) * (nl * 1.5f + sky * up * 0.5f) + specular +
                        sky * f0 * up * (1.2f - 0.6f * roughness);
            colour[c] += read("emissive", x, y, c, 0);
        }
        return colour;
    }

    std::map<std::string, const Picture*> m_byUsage;
};

void apply(SamplePackage& package, const std::string& assignment)
{
    const std::size_t equals = assignment.find('=');
    std::string name = assignment.substr(0, equals);
    if (name == "time")
        name = "$time";
    std::vector<double> numbers;
    std::istringstream list(equals == std::string::npos ? "0" : assignment.substr(equals + 1));
    for (std::string part; std::getline(list, part, ',');)
        numbers.push_back(std::atof(part.c_str()));
    package.set(name, numbers);
}

void show(const std::vector<std::string>& arguments)
{
    SamplePackage package(arguments[1], arguments[0]);
    package.setSize(arguments.size() > 3 ? std::atoi(arguments[3].c_str()) : 9);
    const int tiles = arguments.size() > 4 ? std::atoi(arguments[4].c_str()) : 1;
    for (std::size_t i = 5; i < arguments.size(); ++i)
        apply(package, arguments[i]);
    const auto start = std::chrono::steady_clock::now();
    const Results results = package.generate();
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
    std::printf("%zu pictures in %.1f ms\n", results.pictures.size(), taken.count());
    std::map<std::string, int> graphs;
    for (const auto& [name, picture] : results.pictures) {
        const std::string graph = name.substr(0, name.find('/'));
        graphs[graph] = 1;
        PngWriter(arguments[2] + "/" + graph + "_" + name.substr(graph.size() + 1) + ".png")
            .write(picture, tiles);
    }
    for (const auto& [graph, unused] : graphs) {
        const LitView view(results, graph, package);
        if (view.possible())
            PngWriter(arguments[2] + "/" + graph + "_lit.png").write(view.draw(), tiles);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 4) {
        std::fprintf(stderr, "usage: samplesheet ENGINE FILE.vlr FOLDER [SIZE [TILES [input=value ...]]]\n");
        return 2;
    }
    try {
        show({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
