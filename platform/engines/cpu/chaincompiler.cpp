// How a chain is made: the place of every plane, and the kernels with their state.

#include "platform/engines/cpu/chain.h"

#include "platform/engines/cpu/pixelkernels.h"
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
/// Pixels of a tile where a kernel writes past the caches: reading for it and for the kernels before it has
/// to alternate with the writing often enough for memory to do both at once.
constexpr int kPutTile = 128;

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
        chain_.tileWidth_ = std::min({std::clamp(fit, kMinTile, kMaxTile), streamedTile(), putTile(), row});
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

    int putTile() const
    {
        const bool puts = std::any_of(chain_.calls_.begin(), chain_.calls_.end(),
                                      [](const Call& call) { return call.puts; });
        return puts ? kPutTile : kMaxTile;
    }

    void findLastReaders()
    {
        for (std::size_t at = 0; at < stage_.nodes.size(); ++at) {
            lastReader_[stage_.nodes[at]] = static_cast<int>(at);
            for (const int operand : plan_.nodes[stage_.nodes[at]].operands)
                if (const auto found = lastReader_.find(operand); found != lastReader_.end()) {
                    found->second = static_cast<int>(at);
                    ++readers_[operand];
                }
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
            if (handsOn(at, node, call))
                call.row = {};
            else
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

    /// A node that only hands on planes of its operands: its result is where these are, and if they are in
    /// slots, the slots are its own from now on.
    bool handsOn(int at, const PlanNode& node, Call& call)
    {
        const auto* state = dynamic_cast<const nodes::SelectiveState*>(call.state.get());
        const auto written = written_.find(stage_.nodes[at]);
        if (!state || (written != written_.end() && !streams_))
            return false;
        for (const int operand : node.operands)
            if (places_.count(operand) && lastReader_.at(operand) != at)
                return false;
        Places handed;
        std::vector<int> kept;
        for (int c = 0; c < node.channels; ++c) {
            const int plane = state->handsOn(c);
            if (plane < 0)
                return false;
            handed[c] = chain_.operands_[call.firstOperand + static_cast<std::size_t>(plane)];
            if (std::count(kept.begin(), kept.end(), handed[c].slot) > 0 || isNowhere(handed[c]))
                return false;
            if (handed[c].slot >= 0)
                kept.push_back(handed[c].slot);
        }
        for (const int operand : node.operands)
            letGo(operand, kept);
        places_[stage_.nodes[at]] = call.result = handed;
        if (written != written_.end()) {
            call.whole = placesOf(written->second->mutableView(), node.channels);
            writeDirectly(at, node, *state, call);
        }
        return true;
    }

    static bool isNowhere(const Place& place) { return !place.base && place.slot < 0; }

    /// The places of a node of the stage, if it is one, are no longer its own: those but the kept ones are
    /// free.
    void letGo(int node, const std::vector<int>& kept)
    {
        const auto found = places_.find(node);
        if (found == places_.end())
            return;
        for (const Place& place : found->second)
            if (place.slot >= 0 && std::count(kept.begin(), kept.end(), place.slot) == 0)
                free_.push_back(place.slot);
        places_.erase(found);
    }

    /// Where all that is handed on comes from one kernel, which nobody else reads and which can write past
    /// the caches, that kernel writes it where it is to go.
    void writeDirectly(int at, const PlanNode& node, const nodes::SelectiveState& state, Call& call)
    {
        if (lastReader_.at(stage_.nodes[at]) != at)
            return;
        const int first = node.operands[static_cast<std::size_t>(state.handsOn(0) / nodes::kMaxChannels)];
        const auto made = std::find(stage_.nodes.begin(), stage_.nodes.begin() + at, first);
        if (made == stage_.nodes.begin() + at || readers_[first] != 1 || written_.count(first))
            return;
        Call& maker = chain_.calls_[static_cast<std::size_t>(made - stage_.nodes.begin())];
        for (int c = 0; c < node.channels; ++c)
            if (node.operands[static_cast<std::size_t>(state.handsOn(c) / nodes::kMaxChannels)] != first)
                return;
        if (!maker.row.puts || maker.channels != node.channels)
            return;
        for (int c = 0; c < node.channels; ++c)
            maker.result[static_cast<std::size_t>(state.handsOn(c) % nodes::kMaxChannels)] = call.whole[c];
        maker.puts = true;
        call.whole = {};
    }

    static Places placesOf(const nodes::MutableImage& image, int channels)
    {
        Places places;
        for (int c = 0; c < channels; ++c)
            places[c] = {image.planes[c], image.stride, -1};
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
        if (written != written_.end())
            target = placesOf(written->second->mutableView(), node.channels);
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
    std::unordered_map<int, int> readers_;    // by node of the stage: how many
    std::unordered_map<int, Places> places_;  // by node of the stage
    std::vector<int> free_;
};

Chain::Chain(const StageContext& context, const Stage& stage, const Pictures& read, const Results& written)
    : monitor_(context.monitor), width_(context.plan.nodes[stage.nodes.front()].width),
      height_(context.plan.nodes[stage.nodes.front()].height)
{
    Compiler(*this, context, stage, read, written).compile();
}

} // namespace vellor::cpu
