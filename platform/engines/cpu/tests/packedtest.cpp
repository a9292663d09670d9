// Chains that begin with a host's pixels or end with an output's: the same bytes as planes in between give.

#include "platform/engines/cpu/handle.h"
#include "platform/engines/cpu/outputconverter.h"
#include "platform/engines/cpu/stagerunner.h"
#include "platform/engines/cpu/tests/programbuilder.h"
#include "platform/engines/cpu/tests/testhost.h"

#include <gtest/gtest.h>

namespace vellor::cpu::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int kLayouts[] = {VELLOR_FORMAT_RGBA, VELLOR_FORMAT_RGBX, VELLOR_FORMAT_RGB,
                            VELLOR_FORMAT_GRAYSCALE};
constexpr int kDepths[] = {VELLOR_FORMAT_8BITS, VELLOR_FORMAT_16BITS, VELLOR_FORMAT_16FLOAT,
                           VELLOR_FORMAT_32FLOAT};
constexpr std::uint8_t kArgb = 2 << 4 | 1 << 2 | 3 | 0 << 6; // red is the fourth that is stored

/// Numbers between 0 and 1 in every format.
std::shared_ptr<const HostImage> picture(int format, std::uint8_t order, int width, int height)
{
    const RawFormat raw = RawFormat::of(static_cast<std::uint8_t>(format));
    Bytes bytes(outputBytes(static_cast<std::uint8_t>(format), width, height, 1));
    for (std::size_t i = 0; i < bytes.size(); i += raw.channelBytes()) {
        const std::uint32_t hash = static_cast<std::uint32_t>(i) * 2654435761u >> 8;
        const float number = static_cast<float>(hash) / 16777216.0f;
        if (raw.depth == RawFormat::Depth::F32)
            std::memcpy(&bytes[i], &number, 4);
        else if (raw.channelBytes() == 2)
            bytes[i] = static_cast<std::uint8_t>(hash), bytes[i + 1] = (hash >> 8) % 0x3c;
        else
            bytes[i] = static_cast<std::uint8_t>(hash);
    }
    VellorTexture texture{};
    texture.buffer = bytes.data();
    texture.width = static_cast<std::uint16_t>(width);
    texture.height = static_cast<std::uint16_t>(height);
    texture.pixelFormat = static_cast<std::uint8_t>(format);
    texture.channelOrder = order;
    return HostImage::copy(texture);
}

/// The sum of two pictures as pixels of an output, in one stage. Sizes are free, as no package's are.
class PackedSum
{
public:
    PackedSum(std::shared_ptr<const HostImage> a, std::shared_ptr<const HostImage> b, int channels)
        : channels_(channels)
    {
        for (auto& source : {a, b}) {
            PlanNode& node = add(&pictureRowKind(), a->width(), a->height());
            node.source = source;
        }
        add(findFakeKind(program::stableId("sum")), a->width(), a->height()).operands = {0, 1};
        PlanNode& end = add(&packKind(), a->width(), a->height());
        end.operands = {2};
        end.packs = true;
        plan_.roots = {3};
    }

    Bytes run(int format, Resources resources)
    {
        plan_.nodes[3].format = static_cast<std::uint8_t>(format);
        store_.clear();
        const std::atomic<bool> stop{false};
        Monitor monitor(stop, [](std::uint32_t, std::uint32_t) {});
        const Schedule schedule = makeSchedule(plan_, true);
        EXPECT_EQ(schedule.stages.size(), 1u);
        EXPECT_EQ(schedule.stages[0].writes, std::vector<int>{3});
        const StageContext context{plan_, store_, *pool_, threads_, monitor, resources};
        EXPECT_EQ(runStage(context, schedule, schedule.stages[0]), StageResult::Done);
        const auto result = store_.get(plan_.nodes[3].key);
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(result->bytes());
        return {bytes, bytes + result->byteSize()};
    }

    /// By way of whole planes, packed a row at a time, as a small picture is.
    Bytes expected(int format)
    {
        const PlanNode& shape = plan_.nodes[0];
        const Image row(*pool_, shape.width, 1, channels_), a = planes(0), b = planes(1);
        const std::size_t rowBytes = outputBytes(static_cast<std::uint8_t>(format), shape.width, 1, 1);
        Bytes bytes(rowBytes * static_cast<std::size_t>(shape.height));
        for (int y = 0; y < shape.height; ++y) {
            for (int c = 0; c < channels_; ++c)
                for (int x = 0; x < shape.width; ++x)
                    row.mutableView().planes[c][x] = at(a, x, y, c) + at(b, x, y, c);
            convertRows(row.view(), static_cast<std::uint8_t>(format), 0, 1,
                        &bytes[rowBytes * static_cast<std::size_t>(y)]);
        }
        return bytes;
    }

private:
    PlanNode& add(const nodes::NodeDeclaration* kind, int width, int height)
    {
        PlanNode& node = plan_.nodes.emplace_back();
        node.kind = kind;
        node.width = width;
        node.height = height;
        node.channels = channels_;
        node.key = {1, plan_.nodes.size()};
        node.parameters.resize(1); // of the sum, which doesn't look at it
        node.compute = true;
        return node;
    }

