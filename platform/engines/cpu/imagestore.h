#pragma once

// The results that a handle keeps, by key.
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

    /// In bytes; makes room at once.
    void setBudget(std::uint64_t bytes);

    /// Memory or parked.
    bool holds(const Key& key) const { return entries_.count(key) != 0; }
    /// The picture, read back if it was parked; null when the store doesn't hold it or it didn't come back
    /// whole. In the latter case nothing is parked any more from then on.
    std::shared_ptr<const Image> get(const Key& key);
    /// A picture to write to, after making room for it. Throws std::bad_alloc.
    std::shared_ptr<Image> make(int width, int height, int channels);
    void put(const Key& key, std::shared_ptr<const Image> image);

    /// Forgets the marks that the next two functions set.
    void beginGeneration() { ++generation_; }
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
        int width = 0, height = 0, channels = 0;
        std::uint64_t lastUse = 0;
        std::uint64_t neededIn = 0, hintedIn = 0; // generations
        int uses = 0;
        std::uint32_t parked = 0; // number in the cache store; 0: none
        Key content;              // of the parked bytes
    };
    using Entries = std::unordered_map<Key, Entry, KeyHash>;

    int rank(const Entry& entry) const;
    void makeRoom(std::uint64_t bytes);
    bool evict(Entries::iterator entry);
    bool park(Entry& entry);
    bool readBack(Entry& entry);
    void drop(Entries::iterator entry);
    void limitParked();

    std::shared_ptr<BufferPool> pool_;
    CacheStore& cacheStore_;
    Entries entries_;
    Account live_;
    std::uint64_t budget_ = 0, parkedBytes_ = 0, clock_ = 0, generation_ = 1;
};

} // namespace vellor::cpu
