#pragma once

// What a node kind is: its declaration, read by the cooker, the documentation, the engine and the tests, and
// its kernel.
//
// One kind is one file in the folder of its category. It declares operands (images that come in by links) and
// parameters, and gives a kernel of one of two shapes:
//
//  - A *point* kernel computes a row of pixels from the same pixels of its operands. The engine fuses chains
//  of point
//    kernels and runs them over strips that stay in cache.
//  - An *area* kernel reads whole operands and writes bands of rows of its result, in one or more passes.
//  Passes before
//    the last write scratch images that later passes read.
//
// Pixels are floats in planes: one plane for grey, four (R, G, B, A, not premultiplied) for colour. 0 to 1 is
// the nominal range, values outside are kept. x runs right, y down; pixel (x, y) has its centre at ((x + 0.5)
// / width, (y + 0.5) / height). Pictures wrap around at their edges unless a parameter says otherwise.
//
// The same inputs give the same bytes for every instruction set, strip size and number of threads: kernels
// use no fused multiply-add, no reciprocal estimates and no library transcendental, only math.h of this
// folder.

#include "platform/program/program.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace vellor::nodes {

constexpr int kMaxChannels = 4;

enum class ParameterType : std::uint8_t
{
    Float,
    Float2,
    Float3,
    Float4,
    Int,
    Int2,
    Int3,
    Int4,
    Bool,         // an Int of 0 or 1
    Choice,       // an Int: index into choices
    Text,         // blob (UTF-8) or text input
    Curve,        // blob: see curve.h
    Gradient,     // blob: see gradient.h
    PixelProgram, // value program with perPixel set, result Float or Float4 by the node's channels
    ImageInput,   // image input of the package
    Picture       // blob: see pictureblob.h
};

struct ParameterDeclaration
{
    const char* name;
    ParameterType type;
    std::array<double, 4> defaultValue{}; // by component
    double minimum = 0.0,
           maximum = 1.0; // meaningful range, for documentation and widgets; kernels clamp what would hurt
    const char* text;     // one sentence for the documentation
    std::vector<const char*> choices{}; // type Choice
};

/// Which images an operand takes. The cooker converts what doesn't fit, so kernels get what they declare.
enum class OperandChannels : std::uint8_t
{
    Grey,
    Colour,
    Any,   // as it comes
    Result // as many channels as the node's result
};

struct OperandDeclaration
{
    const char* name;
    OperandChannels channels;
    bool required;
    const char* text;
};

/// How many channels the result has.
enum class ResultChannels : std::uint8_t
{
    Grey,
    Colour,
    FromOperands, // colour if any image connected to an operand declared Result is colour, else grey
    Chosen        // the author says: attribute "channels" of the node, grey by default
};

/// Parameter values of one evaluation, in the order of the declaration.
struct ParameterValue
{
    std::array<float, 4> f{};           // Float types
    std::array<std::int32_t, 4> i{};    // Int types, Bool, Choice
    std::u32string_view text;           // Text
    const std::uint8_t* blob = nullptr; // Curve, Gradient, Picture; null: the default shape, no picture
    std::size_t blobSize = 0;
    const program::ValueProgram* program = nullptr; // PixelProgram
};

/// A picture that kernels read. Planes are aligned to 64 bytes, stride counts floats and keeps that
/// alignment.
struct ImageView
{
    std::array<const float*, kMaxChannels> planes{};
    std::ptrdiff_t stride = 0;
    int width = 0, height = 0;
    int channels = 0; // 0: not connected
};

struct MutableImage
{
    std::array<float*, kMaxChannels> planes{};
    std::ptrdiff_t stride = 0;
    int width = 0, height = 0;
    int channels = 0;
};

/// What a kernel may know ahead of the pixels.
struct Setup
{
    const ParameterValue* parameters = nullptr;
    int width = 0, height = 0, channels = 1; // of the result
    std::int32_t seed = 0;
    const ImageView* operands = nullptr; // sizes and channels; for point kernels the planes are null
    std::size_t operandCount = 0;
    // Values of the package's inputs, for per-pixel programs: word c of input i is inputs[4 * i + c].
    const std::uint32_t* inputWords = nullptr;
    // The picture bound to the node's ImageInput parameter, in planes; channels 0 when the host gave none.
    ImageView image;
    // Becomes true when nobody wants the result any more: a prepare that may take milliseconds looks at it
    // now and then and returns early, with whatever state. Null: never.
    const std::atomic<bool>* stop = nullptr;