    Image planes(int node)
    {
        const HostImage& source = *plan_.nodes[node].source;
        Image image(*pool_, source.width(), source.height(), source.channels());
        source.unpack(0, source.height(), image.mutableView());
        return image;
    }

    /// Channel c of a pixel as a node of channels_ channels sees it.
    float at(const Image& image, int x, int y, int c) const
    {
        const nodes::ImageView view = image.view();
        const auto plane = [&](int i) { return view.planes[i][y * view.stride + x]; };
        if (view.channels == channels_)
            return plane(c);
        if (channels_ > 1)
            return c < 3 ? plane(0) : 1.0f;
        return 0.2126f * plane(0) + 0.7152f * plane(1) + 0.0722f * plane(2);
    }

    int channels_;
    Plan plan_;
    Callbacks callbacks_{};
    CacheStore noStore_{callbacks_, nullptr};
    std::shared_ptr<BufferPool> pool_ = BufferPool::make();
    ImageStore store_{pool_, noStore_};
    ThreadPool threads_;
};

class PackedChain : public ::testing::TestWithParam<nodes::InstructionSet>
{
    void SetUp() override { nodes::limitInstructionSet(GetParam()); }
    void TearDown() override { nodes::limitInstructionSet(nodes::InstructionSet::Best); }
};
INSTANTIATE_TEST_SUITE_P(Each, PackedChain,
                         ::testing::Values(nodes::InstructionSet::Ssse3, nodes::InstructionSet::Avx2,
                                           nodes::InstructionSet::Avx512));

TEST_P(PackedChain, GivesTheBytesOfWholePlanesInEveryFormat)
{
    const auto other = picture(VELLOR_FORMAT_RGBA, VELLOR_ORDER_BGRA, 1061, 3);
    for (const int depth : kDepths)
        for (const int layout : kLayouts)
            for (const std::uint8_t order : {std::uint8_t(VELLOR_ORDER_RGBA), kArgb})
                for (const int channels : {1, 4}) {
                    PackedSum sum(picture(depth | layout, order, 1061, 3), other, channels);
                    for (const int outDepth : kDepths)
                        for (const int outLayout : kLayouts)
                            ASSERT_EQ(sum.run(outDepth | outLayout, {}), sum.expected(outDepth | outLayout))
                                << depth << " " << layout << " " << int(order) << " " << channels << " to "
                                << outDepth << " " << outLayout;
                }
}

TEST_P(PackedChain, GivesTheSameBytesInEverySizeHoweverItIsCut)
{
    // The last is written past the caches.
    for (const auto& [width, height] : {std::pair(1, 1), {3, 7}, {4097, 3}, {1, 300}, {4097, 1031}}) {
        PackedSum sum(picture(VELLOR_FORMAT_RGBA, VELLOR_ORDER_BGRA, width, height),
                      picture(VELLOR_FORMAT_RGB, VELLOR_ORDER_RGBA, width, height), 4);
        const Bytes expected = sum.expected(VELLOR_FORMAT_RGBA);
        for (const std::uint32_t threads : {1u, 3u})
            for (const std::uint32_t rows : {0u, 1u, 7u}) {
                Resources resources;
                resources.threads = threads;
                resources.chunkRows = rows;
                ASSERT_TRUE(sum.run(VELLOR_FORMAT_RGBA, resources) == expected)
                    << width << " x " << height << ", " << threads << " threads, " << rows << " rows";
            }
    }
}

const nodes::NodeDeclaration* findAnyKind(std::uint32_t id)
{
    const nodes::NodeDeclaration* fake = findFakeKind(id);
    return fake ? fake : nodes::findNode(id);
}

/// Input 0, 256 x 256, into "add" (amount: input 1), output 200; what else reads the sum is up to the caller.
struct Photo
{
    ProgramBuilder build;
    int size, sum;

    explicit Photo(int format = VELLOR_FORMAT_RGBA)
    {
        const int image = build.input(program::ValueType::Image);
        const int amount = build.inputValue(build.input(program::ValueType::Float));
        size = build.sizeValue(8, 8);
        const int node = build.node("imageinput", size);
        build.program.nodes[node].channels = 4;
        build.parameter(node, "image", program::ParameterSource::Input, {}, image);
        sum = build.node("add", size, {node});
        build.parameter(sum, "amount", program::ParameterSource::Program, {}, amount);
        build.output(sum, static_cast<std::uint8_t>(format));
    }
};

