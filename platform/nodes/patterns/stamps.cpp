#include "platform/nodes/patterns/stamps.h"

#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

enum Operand
{
    kBackground,
    kFirstPicture,
    kScaleMap = kFirstPicture + kStampPictures,
    kRotationMap,
    kVectorMap,
    kMaskMap,
    kValueMap
};

enum Parameter
{
    kShape,
    kSides,
    kRatio,
    kSoftness,
    kSize,
    kSizeVariation,
    kStretchVariation,
    kRotation,
    kRotationVariation,
    kValueVariation,
    kColourVariation,
    kShare,
    kScaleAmount,
    kRotationAmount,
    kVectorAmount,
    kValueAmount,
    kBlend,
    kOrder,
    kOpaque,
    kBackgroundColour,
    kOutput
};

/// Numbers in the order of the floats.
std::uint32_t ordered(float value)
{
    const std::uint32_t bits = scalar::bitsOf(value + 0.0f);
    return (bits & 0x80000000u) != 0 ? ~bits : bits | 0x80000000u;
}

/// Turns hues by `hue` turns around grey, then scales the distance from grey, then everything.
ColourMatrix colourMatrix(float hue, float saturation, float lightness)
{
    constexpr float kLuminance[3] = {0.2126f, 0.7152f, 0.0722f};
    const scalar::SinCos turn = scalar::sinCosOfTurns(hue);
    const float middle = (1.0f - turn.cosine) / 3.0f, side = turn.sine * 0.57735027f;
    const float rotated[3][3] = {{turn.cosine + middle, middle - side, middle + side},
                                 {middle + side, turn.cosine + middle, middle - side},
                                 {middle - side, middle + side, turn.cosine + middle}};
    ColourMatrix result;
    for (int column = 0; column < 3; ++column) {
        float grey = 0.0f;
        for (int row = 0; row < 3; ++row)
            grey += kLuminance[row] * rotated[row][column];
        for (int row = 0; row < 3; ++row)
            result[row * 3 + column] = (grey + (rotated[row][column] - grey) * saturation) * lightness;
    }
    return result;
}

/// The halved picture whose pixels come closest to a pixel of the result.
int levelOf(const ImageView& picture, float halfX, float halfY)
{
    const float acrossX = static_cast<float>(picture.width) / (2.0f * halfX);
    const float acrossY = static_cast<float>(picture.height) / (2.0f * halfY);
    const float texels = std::max(scalar::sqrtOf(acrossX * acrossY), 0.5f * std::max(acrossX, acrossY));
    const int level = static_cast<int>(scalar::log2Of(std::max(texels, 1.0f)) + 0.5f);
    int most = 0;
    while (most < 14 && (std::min(picture.width, picture.height) >> (most + 1)) > 0)
        ++most;
    return std::min(level, most);
}

} // namespace

int StampState::scratchOf(int picture, int level) const
{
    int first = 0;
    for (int i = 0; i < picture; ++i)
        first += levels[i];
    return first + level - 1;
}

float mapAt(const ImageView& map, int channel, float u, float v, float none)
{
    if (map.channels == 0)
        return none;
    const float x = (u - scalar::floorOf(u)) * static_cast<float>(map.width) - 0.5f;
    const float y = (v - scalar::floorOf(v)) * static_cast<float>(map.height) - 0.5f;
    const float left = scalar::floorOf(x), top = scalar::floorOf(y);
    const int x0 = wrapped(static_cast<int>(left), map.width), x1 = wrapped(x0 + 1, map.width);
    const float* upper = rowOf(map, channel, static_cast<int>(top));
    const float* lower = rowOf(map, channel, static_cast<int>(top) + 1);
    const float above = scalar::lerpOf(upper[x0], upper[x1], x - left);
    const float below = scalar::lerpOf(lower[x0], lower[x1], x - left);
    return held(scalar::lerpOf(above, below, y - top), -1e6f, 1e6f);
}

