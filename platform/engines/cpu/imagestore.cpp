#include "platform/engines/cpu/imagestore.h"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

namespace vellor::cpu {
namespace {

/// Parked blocks take at most this many budgets of the host's disk.
constexpr std::uint64_t kParkedBudgets = 4;
/// Superseded results take at most one of so many parts of the budget.
constexpr std::uint64_t kSupersededPart = 16;

/// Bytes of a picture between two looks at the stop.
constexpr std::size_t kPart = std::size_t(1) << 20;

} // namespace

ImageStore::ImageStore(std::shared_ptr<BufferPool> pool, CacheStore& cacheStore)
    : pool_(std::move(pool)), cacheStore_(cacheStore), live_(std::make_shared<std::atomic<std::uint64_t>>(0))
{
}

void ImageStore::setBudget(std::uint64_t bytes)
{
    budget_ = bytes;
    pool_->setKeepLimit(
        static_cast<std::size_t>(std::min<std::uint64_t>(bytes / 8, std::uint64_t(512) << 20)));
    makeRoom(0);
}

std::shared_ptr<const Image> ImageStore::get(const Key& key)
{
    const auto found = entries_.find(key);
    if (found == entries_.end())
        return nullptr;
    if (!found->second.image && !readBack(found->second)) {
        if (stopped())
            return nullptr;
        cacheStore_.refuse();
        drop(found);
        return nullptr;
    }
    found->second.lastUse = ++clock_;
    return found->second.image;
}

std::shared_ptr<Image> ImageStore::make(const ImageShape& shape)
{
    makeRoom(shape.byteSize());
    auto image = std::make_shared<Image>(*pool_, shape);
    image->charge(live_);
    return image;
}

void ImageStore::put(const Key& key, std::shared_ptr<const Image> image, int origin)
{
    Entry& entry = entries_[key];
    entry.origin = origin;
    entry.shape = image->shape();
    entry.image = std::move(image);
    entry.lastUse = ++clock_;
}

void ImageStore::beginGeneration()
{
    forgetSuperseded();
    ++generation_;
    lastGeneration_ = clock_;
}

void ImageStore::forgetSuperseded()
{
    std::unordered_map<int, std::uint64_t> newest; // by origin
    for (const auto& [key, entry] : entries_)
        newest[entry.origin] = std::max(newest[entry.origin], entry.lastUse);
    std::vector<std::pair<std::uint64_t, Key>> superseded;
    for (const auto& [key, entry] : entries_)
        if (entry.origin >= 0 && entry.lastUse < newest[entry.origin] && entry.lastUse <= lastGeneration_)
            superseded.emplace_back(entry.lastUse, key);
    std::sort(superseded.begin(), superseded.end(),
              [](const auto& a, const auto& b) { return a.first > b.first; });
    std::uint64_t bytes = 0;
    for (const auto& candidate : superseded) {
        const auto found = entries_.find(candidate.second);
        bytes += found->second.shape.byteSize();
        if (bytes > budget_ / kSupersededPart)
            drop(found);
    }
}

void ImageStore::need(const Key& key, int uses)
{
    const auto found = entries_.find(key);
    if (found == entries_.end())
        return;
    Entry& entry = found->second;
    // Two nodes may come to the same result, and each has readers of its own.
    entry.uses = entry.neededIn == generation_ ? entry.uses + uses : uses;
    entry.neededIn = generation_;
}

void ImageStore::used(const Key& key)
{
    const auto found = entries_.find(key);
    if (found == entries_.end() || found->second.uses == 0)
        return;
    if (--found->second.uses == 0 && transient_)
        drop(found);
}

void ImageStore::hint(const Key& key)
{
    const auto found = entries_.find(key);
    if (found != entries_.end())
        found->second.hintedIn = generation_;
}

/// What gives way first has the lowest rank.
int ImageStore::rank(const Entry& entry) const
{
    if (entry.neededIn == generation_ && entry.uses > 0)
        return 2;
    return entry.hintedIn == generation_ ? 1 : 0;
}

void ImageStore::makeRoom(std::uint64_t bytes)
{
    if (liveBytes() + bytes > budget_) {
        std::vector<std::pair<std::pair<int, std::uint64_t>, Key>> candidates;
        for (const auto& [key, entry] : entries_)
            if (entry.image && entry.image.use_count() == 1)
                candidates.push_back({{rank(entry), entry.lastUse}, key});
        std::sort(candidates.begin(), candidates.end(),
                  [](const auto& a, const auto& b) { return a.first < b.first; });
        for (const auto& candidate : candidates) {
            if (liveBytes() + bytes <= budget_)
                break;
            evict(entries_.find(candidate.second));
        }
        limitParked();
    }
    const std::uint64_t taken = liveBytes() + bytes;
    if (taken + pool_->keptBytes() > budget_ + bytes)
        pool_->trim(static_cast<std::size_t>(budget_ > taken ? budget_ - taken + bytes : bytes));
}

bool ImageStore::evict(Entries::iterator entry)
{
    if (park(entry->second)) {
        entry->second.image.reset();
        return true;
    }
    if (rank(entry->second) == 2)
        return false;
    drop(entry);
    return true;
}

/// Of no use once stopped.
Key ImageStore::contentOf(const Image& image) const
{
    Hasher hasher(0x7061726b6564ull);
    for (std::size_t at = 0; at < image.byteSize() && !stopped(); at += kPart)
        hasher.add(image.bytes() + at, std::min(kPart, image.byteSize() - at));
    return hasher.key();
}

bool ImageStore::park(Entry& entry)
{
    if (entry.parked)
        return true;
    if (!cacheStore_.available())
        return false;
    entry.content = contentOf(*entry.image);
    if (stopped())
        return false;
    entry.parked = cacheStore_.write(entry.image->bytes(), entry.image->byteSize());
    parkedBytes_ += entry.image->byteSize();
    return true;
}

bool ImageStore::readBack(Entry& entry)
{
    if (stopped())
        return false;
    std::shared_ptr<Image> image = make(entry.shape);
    cacheStore_.read(entry.parked, image->bytes(), image->byteSize());
    if (contentOf(*image) != entry.content)
        return false;
    entry.image = std::move(image);
    return true;
}

void ImageStore::drop(Entries::iterator entry)
{
    if (entry->second.parked) {
        cacheStore_.remove(entry->second.parked);
        parkedBytes_ -= entry->second.shape.byteSize();
    }
    entries_.erase(entry);
}

void ImageStore::limitParked()
{
    while (parkedBytes_ > kParkedBudgets * budget_) {
        auto oldest = entries_.end();
        for (auto at = entries_.begin(); at != entries_.end(); ++at)
            if (at->second.parked && !at->second.image && rank(at->second) < 2 &&
                (oldest == entries_.end() || at->second.lastUse < oldest->second.lastUse))
                oldest = at;
        if (oldest == entries_.end())
            return;
        drop(oldest);
    }
}

void ImageStore::takeFrom(ImageStore& other)
{
    for (auto& [key, entry] : other.entries_) {
        if (!entry.image || holds(key))
            continue;
        entry.image->charge(live_);
        put(key, std::move(entry.image), entry.origin);
    }
    other.clear();
    makeRoom(0);
}

void ImageStore::clear()
{
    while (!entries_.empty())
        drop(entries_.begin());
}

} // namespace vellor::cpu
