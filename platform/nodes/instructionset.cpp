#include "platform/nodes/instructionset.h"

#include <hwy/targets.h>

#include <cstdint>

namespace vellor::nodes {

void limitInstructionSet(InstructionSet highest)
{
    std::int64_t allowed = hwy::SupportedTargets();
#if HWY_ARCH_X86
    if (highest == InstructionSet::Ssse3)
        allowed &= HWY_SSSE3;
    else if (highest == InstructionSet::Avx2)
        allowed &= HWY_SSSE3 | HWY_AVX2;
    else if (highest == InstructionSet::Avx512)
        allowed &= HWY_SSSE3 | HWY_AVX2 | HWY_AVX3;
#else
    static_cast<void>(highest);
#endif
    hwy::GetChosenTarget().Update(allowed);
}

} // namespace vellor::nodes
