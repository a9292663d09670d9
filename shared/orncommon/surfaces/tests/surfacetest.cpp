#include "orncommon/surfaces/surface.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using namespace Orn::Surfaces;

namespace {

struct FormatRow
{
    std::uint32_t format;
    unsigned int channels;
    unsigned int bits;
    std::size_t bytes;
    bool isFloat;
};

constexpr FormatRow formatRows[] = {
    {0, 0, 0, 0, false},  {1, 1, 8, 1, false},   {2, 0, 0, 0, false},   {3, 3, 8, 3, false},
    {4, 3, 8, 3, false},  {5, 4, 8, 4, false},   {6, 4, 8, 4, false},   {7, 1, 16, 2, false},
    {8, 0, 0, 0, false},  {9, 3, 16, 6, false},  {10, 4, 16, 8, false}, {11, 1, 16, 2, true},
    {12, 0, 0, 0, false}, {13, 3, 16, 6, true},  {14, 4, 16, 8, true},  {15, 1, 32, 4, true},
    {16, 0, 0, 0, false}, {17, 3, 32, 12, true}, {18, 4, 32, 16, true}, {19, 0, 0, 0, false},
};

TEST(PixelFormat, TableByNumber)
{
    for (FormatRow const& row : formatRows) {
        auto const format = PixelFormat(row.format);
        EXPECT_EQ(getChannelsCount(format), row.channels) << row.format;
        EXPECT_EQ(getBitsPerChannel(format), row.bits) << row.format;
        EXPECT_EQ(getPixelSize(format), row.bytes) << row.format;
        EXPECT_EQ(isFloatFormat(format), row.isFloat) << row.format;
    }
    EXPECT_EQ(RGBA16F, 14u);
    EXPECT_EQ(RGBA32F, 18u);
    EXPECT_EQ(withChannels(BGRA8, 3), RGB8);
    EXPECT_EQ(withChannels(RGBA16F, 1), L16F);
}

TEST(Surface, AllocatesPackedAndAligned)
{
    Surface const surface(SurfaceDescription(7, 3, RGB16), 64);
    ASSERT_FALSE(surface.isEmpty());
    EXPECT_EQ(surface.pitch(), 42u);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(surface.data()) % 64, 0u);
}

TEST(Surface, StaysEmptyWhereNothingCanBeAllocated)
{
    SurfaceDescription narrowPitch(10, 10, RGBA8);
    narrowPitch.pitch = 39;
    SurfaceDescription hugePitch(10, 10, RGBA8);
    hugePitch.pitch = ~std::uint64_t(0);
    for (SurfaceDescription const& description :
         {SurfaceDescription(0, 5, L8), SurfaceDescription(5, 0, L8),
          SurfaceDescription(5, 5, PixelFormat_Invalid), SurfaceDescription(5, 5, PixelFormat(12)),
          SurfaceDescription(~0u, ~0u, RGBA32F), narrowPitch, hugePitch})
        EXPECT_TRUE(Surface(description, 64).isEmpty());
}

TEST(Surface, ReleaseRunsOnceWhoeverHoldsThePixels)
{
    int released = 0;
    std::uint8_t pixel = 0;
    {
        Surface first(&pixel, SurfaceDescription(1, 1, L8), [&released] { ++released; });
        Surface second(std::move(first));
        Surface third;
        third.swap(second);
        EXPECT_TRUE(second.isEmpty());
        EXPECT_EQ(third.data(), &pixel);
        EXPECT_EQ(released, 0);
        third = Surface();
        EXPECT_EQ(released, 1);
    }
    EXPECT_EQ(released, 1);
}

TEST(Surface, MirrorFlipsRowsAndLeavesThePadding)
{
    std::vector<std::uint8_t> bytes = {1, 2, 90, 3, 4, 91, 5, 6, 92};
    SurfaceDescription description(2, 3, L8);
    description.pitch = 3;
    Surface surface(bytes.data(), description);
    surface.mirror();
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{5, 6, 90, 3, 4, 91, 1, 2, 92}));
}

} // namespace
