#pragma once

#include <cstdint>
#include <functional>

namespace Orn::Surfaces {

/// Calls `work(first, end)` for bands of rows, `end` being the row behind the last, that together are the
/// rows 0 to `rows`. Where `bytes`, all that is read and written, are many, the bands are worked on at once,
/// by the calling thread and others; it returns when all are done. `work` must not throw.
void forRowBands(unsigned int rows, std::uint64_t bytes,
                 std::function<void(unsigned int first, unsigned int end)> const& work);

} // namespace Orn::Surfaces
