// One fuzz target: VELLOR_FUZZ_ENTRY is the name of a function of entries.h.

#include "tests/fuzz/entries.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vellor::fuzz::VELLOR_FUZZ_ENTRY(data, size);
    return 0;
}