StampMaker::StampMaker(const Setup& setup, const ParameterValue* parameters, float unit, float cellX,
                       float cellY, float rows, float columns)
    : m_setup(setup), m_parameters(parameters), m_unit(unit), m_cellX(cellX), m_cellY(cellY), m_rows(rows),
      m_columns(columns), m_order(static_cast<StampOrder>(held(parameters[kOrder].i[0], 0, 3))),
      m_state(std::make_unique<StampState>())
{
    const ParameterValue* p = parameters;
    m_state->width = setup.width;
    m_state->height = setup.height;
    m_state->shape = makeShape(p[kShape].i[0], p[kSides].i[0], p[kRatio].f[0], p[kSoftness].f[0]);
    m_state->blend = static_cast<StampBlend>(held(p[kBlend].i[0], 0, 2));
    m_state->output = static_cast<StampOutput>(held(p[kOutput].i[0], 0, 4));
    m_state->opaque = held(p[kOpaque].f[0], 1e-4f, 1.0f);
    for (int c = 0; c < kMaxChannels; ++c)
        m_state->background[c] = held(p[kBackgroundColour].f[c], -1e6f, 1e6f);
    for (int i = 0; i < kStampPictures; ++i)
        if (setup.operands[kFirstPicture + i].channels > 0)
            m_state->operand[m_state->pictures++] = kFirstPicture + i;
}

void StampMaker::add(float x, float y, float row, float column, std::uint32_t hash)
{
    if (m_setup.stopped())
        return;
    const ParameterValue* p = m_parameters;
    const ImageView* maps = m_setup.operands;
    Stamp stamp;
    stamp.hash = hash;
    const auto random = [&hash] { return scalar::unitOf(hash = scalar::nextHash(hash)); };
    stamp.random = random();
    const float chance = random();
    const float width = static_cast<float>(m_setup.width), height = static_cast<float>(m_setup.height);
    const float u = x / width, v = y / height;
    if (chance >= held(p[kShare].f[0], 0.0f, 1.0f) * mapAt(maps[kMaskMap], 0, u, v, 1.0f))
        return;
    const float moved = held(p[kVectorAmount].f[0], -16.0f, 16.0f);
    x += held((mapAt(maps[kVectorMap], 0, u, v, 0.5f) - 0.5f) * moved, -16.0f, 16.0f) * m_cellX;
    y += held((mapAt(maps[kVectorMap], 1, u, v, 0.5f) - 0.5f) * moved, -16.0f, 16.0f) * m_cellY;
    const float aroundX = scalar::floorOf(x / width), aroundY = scalar::floorOf(y / height);
    stamp.x = x - aroundX * width;
    stamp.y = y - aroundY * height;
    stamp.row = row - aroundY * m_rows;
    stamp.column = column - aroundX * m_columns;
    float size = 1.0f - random() * held(p[kSizeVariation].f[0], 0.0f, 1.0f);
    const float scale = mapAt(maps[kScaleMap], 0, u, v, 1.0f) - 1.0f;
    size *= held(1.0f + scale * held(p[kScaleAmount].f[0], 0.0f, 1.0f), 0.0f, 1.0f);
    const float stretch = (random() * 2.0f - 1.0f) * held(p[kStretchVariation].f[0], 0.0f, 0.95f);
    const float turns = held(p[kRotation].f[0], -1e3f, 1e3f) +
                        (random() - 0.5f) * held(p[kRotationVariation].f[0], 0.0f, 1.0f) +
                        mapAt(maps[kRotationMap], 0, u, v, 0.0f) * held(p[kRotationAmount].f[0], -8.0f, 8.0f);
    const float darker = random() * held(p[kValueVariation].f[0], 0.0f, 1.0f);
    const float mapped =
        1.0f + (mapAt(maps[kValueMap], 0, u, v, 1.0f) - 1.0f) * held(p[kValueAmount].f[0], 0.0f, 1.0f);
    stamp.value = (1.0f - darker) * mapped;
    stamp.picture =
        static_cast<std::uint8_t>(static_cast<int>(random() * static_cast<float>(m_state->pictures)));
    std::array<float, 3> colour;
    for (float& c : colour)
        c = random() * 2.0f - 1.0f;
    const float half = 0.5f * m_unit * size;
    stamp.halfX = held(p[kSize].f[0], 0.0f, 8.0f) * half * (stretch < 0.0f ? 1.0f + stretch : 1.0f);
    stamp.halfY = held(p[kSize].f[1], 0.0f, 8.0f) * half * (stretch > 0.0f ? 1.0f - stretch : 1.0f);
    if (stamp.halfX < 1e-3f || stamp.halfY < 1e-3f || m_state->stamps.size() >= kMostStamps ||
        m_layers > kMostLayers)
        return;
    m_layers += 4.0 * stamp.halfX * stamp.halfY / (static_cast<double>(width) * height);
    const scalar::SinCos turn = scalar::sinCosOfTurns(held(turns, -1e4f, 1e4f));
    stamp.cosine = turn.cosine;
    stamp.sine = turn.sine;
    if (m_state->pictures > 0) {
        const int level = levelOf(maps[m_state->operand[stamp.picture]], stamp.halfX, stamp.halfY);
        stamp.level = static_cast<std::uint8_t>(level);
        m_state->levels[stamp.picture] = std::max(m_state->levels[stamp.picture], level);
    }
    const std::array<float, 4>& vary = p[kColourVariation].f;
    if (m_setup.channels > 1 && (vary[0] != 0.0f || vary[1] != 0.0f || vary[2] != 0.0f))
        m_state->colours.push_back(colourMatrix(0.5f * colour[0] * held(vary[0], 0.0f, 1.0f),
                                                1.0f + colour[1] * held(vary[1], 0.0f, 1.0f),
                                                1.0f + colour[2] * held(vary[2], 0.0f, 1.0f)));
    m_state->stamps.push_back(stamp);
}

