#include "platform/engines/cpu/chain.h"

#include "platform/engines/cpu/pixelkernels.h"
#include "platform/engines/cpu/ticks.h"
#include "platform/nodes/selectivestate.h"

#include <algorithm>

namespace vellor::cpu {
namespace {

/// Bytes of slots that are sure to stay in the second cache of a core, beside the rows of whole pictures.
constexpr int kSlotBytes = 256 << 10;
/// Pixels; multiples of 16. Shorter ones spend their time on calls.
constexpr int kMinTile = 256, kMaxTile = 1024;
/// Bytes of a tile's rows that one kernel touches. They are sure to stay in the first cache.
constexpr int kKernelBytes = 24 << 10;
/// Bytes of a tile's rows that are fetched ahead and of those that are written past the caches. All of them
/// lie in the first cache at once, beside what the kernels need.
constexpr int kStreamedBytes = 12 << 10;

} // namespace

/// Fills a chain: finds a place for every plane and prepares the kernels.
class Chain::Compiler
{
public:
    Compiler(Chain& chain, const StageContext& context, const Stage& stage, const Pictures& read,
             const Results& written)
        : chain_(chain), context_(context), plan_(context.plan), stage_(stage), read_(read),
          written_(written), streams_(tooLargeForCaches())
    {
    }

    void compile()
    {
        findLastReaders();
        for (std::size_t at = 0; at < stage_.nodes.size(); ++at)
            addCall(static_cast<int>(at));
        if (streamedRows() > 0 && (streams_ || readsPastCaches()))
            shareAhead();
        const int row = (chain_.width_ + 15) / 16 * 16;
        const int fit = std::min(fitting(kSlotBytes, chain_.slotCount_), fitting(kKernelBytes, mostRows()));
        chain_.tileWidth_ = std::min({std::clamp(fit, kMinTile, kMaxTile), streamedTile(), row});
    }

private:
    using Places = std::array<Place, nodes::kMaxChannels>;

    /// How many pixels of so many rows take these bytes.
    static int fitting(int bytes, int rows)
    {
        return bytes / (std::max(1, rows) * static_cast<int>(sizeof(float))) / 16 * 16;
    }

    /// How many rows the kernel touches that touches most.
    int mostRows() const
    {
        int most = 0;
        for (const Call& call : chain_.calls_) {
            int rows = call.pack ? 0 : call.channels;
            for (std::size_t i = 0; i < call.operandPlanes; ++i) {
                const Place& place = chain_.operands_[call.firstOperand + i];
                rows += place.base || place.slot >= 0;
            }
            most = std::max(most, rows);
        }
        return most;
    }

    int streamedTile() const
    {
        const int ahead = static_cast<int>(chain_.ahead_.size());
        return ahead ? std::max(kMinTile, fitting(kStreamedBytes, ahead + streamedRows())) : kMaxTile;
    }

    void findLastReaders()
    {
        for (std::size_t at = 0; at < stage_.nodes.size(); ++at) {
            lastReader_[stage_.nodes[at]] = static_cast<int>(at);
            for (const int operand : plan_.nodes[stage_.nodes[at]].operands)
                if (const auto found = lastReader_.find(operand); found != lastReader_.end())
                    found->second = static_cast<int>(at);
        }
    }

    void addCall(int at)
    {
        const PlanNode& node = plan_.nodes[stage_.nodes[at]];
        Call call;
        call.row = node.kind->row;
        call.channels = node.channels;
        call.firstOperand = chain_.operands_.size();
        call.operandPlanes = node.operands.size() * nodes::kMaxChannels;
        std::vector<nodes::ImageView> views(node.operands.size());
        for (std::size_t i = 0; i < node.operands.size(); ++i) {
            const Places places = node.operands[i] == kNoNode ? Places() : placesOf(node.operands[i]);
            chain_.operands_.insert(chain_.operands_.end(), places.begin(), places.end());
            if (node.operands[i] != kNoNode)
                views[i] = shapeOf(node.operands[i]);
        }
        if (node.packs) {
            const Image& pixels = *written_.at(stage_.nodes[at]);
            call.pack.emplace(node.format, node.width, node.height, pixels.bytes());
        } else {
            const auto picture = read_.find(node.picture);
            const nodes::Setup setup =
                setupOf(context_, node, views, picture == read_.end() ? nodes::ImageView() : picture->second);
            call.state = prepareNode(node, setup);
            addResult(at, node, call);
        }
        chain_.calls_.push_back(std::move(call));
        releaseSlots(at, node);
    }

    nodes::ImageView shapeOf(int operand) const
    {
        nodes::ImageView view;
        view.width = plan_.nodes[operand].width;
        view.height = plan_.nodes[operand].height;
        view.channels = plan_.nodes[operand].channels;
        return view;
    }

