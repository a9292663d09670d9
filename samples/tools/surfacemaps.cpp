#include "samples/tools/surfacemaps.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <thread>
#include <vector>

namespace vellor::samples {
namespace {

using Vec = SurfaceMaps::Vec;

constexpr float kPi = 3.14159265f;

Vec operator+(const Vec& a, const Vec& b)
{
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
Vec operator-(const Vec& a, const Vec& b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
Vec operator*(const Vec& a, float s)
{
    return {a[0] * s, a[1] * s, a[2] * s};
}
Vec operator*(const Vec& a, const Vec& b)
{
    return {a[0] * b[0], a[1] * b[1], a[2] * b[2]};
}
float dot(const Vec& a, const Vec& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
Vec cross(const Vec& a, const Vec& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
Vec unit(const Vec& v)
{
    return v * (1.0f / std::sqrt(std::max(dot(v, v), 1e-20f)));
}
float smooth(float low, float high, float x)
{
    const float t = std::clamp((x - low) / (high - low), 0.0f, 1.0f);
    return t * t * (3 - 2 * t);
}

/// The studio: x right, y up, z to the viewer. A grey sky, a darker floor, two bright panels.
Vec environment(const Vec& d)
{
    const float sky = 0.5f + 0.5f * d[1];
    Vec light = Vec{0.30f, 0.33f, 0.38f} * (0.25f + 0.75f * sky) + Vec{0.08f, 0.07f, 0.06f} * (1 - sky);
    const auto panel = [&](const Vec& middle, float width, float height, float power) {
        const Vec z = unit(middle), x = unit(cross({0, 1, 0}, z)), y = cross(z, x);
        const float depth = dot(d, z);
        if (depth <= 0.05f)
            return 0.0f;
        const float u = std::abs(dot(d, x) / depth), v = std::abs(dot(d, y) / depth);
        return power * (1 - smooth(width * 0.8f, width * 1.2f, u)) *
               (1 - smooth(height * 0.8f, height * 1.2f, v));
    };
    light = light + Vec{1.0f, 0.97f, 0.92f} * panel({-0.75f, 0.75f, 0.6f}, 0.4f, 0.55f, 5.0f);
    return light + Vec{0.85f, 0.92f, 1.0f} * panel({0.95f, 0.25f, 0.15f}, 0.16f, 0.8f, 3.0f);
}

const Vec kKey = {-0.62f, 0.62f, 0.48f}; // towards the lamp that casts shadows, about of unit length
const Vec kKeyColour = {2.6f, 2.5f, 2.35f};

/// Light from everywhere around a normal, worked out once on a grid of directions.
class Irradiance
{
public:
    Irradiance()
    {
        for (int i = 0; i < kRows; ++i)
            for (int j = 0; j < kColumns; ++j)
                m_values[i * kColumns + j] = integral(directionOf(i, j));
    }
    Vec at(const Vec& n) const
    {
        const float v = std::acos(std::clamp(n[1], -1.0f, 1.0f)) / kPi * (kRows - 1);
        const float u = (std::atan2(n[0], n[2]) / (2 * kPi) + 0.5f) * kColumns;
        const int i = std::clamp(int(v), 0, kRows - 2), j = int(u) % kColumns;
        const float a = v - float(i), b = u - std::floor(u);
        const auto cell = [&](int row, int column) { return m_values[row * kColumns + column % kColumns]; };
        return (cell(i, j) * (1 - b) + cell(i, j + 1) * b) * (1 - a) +
               (cell(i + 1, j) * (1 - b) + cell(i + 1, j + 1) * b) * a;
    }

private:
    static constexpr int kRows = 25, kColumns = 48;
    static Vec directionOf(int i, int j)
    {
        const float theta = kPi * float(i) / (kRows - 1), phi = 2 * kPi * (float(j) / kColumns - 0.5f);
        return {std::sin(theta) * std::sin(phi), std::cos(theta), std::sin(theta) * std::cos(phi)};
    }
    static Vec integral(const Vec& n)
    {
        Vec sum{};
        for (int i = 0; i < 32; ++i)
            for (int j = 0; j < 64; ++j) {
                const float theta = kPi * (float(i) + 0.5f) / 32, phi = 2 * kPi * (float(j) + 0.5f) / 64;
                const Vec d = {std::sin(theta) * std::sin(phi), std::cos(theta),
                               std::sin(theta) * std::cos(phi)};
                sum = sum + environment(d) * (std::max(dot(n, d), 0.0f) * std::sin(theta));
            }
        return sum * (kPi / 32 * 2 * kPi / 64 / kPi);
    }
    std::array<Vec, kRows * kColumns> m_values;
};

/// Radiance towards the viewer `toViewer`; `n` the shading normal, `shadow` what of the key lamp arrives.
Vec shade(const SurfaceMaps::Point& p, const Vec& n, const Vec& toViewer, float shadow,
          const Irradiance& irradiance)
{
    constexpr int kSamples = 16;
    const float roughness = std::clamp(p.roughness, 0.04f, 1.0f), alpha = roughness * roughness;
    const float nv = std::max(dot(n, toViewer), 0.02f), k = alpha / 2;
    Vec f0, diffuse;
    for (int c = 0; c < 3; ++c) {
        f0[c] = 0.04f * (1 - p.metallic) + p.baseColour[c] * p.metallic;
        diffuse[c] = p.baseColour[c] * (1 - p.metallic);
    }
    const auto fresnel = [&](float vh) {
        const float f = std::pow(1 - vh, 5.0f);
        return Vec{f0[0] + (1 - f0[0]) * f, f0[1] + (1 - f0[1]) * f, f0[2] + (1 - f0[2]) * f};
    };
    const auto masking = [&](float nx) { return nx / (nx * (1 - k) + k); };
    Vec light = diffuse * irradiance.at(n) * p.occlusion;
    const Vec up = std::abs(n[1]) < 0.9f ? Vec{0, 1, 0} : Vec{1, 0, 0}, x = unit(cross(up, n)),
              y = cross(n, x);
    Vec reflected{};
    for (int i = 0; i < kSamples; ++i) {
        const float u = (float(i) + 0.5f) / kSamples, phi = 2 * kPi * (float(i) * 0.618034f);
        const float cosine = std::sqrt((1 - u) / (1 + (alpha * alpha - 1) * u)),
                    sine = std::sqrt(1 - cosine * cosine);
        const Vec h = x * (sine * std::cos(phi)) + y * (sine * std::sin(phi)) + n * cosine;
        const float vh = dot(toViewer, h);
        const Vec l = h * (2 * vh) - toViewer;
        const float nl = dot(n, l);
        if (nl <= 0 || vh <= 0)
            continue;
        const float weight = masking(nl) * masking(nv) * vh / (nv * std::max(cosine, 1e-3f));
        reflected = reflected + environment(l) * fresnel(vh) * weight;
    }
    // Reflections of the sky fade in crevices about as its diffuse light does.
    light = light + reflected * (std::min(1.0f, std::pow(nv + p.occlusion, 0.5f + alpha) - 1 + p.occlusion) /
                                 kSamples);
    const Vec key = unit(kKey), h = unit(key + toViewer);
    const float nl = std::max(dot(n, key), 0.0f), nh = std::max(dot(n, h), 0.0f);
    const float wide = std::max(alpha, 0.02f),
                d = wide * wide / (kPi * std::pow(nh * nh * (wide * wide - 1) + 1, 2.0f));
    const float lobe = d * masking(nl) * masking(nv) / (4 * std::max(nl, 0.02f) * nv);
    const Vec direct =
        (diffuse * (1 / kPi) + fresnel(std::max(dot(toViewer, h), 0.0f)) * lobe) * (nl * shadow * 2.0f);
    return light + direct * kKeyColour + p.emissive;
}

/// Linear light to a display: a filmic shoulder, then sRGB's curve.
float displayed(float light)
{
    const float x = light * 0.7f, film = x * (2.51f * x + 0.03f) / (x * (2.43f * x + 0.59f) + 0.14f);
    const float v = std::clamp(film, 0.0f, 1.0f);
    return v <= 0.0031308f ? 12.92f * v : 1.055f * std::pow(v, 1 / 2.4f) - 0.055f;
}

/// Every pixel four times, rows shared over the machine's threads.
Picture draw(int side, const std::function<Vec(float x, float y)>& colour)
{
    Picture picture{side, side, 4, std::vector<float>(std::size_t(side) * side * 4, 1.0f)};
    const auto rows = [&](int first, int step) {
        for (int y = first; y < side; y += step)
            for (int x = 0; x < side; ++x) {
                Vec sum{};
                for (const auto& [dx, dy] :
                     {std::pair(0.375f, 0.125f), {0.875f, 0.375f}, {0.125f, 0.625f}, {0.625f, 0.875f}}) {
                    const Vec light = colour((float(x) + dx) / float(side), (float(y) + dy) / float(side));
                    for (int c = 0; c < 3; ++c)
                        sum[c] += displayed(light[c]) / 4;
                }
                std::copy(sum.begin(), sum.end(), &picture.values[(std::size_t(y) * side + x) * 4]);
            }
    };
    const int count = int(std::max(1u, std::thread::hardware_concurrency()));
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back(rows, i, count);
    for (std::thread& thread : threads)
        thread.join();
    return picture;
}

/// A ball whose surface the height displaces, and rays that find it.
class Ball
{
public:
    Ball(const SurfaceMaps& maps, float relief, int tiles)
        : m_maps(maps), m_relief(maps.hasHeight() ? relief : 0), m_tiles(tiles)
    {
    }

    /// Where the ray meets the surface first, or false.
    bool meet(const Vec& from, const Vec& towards, Vec& place) const
    {
        const float outer = 1 + m_relief, b = dot(from, towards), c = dot(from, from) - outer * outer;
        const float root = b * b - c;
        if (root <= 0)
            return false;
        const float enter = -b - std::sqrt(root), leave = -b + std::sqrt(root);
        const float inside = b * b - (dot(from, from) - 1);
        const float end = inside > 0 ? -b - std::sqrt(inside) + 1e-4f : leave;
        float last = enter;
        const int steps = m_relief > 0 ? 64 : 1;
        for (int i = 1; i <= steps; ++i) {
            const float t = enter + (end - enter) * float(i) / float(steps);
            if (above(from + towards * t) > 0) {
                last = t;
                continue;
            }
            float low = last, high = t;
            for (int j = 0; j < 8; ++j) {
                const float middle = (low + high) / 2;
                (above(from + towards * middle) > 0 ? low : high) = middle;
            }
            place = from + towards * high;
            return true;
        }
        place = from + towards * end;
        return inside > 0;
    }

    /// What of the key lamp arrives: 0 to 1.
    float lit(const Vec& place) const
    {
        if (m_relief == 0)
            return 1;
        const Vec key = unit(kKey);
        float open = 1;
        const float reach = 5 * m_relief;
        for (int i = 1; i <= 40; ++i) {
            const float t = reach * float(i) / 40;
            const float height = above(place + key * t);
            if (height > m_relief)
                break;
            open = std::min(open, 0.5f + height / (0.12f * t + 0.002f));
            if (open <= 0)
                return 0;
        }
        return std::clamp(open, 0.0f, 1.0f);
    }

    std::array<float, 2> textureOf(const Vec& place) const
    {
        const Vec n = unit(place);
        const float u = std::atan2(n[0], n[2]) / (2 * kPi) * float(m_tiles);
        const float v = std::acos(std::clamp(n[1], -1.0f, 1.0f)) / kPi * float(m_tiles) / 2;
        return {u, v};
    }

private:
    float above(const Vec& place) const
    {
        const auto [u, v] = textureOf(place);
        return std::sqrt(dot(place, place)) - 1 - (m_relief > 0 ? m_relief * m_maps.heightAt(u, v) : 0);
    }

    const SurfaceMaps& m_maps;
    float m_relief;
    int m_tiles;
};

Vec turned(const Vec& normal, const Vec& x, const Vec& y, const Vec& z)
{
    return unit(x * normal[0] + y * normal[1] + z * normal[2]);
}

} // namespace

SurfaceMaps::SurfaceMaps(const Results& results, const std::string& graph, const SamplePackage& package)
{
    const std::map<std::string, const Picture**> wanted = {
        {"basecolor", &m_baseColour}, {"normal", &m_normal}, {"roughness", &m_roughness},
        {"metallic", &m_metallic},    {"height", &m_height}, {"ambientocclusion", &m_occlusion},
        {"emissive", &m_emissive}};
    for (const PackageOutput& output : package.outputs()) {
        const auto picture = results.pictures.find(graph + "/" + output.identifier);
        const auto place = wanted.find(output.usage);
        if (output.graph == graph && picture != results.pictures.end() && place != wanted.end() &&
            !*place->second)
            *place->second = &picture->second;
    }
}

/// Where four neighbours of a place lie, and what they count.
struct SurfaceMaps::Taps
{
    std::size_t index[4];
    float weight[4];

    Taps(const Picture& picture, float u, float v)
    {
        const float x = u * float(picture.width) - 0.5f, y = v * float(picture.height) - 0.5f;
        const float left = std::floor(x), top = std::floor(y), a = x - left, b = y - top;
        const auto around = [](int i, int size) {
            return unsigned(i < 0 ? i % size + size : i) % unsigned(size);
        };
        const unsigned x0 = around(int(left), picture.width), x1 = around(int(left) + 1, picture.width);
        const unsigned y0 = around(int(top), picture.height), y1 = around(int(top) + 1, picture.height);
        const auto at = [&](unsigned px, unsigned py) {
            return (std::size_t(py) * picture.width + px) * picture.channels;
        };
        const std::size_t places[4] = {at(x0, y0), at(x1, y0), at(x0, y1), at(x1, y1)};
        const float weights[4] = {(1 - a) * (1 - b), a * (1 - b), (1 - a) * b, a * b};
        std::copy_n(places, 4, index);
        std::copy_n(weights, 4, weight);
    }
    float read(const Picture& picture, int channel) const
    {
        const float* values = picture.values.data() + channel;
        return values[index[0]] * weight[0] + values[index[1]] * weight[1] + values[index[2]] * weight[2] +
               values[index[3]] * weight[3];
    }
};

Vec SurfaceMaps::colourAt(const Picture& picture, float u, float v)
{
    const Taps taps(picture, u, v);
    if (picture.channels > 1)
        return {taps.read(picture, 0), taps.read(picture, 1), taps.read(picture, 2)};
    const float grey = taps.read(picture, 0);
    return {grey, grey, grey};
}

float SurfaceMaps::greyAt(const Picture* picture, float u, float v, float missing)
{
    return picture ? Taps(*picture, u, v).read(*picture, 0) : missing;
}

SurfaceMaps::Point SurfaceMaps::at(float u, float v) const
{
    Point point;
    const auto linear = [](Vec colour) {
        for (float& c : colour)
            c = c <= 0.04045f ? c / 12.92f : std::pow((c + 0.055f) / 1.055f, 2.4f);
        return colour;
    };
    point.baseColour = linear(colourAt(*m_baseColour, u, v));
    const Vec n = colourAt(*m_normal, u, v);
    point.normal = unit({n[0] * 2 - 1, 1 - n[1] * 2, std::max(n[2] * 2 - 1, 0.05f)});
    point.roughness = greyAt(m_roughness, u, v, 0.5f);
    point.metallic = greyAt(m_metallic, u, v, 0);
    point.occlusion = greyAt(m_occlusion, u, v, 1);
    point.emissive = m_emissive ? linear(colourAt(*m_emissive, u, v)) : Vec{};
    return point;
}

float SurfaceMaps::heightAt(float u, float v) const
{
    return greyAt(m_height, u, v, 0);
}

Picture drawMaterialBall(const SurfaceMaps& maps, int side, float relief, int tiles)
{
    const Irradiance irradiance;
    const Ball ball(maps, relief, tiles);
    const Vec eye = {0, 0, 4.6f};
    return draw(side, [&](float px, float py) {
        const Vec ray = unit({(px - 0.5f) * 0.53f, (0.5f - py) * 0.53f, -1});
        const float vignette = 1 - 0.5f * ((px - 0.5f) * (px - 0.5f) + (py - 0.5f) * (py - 0.5f));
        Vec place;
        if (!ball.meet(eye, ray, place))
            return Vec{0.085f, 0.088f, 0.095f} * vignette;
        const auto [u, v] = ball.textureOf(place);
        const SurfaceMaps::Point point = maps.at(u, v);
        const Vec z = unit(place), x = unit(cross({0, 1, 0}, z)), y = cross(z, x);
        return shade(point, turned(point.normal, x, y, z), ray * -1.0f, ball.lit(place), irradiance);
    });
}

Picture drawFlatLit(const SurfaceMaps& maps, int side, float relief, int tiles)
{
    const Irradiance irradiance;
    const Vec key = unit(kKey);
    return draw(side, [&](float px, float py) {
        const float u = px * float(tiles), v = py * float(tiles);
        const SurfaceMaps::Point point = maps.at(u, v);
        float open = 1;
        for (int i = 1; maps.hasHeight() && i <= 32; ++i) {
            const float t = 4 * relief * float(i) / 32; // along the plane, in pictures
            const float ray = maps.heightAt(u, v) * relief + t * key[2];
            open = std::min(open, 0.5f + (ray - relief * maps.heightAt(u + key[0] * t, v - key[1] * t)) /
                                             (0.12f * t + 0.001f));
        }
        return shade(point, unit(point.normal), {0, 0, 1}, std::clamp(open, 0.0f, 1.0f), irradiance);
    });
}

} // namespace vellor::samples
