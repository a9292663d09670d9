#pragma once

// Pictures or shapes that are stamped all over a picture: where each lies and what it looks like, and which
// of them touch which rows.
//
// The kinds scatter and freescatter find the places; the rest is common to them: the parameters from
// stampParameters(), the operands from stampOperands(), and the drawing of stamping.cpp.

#include "platform/nodes/node.h"
#include "platform/nodes/shapes.h"

#include <array>
#include <cstdint>
#include <vector>

namespace vellor::nodes {

enum class StampBlend
{
    Max,
    Add,
    Over
};

enum class StampOrder
{
    Rows,
    Random,
    Size,
    Value
};

enum class StampOutput
{
    Picture,
    Mask,
    Random,
    U,
    V
};

/// Rows that share one list of stamps.
constexpr int kStampRows = 8;
constexpr int kStampPictures = 4;
/// Most stamps of one picture.
constexpr int kMostStamps = 1 << 18;
/// How often stamps may cover the whole picture, taken together: what comes after that is left out.
constexpr double kMostLayers = 4096.0;

/// One stamp. Lengths are pixels.
struct Stamp
{
    float x = 0.0f, y = 0.0f; // centre, within the picture
    float halfX = 1.0f, halfY = 1.0f;
    float cosine = 1.0f, sine = 0.0f; // of the clockwise turn
    float row = 0.0f, column = 0.0f;  // place in the order by rows
    float value = 1.0f, random = 0.0f;
    std::uint32_t hash = 0;
    std::uint8_t picture = 0, level = 0; // of halved pictures; 0 is the picture itself
};

/// Half the size that a stamp is drawn with: no less than a pixel shows, and what is smaller shows fainter.
/// Nothing is drawn more than half a pixel beyond it, in the stamp's own directions.
inline float drawnHalf(float half)
{
    return half < 0.5f ? 0.5f : half;
}

/// A stamp, or the same stamp once around the picture.
struct StampCopy
{
    std::uint32_t stamp = 0;
    float x = 0.0f, y = 0.0f; // centre, also beyond the picture
};

/// Rows 3 by 3 that a stamp's colour is multiplied by.
using ColourMatrix = std::array<float, 9>;

struct StampState : State
{
    int width = 0, height = 0;
    ShapeOutline shape;
    StampBlend blend = StampBlend::Max;
    StampOutput output = StampOutput::Picture;
    float opaque = 1.0f;
    std::array<float, 4> background{};
    std::vector<Stamp> stamps;
    std::vector<ColourMatrix> colours; // by stamp; empty: as the pictures are
    std::vector<StampCopy> copies;     // in the order in which they are drawn
    // Copies that touch rows kStampRows * i and on: entries starts[i] to starts[i + 1] - 1.
    std::vector<std::uint32_t> starts, entries;
    std::array<int, kStampPictures> operand{}; // of the pictures that are connected
    std::array<int, kStampPictures> levels{};  // halved pictures that stamps read
    int pictures = 0;                          // 0: the shape

    /// The scratch picture of a level above 0, which is also the pass that makes it.
    int scratchOf(int picture, int level) const;
};

/// The operands that both kinds have: background, pictures and maps.
std::vector<OperandDeclaration> stampOperands();
/// own, and then the parameters that both kinds have.
std::vector<ParameterDeclaration> stampParameters(std::vector<ParameterDeclaration> own);

/// Gives stamps their looks. One of these serves one evaluation.
class StampMaker
{
public:
    /// `parameters` are the common ones; `unit` is the length in pixels that sizes are shares of; moves by
    /// the vector map are shares of cellX and cellY.
    StampMaker(const Setup& setup, const ParameterValue* parameters, float unit, float cellX, float cellY,
               float rows, float columns);

    /// Adds a stamp at (x, y) in pixels, which may lie outside the picture, unless chance or the mask drop
    /// it. row and column are its place in the order by rows; once around the picture adds the rows and
    /// columns that the constructor was told.
    void add(float x, float y, float row, float column, std::uint32_t hash);
    /// Sorts all stamps by rows of the picture. Once the setup is stopped, add() and finish() do nothing
    /// more.
    std::unique_ptr<StampState> finish();

private:
    void addCopies(std::uint32_t stamp, std::vector<std::pair<std::uint64_t, StampCopy>>& keyed) const;
    void sortCopies(std::vector<std::pair<std::uint64_t, StampCopy>>& keyed) const;
    void bin();

    const Setup& m_setup;
    const ParameterValue* m_parameters;
    float m_unit, m_cellX, m_cellY, m_rows, m_columns;
    StampOrder m_order;
    double m_layers = 0.0; // how often the stamps so far cover the picture
    std::unique_ptr<StampState> m_state;
};

/// value of a map at a position in shares of its size, which goes around; `none` where it is not connected.
float mapAt(const ImageView& map, int channel, float u, float v, float none);

/// The scratch pictures of a StampState.
std::vector<ScratchShape> stampScratch(const State* state, const Setup& setup);

/// The kernel that draws a StampState.
void runStamps(const AreaJob& job);

} // namespace vellor::nodes