    Places placesOf(int node) const
    {
        if (const auto inside = places_.find(node); inside != places_.end())
            return inside->second;
        const nodes::ImageView& view = read_.at(node);
        Places places;
        for (int c = 0; c < view.channels; ++c)
            places[c] = {const_cast<float*>(view.planes[c]), view.stride, -1}; // read only: an operand
        return places;
    }

    void addResult(int at, const PlanNode& node, Call& call)
    {
        const int index = stage_.nodes[at];
        const auto written = written_.find(index);
        const bool streamed = streams_ && written != written_.end();
        call.puts = streamed && node.kind->row.puts && lastReader_.at(index) == at;
        Places& places = places_[index];
        Places& target = streamed && !call.puts ? call.whole : places;
        const nodes::MutableImage planes =
            written == written_.end() ? nodes::MutableImage() : written->second->mutableView();
        if (written != written_.end())
            for (int c = 0; c < node.channels; ++c)
                target[c] = {planes.planes[c], planes.stride, -1};
        for (int c = 0; c < node.channels; ++c)
            if (!places[c].base)
                places[c].slot = takeSlot();
        call.result = places;
    }

    /// What is read from whole pictures, each plane once, is fetched ahead, an even part with each row that
    /// is streamed.
    void shareAhead()
    {
        for (const Call& call : chain_.calls_)
            for (std::size_t i = 0; i < call.operandPlanes; ++i) {
                const Place& place = chain_.operands_[call.firstOperand + i];
                if (place.base && !fetched(place) && reads(call, static_cast<int>(i)))
                    chain_.ahead_.push_back(place);
            }
        const int ahead = static_cast<int>(chain_.ahead_.size()), streamed = streamedRows();
        int row = 0;
        for (Call& call : chain_.calls_)
            for (int c = 0; c < rowsStreamedBy(call); ++c) {
                call.ahead[c] = row++ * ahead / streamed;
                call.ahead[c + 1] = row * ahead / streamed;
            }
    }

    static bool reads(const Call& call, int plane)
    {
        const auto* selective = dynamic_cast<const nodes::SelectiveState*>(call.state.get());
        return !selective || selective->reads(plane / nodes::kMaxChannels, plane % nodes::kMaxChannels);
    }

    bool fetched(const Place& place) const
    {
        return std::any_of(chain_.ahead_.begin(), chain_.ahead_.end(),
                           [&](const Place& other) { return other.base == place.base; });
    }

    static int rowsStreamedBy(const Call& call)
    {
        return call.pack ? 1 : call.whole[0].base ? call.channels : 0;
    }

    int streamedRows() const
    {
        int rows = 0;
        for (const Call& call : chain_.calls_)
            rows += rowsStreamedBy(call);
        return rows;
    }

    /// Whether what the stage writes is too much to be still in a cache when it is read.
    bool tooLargeForCaches() const
    {
        std::size_t bytes = 0;
        for (const auto& [node, image] : written_)
            bytes += image->byteSize();
        return worthStreaming(bytes);
    }

    /// Whether the whole pictures that the stage reads are too much to be in a cache.
    bool readsPastCaches() const
    {
        std::size_t bytes = 0;
        for (const auto& [node, image] : read_)
            bytes += Image::byteSize(image.width, image.height, image.channels);
        return worthStreaming(bytes);
    }

    int takeSlot()
    {
        if (free_.empty())
            return chain_.slotCount_++;
        const int slot = free_.back();
        free_.pop_back();
        return slot;
    }

    /// Slots whose last reader is the node at `at` are for the nodes behind it.
    void releaseSlots(int at, const PlanNode& node)
    {
        std::vector<int> done = node.operands;
        done.push_back(stage_.nodes[at]);
        std::sort(done.begin(), done.end());
        done.erase(std::unique(done.begin(), done.end()), done.end());
        for (const int index : done) {
            const auto found = places_.find(index);
            if (found == places_.end() || lastReader_.at(index) != at)
                continue;
            for (const Place& place : found->second)
                if (place.slot >= 0)
                    free_.push_back(place.slot);
        }
    }

    Chain& chain_;
    const StageContext& context_;
    const Plan& plan_;
    const Stage& stage_;
    const Pictures& read_;
    const Results& written_;
    const bool streams_;
    std::unordered_map<int, int> lastReader_; // by node of the stage: position in it
    std::unordered_map<int, Places> places_;  // by node of the stage
    std::vector<int> free_;
};

Chain::Chain(const StageContext& context, const Stage& stage, const Pictures& read, const Results& written)
    : monitor_(context.monitor), width_(context.plan.nodes[stage.nodes.front()].width),
      height_(context.plan.nodes[stage.nodes.front()].height)
{
    Compiler(*this, context, stage, read, written).compile();
}

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
