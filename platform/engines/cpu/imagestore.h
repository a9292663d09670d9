#pragma once

// The results that a handle keeps, by key.
//
// A result is superseded when its node has a newer one: the values that it was made with are gone. Somebody
// may go back to them, so superseded results are kept, but no more than a share of the budget of them. Beyond
// that the oldest are forgotten ahead of each generation, and the next results take their memory over: a
// slider that is dragged goes round in the same memory instead of touching all of the budget.
//
// Pictures in memory, kept or just being worked on, stay within the budget as long as something can give way.
// What gives way, in this order: results of former generations, the ones used longest ago first; results just
// upstream of inputs that the host hinted; results that the running generation will read again. They are
// parked with the host's cache store where it has one, and read back when wanted; without one the first two
// are dropped, to be computed again one day, and the third stay, over the budget. Pictures that somebody
// holds a pointer to don't move. Results never change, so a parked copy stays valid beside the one in memory
// and a second parking costs nothing.
//
// The thread that called into the engine only; pictures may be released by any thread.

#include "platform/engines/cpu/cachestore.h"
#include "platform/engines/cpu/hash.h"
#include "platform/engines/cpu/image.h"

#include <cstdint>
#include <memory>
#include <unordered_map>

namespace vellor::cpu {

class ImageStore
{
public:
    ImageStore(std::shared_ptr<BufferPool> pool, CacheStore& cacheStore);

    /// While this is set, large pictures are neither parked nor read back. Null, and until this is called:
    /// never.
    void watch(const std::atomic<bool>* stop) { stop_ = stop; }
    /// Whether results are dropped with their last use.
    void setTransient(bool transient) { transient_ = transient; }
    /// In bytes; makes room at once.
    void setBudget(std::uint64_t bytes);

    /// Memory or parked.
    bool holds(const Key& key) const { return entries_.count(key) != 0; }
    /// The picture, read back if it was parked; null when the store doesn't hold it or it didn't come back
    /// whole. In the latter case nothing is parked any more from then on, but for a stop.
    std::shared_ptr<const Image> get(const Key& key);
    /// A picture to write to, after making room for it. Throws std::bad_alloc.
    std::shared_ptr<Image> make(const ImageShape& shape);
    /// `origin` is the number of the node that made it; negative: of none that could make another.
    void put(const Key& key, std::shared_ptr<const Image> image, int origin = -1);

    /// Forgets the marks that the next functions set, and superseded results beyond their share.
    void beginGeneration();
    /// The running generation will read the result `uses` times more, each of which ends with used().
    void need(const Key& key, int uses);
    void used(const Key& key);
    /// The result is just upstream of something that will change.
    void hint(const Key& key);

    /// Takes over what the other store has in memory.
    void takeFrom(ImageStore& other);
    void clear();

    /// Bytes of pictures in memory that were made here and still live.
    std::uint64_t liveBytes() const { return *live_; }

private:
    struct Entry
    {
        std::shared_ptr<const Image> image; // null: parked only
        ImageShape shape;
        int origin = -1;
        std::uint64_t lastUse = 0;
        std::uint64_t neededIn = 0, hintedIn = 0; // generations
        int uses = 0;
        std::uint32_t parked = 0; // number in the cache store; 0: none
        Key content;              // of the parked bytes
    };
    using Entries = std::unordered_map<Key, Entry, KeyHash>;

    int rank(const Entry& entry) const;
    void forgetSuperseded();
    void makeRoom(std::uint64_t bytes);
    bool evict(Entries::iterator entry);
    bool park(Entry& entry);
    bool readBack(Entry& entry);
    bool stopped() const { return stop_ && *stop_; }
    Key contentOf(const Image& image) const;
    void drop(Entries::iterator entry);
    void limitParked();

    std::shared_ptr<BufferPool> pool_;
    CacheStore& cacheStore_;
    const std::atomic<bool>* stop_ = nullptr;
    Entries entries_;
    Account live_;
    std::uint64_t budget_ = 0, parkedBytes_ = 0, clock_ = 0, generation_ = 1;
    std::uint64_t lastGeneration_ = 0; // the clock when it began
    bool transient_ = false;
};

} // namespace vellor::cpu