void StampMaker::addCopies(std::uint32_t index, std::vector<std::pair<std::uint64_t, StampCopy>>& keyed) const
{
    const Stamp& stamp = m_state->stamps[index];
    const float width = static_cast<float>(m_setup.width), height = static_cast<float>(m_setup.height);
    // Half the upright box around the turned one, and a pixel for its smooth edge.
    const float halfX = drawnHalf(stamp.halfX), halfY = drawnHalf(stamp.halfY);
    const float reachX = scalar::absOf(stamp.cosine) * halfX + scalar::absOf(stamp.sine) * halfY + 1.0f;
    const float reachY = scalar::absOf(stamp.sine) * halfX + scalar::absOf(stamp.cosine) * halfY + 1.0f;
    const auto around = [](float position, float reach, float size, float& first, float& last) {
        first = -scalar::floorOf((position + reach) / size);
        last = scalar::floorOf((size - position + reach) / size);
    };
    float firstX, lastX, firstY, lastY;
    around(stamp.x, reachX, width, firstX, lastX);
    around(stamp.y, reachY, height, firstY, lastY);
    for (float y = firstY; y <= lastY; y += 1.0f) {
        for (float x = firstX; x <= lastX; x += 1.0f) {
            std::uint32_t first = 0, second = stamp.hash;
            switch (m_order) {
            case StampOrder::Rows:
                first = ordered(stamp.row + y * m_rows);
                second = ordered(stamp.column + x * m_columns);
                break;
            case StampOrder::Random:
                first = scalar::mixBits(stamp.hash);
                break;
            case StampOrder::Size:
                first = ~ordered(stamp.halfX * stamp.halfY);
                break;
            case StampOrder::Value:
                first = ordered(stamp.value);
                break;
            }
            keyed.push_back(
                {std::uint64_t(first) << 32 | second, {index, stamp.x + x * width, stamp.y + y * height}});
        }
    }
}

