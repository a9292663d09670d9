// Archives: ours read back, and those of others, sound or not.

#include "platform/program/packagearchive.h"

#include <gtest/gtest.h>

namespace vellor::program {

TEST(PackageArchive, ReadsWhatItWrote)
{
    Archive archive;
    archive.assembly.assign(100000, 7);
    archive.description = "<x>\xC3\xBC</x>";
    archive.thumbnail = {1, 2, 3};
    std::string error;
    const auto bytes = writeArchive(archive, error);
    ASSERT_TRUE(bytes) << error;
    EXPECT_TRUE(isArchive(*bytes));
    EXPECT_LT(bytes->size(), 2000u); // it is compressed
    EXPECT_EQ(*writeArchive(archive, error), *bytes);
    const auto read = readArchive(*bytes, error);
    ASSERT_TRUE(read) << error;
    EXPECT_EQ(read->assembly, archive.assembly);
    EXPECT_EQ(read->description, archive.description);
    EXPECT_EQ(read->thumbnail, archive.thumbnail);
}

TEST(PackageArchive, NeverTakesADamagedAssemblyForASoundOne)
{
    Archive archive;
    for (int i = 0; i < 500; ++i)
        archive.assembly.push_back(static_cast<std::uint8_t>(i * i));
    std::string error;
    auto bytes = *writeArchive(archive, error);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        const auto read = readArchive({bytes.data(), size}, error);
        EXPECT_TRUE(!read || read->assembly.empty() || read->assembly == archive.assembly) << size;
    }
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        bytes[bit / 8] ^= 1u << (bit % 8);
        const auto read = readArchive(bytes, error);
        EXPECT_TRUE(!read || read->assembly.empty() || read->assembly == archive.assembly) << "bit " << bit;
        bytes[bit / 8] ^= 1u << (bit % 8);
    }
}

TEST(PackageArchive, DoesNotUnfoldWithoutBounds)
{
    Archive archive;
    archive.assembly.resize(1000000);
    archive.description = "x";
    std::string error;
    const auto bytes = *writeArchive(archive, error);
    EXPECT_TRUE(readArchive(bytes, error, 1000001));
    EXPECT_FALSE(readArchive(bytes, error, 1000000));
    EXPECT_EQ(error, "the archive unfolds to too much");
}

} // namespace vellor::program