    bool stopped() const { return stop && stop->load(std::memory_order_relaxed); }
};

/// What a kernel worked out once for all pixels: tables, weights, outlines. Read-only afterwards, shared by
/// threads.
struct State
{
    virtual ~State() = default;
};

/// One row of pixels of a point kernel: pixels x to x + count - 1 of row y.
/// Row pointers are aligned to 64 bytes and padded, so that whole vectors may be read and written beyond
/// count.
struct RowJob
{
    const State* state = nullptr;
    int x = 0, y = 0, count = 0;
    int width = 0, height = 0, channels = 1;
    // operands[operand * kMaxChannels + channel]; null for operands that aren't connected
    const float* const* operands = nullptr;
    std::array<float*, kMaxChannels> result{};
    bool pastCaches = false; // for kernels that put their results: where these go
    // As in Setup: for kernels that may take milliseconds for a row. The result may be left unfinished.
    const std::atomic<bool>* stop = nullptr;

    bool stopped() const { return stop && stop->load(std::memory_order_relaxed); }
};

/// A point kernel.
struct RowKernel
{
    constexpr RowKernel(void (*row)(const RowJob&) = nullptr, bool putsResults = false)
        : run(row), puts(putsResults)
    {
    }
    void operator()(const RowJob& job) const { run(job); }
    explicit operator bool() const { return run != nullptr; }

    void (*run)(const RowJob&);
    // Pixels of the result are put through ResultRow, once each, and not read: RowJob::pastCaches may be set.
    bool puts;
};

/// Rows y0 to y1 - 1 of one pass of an area kernel. For passes before the last, result is scratch[pass].
struct AreaJob
{
    const State* state = nullptr;
    int pass = 0, y0 = 0, y1 = 0;
    const ImageView* operands = nullptr;
    const ImageView* scratch = nullptr; // results of the passes before this one
    MutableImage result;
    // As in RowJob.
    const std::atomic<bool>* stop = nullptr;

    bool stopped() const { return stop && stop->load(std::memory_order_relaxed); }
};

/// Shape of the scratch image that a pass before the last writes.
struct ScratchShape
{
    int width = 0, height = 0, channels = 1;
};

/// Whether the result depends on the seed of the evaluation.
enum class Chance : std::uint8_t
{
    None,
    Seeded
};

struct NodeDeclaration
{
    const char* name;     // stable: part of authoring files and compiled packages
    const char* label;    // for people
    const char* category; // "Sources", "Patterns", "Tone", "Combining", "Neighbourhood", "Geometry",
                          // "Surface", "Programs"
    const char* text;     // what it does, for the documentation; names the source of its method
    ResultChannels result;
    Chance chance;
    std::vector<OperandDeclaration> operands;
    std::vector<ParameterDeclaration> parameters;

    // May return null where a kernel needs no state. May throw std::bad_alloc. Runs on any thread.
    std::unique_ptr<State> (*prepare)(const Setup&) = nullptr;
    // Exactly one of the two is set. Either may throw std::bad_alloc.
    RowKernel row;
    void (*area)(const AreaJob&) = nullptr;
    // Area kernels of more than one pass: the scratch images, one for each pass but the last. Null: one pass.
    std::vector<ScratchShape> (*scratch)(const State*, const Setup&) = nullptr;
    // Area kernels that work on some rows at a time: bands should have a multiple of these, and may have any.
    int rowsTogether = 1;

    std::uint32_t id() const { return program::stableId(name); }
};

/// All kinds, in a fixed order that carries no meaning.
const std::vector<const NodeDeclaration*>& allNodes();
/// The kind with this name or id, or null. Any thread.
const NodeDeclaration* findNode(std::string_view name);
const NodeDeclaration* findNode(std::uint32_t id);

} // namespace vellor::nodes