Bytes pushPhoto(TestHost& host, std::uint8_t first = 0)
{
    Bytes bytes(4 << 16);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(first + (i * 7919 >> 5));
    const VellorTexture texture{bytes.data(), 256, 256, VELLOR_FORMAT_RGBA, VELLOR_ORDER_RGBA, {}};
    vellorHandlePushSetInput(host.handle(), 0, 0, VELLOR_TYPE_IMAGE, &texture, nullptr);
    return bytes;
}

constexpr std::uint64_t kPhotoBytes = 4 << 16;

TEST(Packed, OnlyPixelsAreKeptWhereAnOutputAloneReads)
{
    TestHost host(Photo().build.program, {}, findAnyKind);
    Bytes photo = pushPhoto(host);
    ASSERT_EQ(host.compute({200, 200}), 0u);
    EXPECT_TRUE(host.pictures[0] == photo) << "a picture and nothing added is the picture";
    EXPECT_EQ(host.completed.size(), 2u);
    EXPECT_EQ(host.handle()->liveBytes(), kPhotoBytes);

    counters().clear();
    host.pictures.clear();
    host.compute({200});
    EXPECT_EQ(counters().add, 0) << "kept from before";
    EXPECT_TRUE(host.pictures[0] == photo);

    for (const float amount : {1.0f, 0.0f}) {
        host.setFloat(1, amount);
        host.compute({200});
        EXPECT_TRUE(host.pictures[0] == (amount > 0 ? Bytes(photo.size(), 255) : photo));
    }
    EXPECT_EQ(counters().add, 256 * 256) << "the way back was kept";
    EXPECT_EQ(host.handle()->liveBytes(), 2 * kPhotoBytes);

    photo = pushPhoto(host, 3);
    host.compute({200});
    EXPECT_TRUE(host.pictures[0] == photo);
}

TEST(Packed, GivesTheBytesOfSeparateStages)
{
    Resources resources;
    resources.flags = VELLOR_CPU_NO_FUSION;
    TestHost fused(Photo().build.program, {}, findAnyKind),
        apart(Photo().build.program, resources, findAnyKind);
    for (TestHost* host : {&fused, &apart}) {
        pushPhoto(*host);
        host->setFloat(1, 0.3f);
        host->compute({200});
    }
    EXPECT_TRUE(fused.pictures[0] == apart.pictures[0]);
}

TEST(Packed, PlanesStayWhereAnythingElseWantsThem)
{
    const auto planesKept = [](const std::function<void(Photo&)>& change) {
        Photo photo;
        change(photo);
        TestHost host(photo.build.program, {}, findAnyKind);
        const Bytes bytes = pushPhoto(host);
        host.compute({200});
        EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), host.pictures[0].begin()));
        return host.handle()->liveBytes() >= Image::byteSize(256, 256, 4);
    };
    EXPECT_FALSE(planesKept([](Photo&) {}));
    EXPECT_TRUE(planesKept([](Photo& photo) { photo.build.program.outputs[0].mipmaps = 3; }));
    EXPECT_TRUE(planesKept([](Photo& photo) { photo.build.output(photo.sum, VELLOR_FORMAT_RGB); }));
    EXPECT_TRUE(planesKept([](Photo& photo) {
        photo.build.output(photo.build.node("spread", photo.size, {photo.sum}), VELLOR_FORMAT_RGB);
    }));
}

TEST(Packed, PixelsAreParkedAndReadBack)
{
    Resources resources;
    resources.memoryBudget = kPhotoBytes * 3 / 2;
    Photo photo;
    const int other = photo.build.node("add", photo.size, {0});
    photo.build.constant(other, "amount", 1.0f);
    photo.build.output(other, VELLOR_FORMAT_RGBA);
    TestHost host(photo.build.program, resources, findAnyKind);
    const Bytes bytes = pushPhoto(host);
    for (const std::uint32_t output : {200u, 201u, 200u}) {
        counters().clear();
        host.pictures.clear();
        ASSERT_EQ(host.compute({output}), 0u);
        EXPECT_LE(host.handle()->liveBytes(), kPhotoBytes * 3 / 2);
    }
    EXPECT_EQ(counters().add, 0);
    EXPECT_EQ(host.readBack, 1);
    EXPECT_TRUE(host.pictures[0] == bytes);
}

} // namespace
} // namespace vellor::cpu::testing
