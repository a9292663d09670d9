// Everything that fuzzing has ever found, and a seed or two, once more in the normal build.

#include "tests/fuzz/entries.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace vellor::fuzz {

TEST(FuzzRegressions, ComeBack)
{
    for (const Target& target : kTargets) {
        int inputs = 0;
        for (const auto& entry :
             std::filesystem::directory_iterator(std::filesystem::path(VELLOR_REGRESSIONS) / target.name)) {
            SCOPED_TRACE(entry.path().string());
            std::ifstream file(entry.path(), std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
            target.run(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            ++inputs;
        }
        EXPECT_GT(inputs, 0) << target.name;
    }
}

} // namespace vellor::fuzz
