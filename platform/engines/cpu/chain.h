#pragma once

// A group of point nodes, compiled to a list of kernel calls that is run for one row after another.
//
// A row is cut into tiles that are short enough for the results of a whole group to stay in the second cache.
// Results that are read within the group alone go to slots: rows of one tile that nodes share as soon as the
// last reader is through. Results that become whole pictures are written, and read again, where they lie;
// large ones go past the caches, which saves the reading of what is overwritten. Some kernels put them there
// themselves, vector by vector. The results of others, and those that the group reads, lie in slots, too, and
// are copied from there; the same copying fetches what the next tile reads, line by line, so that memory is
// read and written at the same time: a tile's kernels only read, and its copying would only write.
//
// At both ends pictures may be packed: a host's pixels are unpacked to slots, and a result that only an
// output reads is packed from slots, tile by tile, so that none of their planes goes through memory.

#include "platform/engines/cpu/outputconverter.h"
#include "platform/engines/cpu/stagerunner.h"

#include <memory>
#include <optional>
#include <vector>

namespace vellor::cpu {

class Chain
{
public:
    /// `read` has the pictures that the stage reads, `written` those it writes.
    Chain(const StageContext& context, const Stage& stage, const Pictures& read, const Results& written);

    /// Floats of slots that each thread brings.
    std::size_t slotFloats() const { return static_cast<std::size_t>(slotCount_) * slotStride(); }
    /// Runs all kernels on rows y0 to y1 - 1, or less once the monitor is stopped. `slots` is aligned to 64
    /// bytes. Any thread; each with slots of its own. `ticks`, where given, grows for each node of the stage
    /// by the time that it takes, in the units of some clock.
    void run(int y0, int y1, float* slots, std::uint64_t* ticks = nullptr) const;

private:
    /// Where a plane's row is: in a picture, in a slot, or nowhere.
    struct Place
    {
        float* base = nullptr;     // of the picture's plane
        std::ptrdiff_t stride = 0; // of the picture
        int slot = -1;
    };
    struct Call
    {
        nodes::RowKernel row;
        std::optional<PixelWriter> pack; // instead of row
        std::unique_ptr<nodes::State> state;
        int channels = 1;
        std::size_t firstOperand = 0, operandPlanes = 0; // in operands_
        std::array<Place, nodes::kMaxChannels> result;
        std::array<Place, nodes::kMaxChannels> whole; // where results in slots go past the caches
        bool puts = false;                            // the kernel itself writes past the caches
        // Channel c of whole brings along ahead_ from ahead[c] up to ahead[c + 1]; packing, as channel 0.
        std::array<int, nodes::kMaxChannels + 1> ahead{};
    };
    class Compiler;

    std::size_t slotStride() const { return static_cast<std::size_t>(tileWidth_) + 16; }
    struct Pointers;

    void runTile(int x, int count, int y, float* slots, Pointers& pointers, std::uint64_t* ticks) const;
    void pointAhead(int x, int y, Pointers& pointers) const;
    Ahead aheadOf(const Call& call, int c, int count, const Pointers& pointers) const;
    void streamResult(const Call& call, const nodes::RowJob& job, const Pointers& pointers) const;
    float* address(const Place& place, int x, int y, float* slots) const;

    const Monitor& monitor_;
    std::vector<Call> calls_;
    std::vector<Place> operands_; // of all calls, kMaxChannels for each operand
    std::vector<Place> ahead_;    // planes to fetch a tile ahead; none where caches hold them
    int width_ = 0, height_ = 0, tileWidth_ = 0, slotCount_ = 0;
};

} // namespace vellor::cpu