/// Piece by piece: a sort of everything at once can't be stopped.
void StampMaker::sortCopies(std::vector<std::pair<std::uint64_t, StampCopy>>& keyed) const
{
    constexpr std::size_t kPiece = 1 << 14;
    const auto before = [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first < b.first : a.second.stamp < b.second.stamp;
    };
    const auto at = [&](std::size_t index) {
        return keyed.begin() + static_cast<std::ptrdiff_t>(std::min(index, keyed.size()));
    };
    for (std::size_t first = 0; first < keyed.size() && !m_setup.stopped(); first += kPiece)
        std::stable_sort(at(first), at(first + kPiece), before);
    for (std::size_t piece = kPiece; piece < keyed.size(); piece *= 2)
        for (std::size_t first = 0; first + piece < keyed.size() && !m_setup.stopped(); first += 2 * piece)
            std::inplace_merge(at(first), at(first + piece), at(first + 2 * piece), before);
}

std::unique_ptr<StampState> StampMaker::finish()
{
    std::vector<std::pair<std::uint64_t, StampCopy>> keyed;
    keyed.reserve(m_state->stamps.size() + m_state->stamps.size() / 8);
    for (std::size_t i = 0; i < m_state->stamps.size() && !m_setup.stopped(); ++i)
        addCopies(static_cast<std::uint32_t>(i), keyed);
    sortCopies(keyed);
    m_state->copies.reserve(keyed.size());
    for (const auto& copy : keyed)
        m_state->copies.push_back(copy.second);
    if (!m_setup.stopped())
        bin();
    return std::move(m_state);
}

void StampMaker::bin()
{
    StampState& state = *m_state;
    const int bins = (m_setup.height + kStampRows - 1) / kStampRows;
    const auto binsOf = [&](const StampCopy& copy) {
        const Stamp& stamp = state.stamps[copy.stamp];
        const float reach = scalar::absOf(stamp.sine) * drawnHalf(stamp.halfX) +
                            scalar::absOf(stamp.cosine) * drawnHalf(stamp.halfY) + 1.5f;
        const float last = static_cast<float>(m_setup.height) - 1.0f;
        const auto row = [&](float y) { return static_cast<int>(held(y, 0.0f, last)) / kStampRows; };
        return std::pair<int, int>{row(copy.y - reach), row(copy.y + reach)};
    };
    state.starts.assign(static_cast<std::size_t>(bins) + 1, 0);
    for (const StampCopy& copy : state.copies) {
        const auto [first, last] = binsOf(copy);
        for (int bin = first; bin <= last; ++bin)
            ++state.starts[bin + 1];
    }
    for (int bin = 0; bin < bins; ++bin)
        state.starts[bin + 1] += state.starts[bin];
    state.entries.resize(state.starts.back());
    std::vector<std::uint32_t> next(state.starts.begin(), state.starts.end() - 1);
    for (std::size_t i = 0; i < state.copies.size(); ++i) {
        const auto [first, last] = binsOf(state.copies[i]);
        for (int bin = first; bin <= last; ++bin)
            state.entries[next[bin]++] = static_cast<std::uint32_t>(i);
    }
}

std::vector<ScratchShape> stampScratch(const State* state, const Setup& setup)
{
    const auto& stamps = static_cast<const StampState&>(*state);
    std::vector<ScratchShape> shapes;
    for (int picture = 0; picture < stamps.pictures; ++picture) {
        const ImageView& view = setup.operands[stamps.operand[picture]];
        for (int level = 1; level <= stamps.levels[picture]; ++level)
            shapes.push_back({view.width >> level, view.height >> level, view.channels});
    }
    return shapes;
}

