#include "platform/engines/cpu/chain.h"

#include "platform/engines/cpu/pixelkernels.h"
#include "platform/engines/cpu/ticks.h"

#include <algorithm>

namespace vellor::cpu {

/// Where the planes' rows are for one tile.
struct Chain::Pointers
{
    std::vector<const float*> operands; // as in operands_
    std::vector<const void*> ahead;     // as in ahead_, for the tile that comes next
};

void Chain::run(int y0, int y1, float* slots, std::uint64_t* ticks) const
{
    Pointers pointers{std::vector<const float*>(operands_.size()), {}};
    for (int y = y0; y < y1; ++y)
        for (int x = 0; x < width_ && !monitor_.stopped(); x += tileWidth_) {
            const bool last = x + tileWidth_ >= width_;
            pointAhead(last ? 0 : x + tileWidth_, last ? std::min(y + 1, height_ - 1) : y, pointers);
            runTile(x, std::min(tileWidth_, width_ - x), y, slots, pointers, ticks);
        }
    endStreaming();
}

void Chain::pointAhead(int x, int y, Pointers& pointers) const
{
    pointers.ahead.clear();
    for (const Place& place : ahead_)
        pointers.ahead.push_back(address(place, x, y, nullptr));
}

void Chain::runTile(int x, int count, int y, float* slots, Pointers& pointers, std::uint64_t* ticks) const
{
    nodes::RowJob job;
    job.x = x;
    job.y = y;
    job.count = count;
    job.width = width_;
    job.height = height_;
    job.stop = &monitor_.stop();
    std::uint64_t before = ticks ? ticksNow() : 0;
    for (const Call& call : calls_) {
        const std::size_t end = call.firstOperand + call.operandPlanes;
        for (std::size_t i = call.firstOperand; i < end; ++i)
            pointers.operands[i] = address(operands_[i], x, y, slots);
        job.state = call.state.get();
        job.channels = call.channels;
        job.operands = pointers.operands.data() + call.firstOperand;
        for (int c = 0; c < nodes::kMaxChannels; ++c)
            job.result[c] = address(call.result[c], x, y, slots);
        if (call.pack) {
            call.pack->write(x, y, count, job.operands, call.channels, aheadOf(call, 0, count, pointers));
        } else {
            job.pastCaches = call.puts;
            if (call.row)
                call.row(job);
            if (call.whole[0].base)
                streamResult(call, job, pointers);
        }
        if (ticks) {
            const std::uint64_t now = ticksNow();
            *ticks++ += now - before;
            before = now;
        }
    }
}

void Chain::streamResult(const Call& call, const nodes::RowJob& job, const Pointers& pointers) const
{
    for (int c = 0; c < call.channels; ++c)
        streamBytes(call.whole[c].base + job.y * call.whole[c].stride + job.x, job.result[c],
                    sizeof(float) * static_cast<std::size_t>(job.count),
                    aheadOf(call, c, job.count, pointers));
}

/// What is fetched while channel c of the call's result is streamed.
Ahead Chain::aheadOf(const Call& call, int c, int count, const Pointers& pointers) const
{
    return {pointers.ahead.data() + call.ahead[c], call.ahead[c + 1] - call.ahead[c],
            sizeof(float) * static_cast<std::size_t>(count)};
}

float* Chain::address(const Place& place, int x, int y, float* slots) const
{
    if (place.base)
        return place.base + y * place.stride + x;
    return place.slot < 0 ? nullptr : slots + static_cast<std::size_t>(place.slot) * slotStride();
}

} // namespace vellor::cpu