std::vector<OperandDeclaration> stampOperands()
{
    return {
        {"background", OperandChannels::Result, false,
         "What stamps are laid on; else the background colour."},
        {"picture", OperandChannels::Result, false, "The stamp; without any, a shape is stamped."},
        {"picture2", OperandChannels::Result, false, "Another stamp; chance chooses between them."},
        {"picture3", OperandChannels::Result, false, "A third stamp."},
        {"picture4", OperandChannels::Result, false, "A fourth stamp."},
        {"scalemap", OperandChannels::Grey, false, "How large stamps are, white for full size."},
        {"rotationmap", OperandChannels::Grey, false, "How far stamps are turned."},
        {"vectormap", OperandChannels::Colour, false,
         "Where stamps are moved: red to the right, green down, a half for not at all."},
        {"mask", OperandChannels::Grey, false, "The share of stamps that are drawn: none where it is black."},
        {"valuemap", OperandChannels::Grey, false, "How light stamps are."},
    };
}

std::vector<ParameterDeclaration> stampParameters(std::vector<ParameterDeclaration> own)
{
    using T = ParameterType;
    const std::vector<ParameterDeclaration> common = {
        {"shape",
         T::Choice,
         {0},
         0,
         9,
         "What is stamped where no picture is connected.",
         VELLOR_SHAPE_CHOICES},
        {"sides", T::Int, {6}, 3, 32, "Sides of the polygon, tips of the star."},
        {"ratio",
         T::Float,
         {0.4},
         0,
         1,
         "The box's corner radius, the star's inner radius, the ring's width or the capsule's radius, in "
         "shares of "
         "half the size."},
        {"softness", T::Float, {0.0}, 0, 1, "Width of the shape's soft edge, in shares of half the size."},
        {"size",
         T::Float2,
         {0.8, 0.8},
         0,
         8,
         "Width and height of stamps: in shares of a tile's shorter side, or, scattered freely, of the "
         "picture's "
         "shorter side."},
        {"sizevariation", T::Float, {0.0}, 0, 1, "How much smaller stamps are by chance."},
        {"stretchvariation", T::Float, {0.0}, 0, 0.95, "How much narrower or lower stamps are by chance."},
        {"rotation", T::Float, {0.0}, -1, 1, "Turns all stamps clockwise, in turns."},
        {"rotationvariation", T::Float, {0.0}, 0, 1, "How far stamps are turned by chance, in turns."},
        {"valuevariation", T::Float, {0.0}, 0, 1, "How much darker stamps are by chance."},
        {"colourvariation",
         T::Float3,
         {0, 0, 0},
         0,
         1,
         "How far hue, saturation and lightness vary by chance, in colour pictures."},
        {"share", T::Float, {1.0}, 0, 1, "The share of stamps that are drawn."},
        {"scaleamount", T::Float, {1.0}, 0, 1, "How much the scale map does."},
        {"rotationamount", T::Float, {1.0}, -8, 8, "How far white in the rotation map turns, in turns."},
        {"vectoramount",
         T::Float,
         {1.0},
         -16,
         16,
         "How far stamps move over the whole range of the vector map: in tiles, or, scattered freely, in "
         "shares of "
         "the picture."},
        {"valueamount", T::Float, {1.0}, 0, 1, "How much the value map does."},
        {"blend",
         T::Choice,
         {0},
         0,
         2,
         "Where stamps overlap: the lighter shows, they add up, or the later one covers the others.",
         {"max", "add", "over"}},
        {"order",
         T::Choice,
         {0},
         0,
         3,
         "Which of two stamps lies over the other: the lower right one, one by chance, the smaller or the "
         "lighter.",
         {"rows", "random", "size", "value"}},
        {"opaque",
         T::Float,
         {1.0},
         0,
         1,
         "With over, the grey from which on a grey picture covers fully: low for heights, 1 for masks."},
        {"backgroundcolour",
         T::Float4,
         {0, 0, 0, 1},
         0,
         1,
         "The colour between stamps where no background is connected; grey results take its red."},
        {"output",
         T::Choice,
         {0},
         0,
         4,
         "What to draw: the stamps; a mask that is white where one covers; a random grey for each; u and v "
         "are the "
         "position within a stamp. They belong together for equal parameters and operands.",
         {"picture", "mask", "random", "u", "v"}},
    };
    own.insert(own.end(), common.begin(), common.end());
    return own;
}

} // namespace vellor::nodes
