// Pictures that authoring files pack.

#include "platform/cooker/pngreader.h"
#include "platform/cooker/tests/cooktext.h"
#include "platform/nodes/pictureblob.h"

#include <png.h>
#include <zlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace vellor::cooker {

namespace {

using nodes::PictureBlob;

std::string pngOf(int width, int height, png_uint_32 format, const void* pixels)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = format;
    png_alloc_size_t size = 0;
    EXPECT_TRUE(png_image_write_to_memory(&image, nullptr, &size, 0, pixels, 0, nullptr));
    std::string bytes(size, '\0');
    EXPECT_TRUE(png_image_write_to_memory(&image, bytes.data(), &size, 0, pixels, 0, nullptr));
    return bytes;
}

struct Decoded
{
    std::string error; // written while the blob is made
    std::vector<std::uint8_t> blob;
    PictureBlob picture;

    explicit Decoded(const std::string& bytes)
        : blob(pictureOfPng(bytes, error)), picture(PictureBlob::read(blob.data(), blob.size()))
    {
    }
};

TEST(Pictures, KeepTheirValues)
{
    const std::uint8_t grey[] = {0, 51, 102, 153, 204, 255};
    const Decoded one(pngOf(3, 2, PNG_FORMAT_GRAY, grey));
    ASSERT_EQ(one.picture.channels, 1);
    EXPECT_EQ(one.picture.bits, 8);
    EXPECT_EQ(one.picture.width, 3);
    EXPECT_FLOAT_EQ(one.picture.at(1, 1, 0), 204.0f / 255.0f);

    const std::uint8_t colours[] = {255, 0, 51, 0, 102, 153};
    const Decoded rgb(pngOf(2, 1, PNG_FORMAT_RGB, colours));
    ASSERT_EQ(rgb.picture.channels, 4);
    EXPECT_FLOAT_EQ(rgb.picture.at(1, 0, 2), 153.0f / 255.0f);
    EXPECT_EQ(rgb.picture.at(1, 0, 3), 1.0f);

    const std::uint16_t deep[] = {65535, 256, 1, 0};
    const Decoded high(pngOf(4, 1, PNG_FORMAT_LINEAR_Y, deep));
    ASSERT_EQ(high.picture.bits, 16);
    for (int x = 0; x < 4; ++x)
        EXPECT_FLOAT_EQ(high.picture.at(x, 0, 0), static_cast<float>(deep[x]) / 65535.0f);
}

TEST(Pictures, ThatAreDamagedAreToldAndTakeNoMemory)
{
    std::vector<std::uint8_t> pixels(64 * 64, 7);
    const std::string good = pngOf(64, 64, PNG_FORMAT_GRAY, pixels.data());
    for (std::size_t length = 0; length + 12 < good.size(); ++length)
        EXPECT_EQ(Decoded(good.substr(0, length)).picture.pixels, nullptr) << length;
    // 16384 squared in the header of a few bytes; the check sum is mended.
    std::string huge = good;
    for (const std::size_t at : {16u, 20u})
        huge.replace(at, 4, std::string("\0\0\x40\0", 4));
    const auto sum = crc32(crc32(0, nullptr, 0), reinterpret_cast<const Bytef*>(huge.data()) + 12, 17);
    for (int i = 0; i < 4; ++i)
        huge[29 + i] = static_cast<char>(sum >> (24 - 8 * i));
    EXPECT_EQ(Decoded(huge).error, "the file is too short for its size in pixels");
    EXPECT_EQ(Decoded("GIF89a..........").error, "it is no PNG file");
}

TEST(Pictures, ArePackedFromBesideTheFile)
{
    namespace fs = std::filesystem;
    const fs::path folder = fs::temp_directory_path() / ("vellor_pictures_" + std::to_string(std::rand()));
    fs::create_directories(folder);
    const std::uint8_t grey[] = {0, 255};
    std::ofstream(folder / "two.png", std::ios::binary) << pngOf(2, 1, PNG_FORMAT_GRAY, grey);
    const auto cookWith = [&](const std::string& file) {
        return cook(
            {{(folder / "test.vlr").string(),
              package("\n<nodes><node id=\"b\" type=\"bitmap\"><param name=\"picture\" file=\"" + file +
                      "\"/></node></nodes><outputs><output identifier=\"o\" from=\"b\"/></outputs>")}},
            fakeTable(), {});
    };
    const CookResult result = cookWith("two.png");
    ASSERT_EQ(result.end, CookEnd::Done) << result.errors.front();
    std::string error;
    const auto programs = program::readAssembly(result.assembly, error);
    ASSERT_TRUE(programs);
    const auto& blobs = programs->front().blobs;
    ASSERT_EQ(blobs.size(), 1u);
    EXPECT_EQ(PictureBlob::read(blobs[0].data(), blobs[0].size()).width, 2);

    ASSERT_EQ(cookWith("none.png").errors.size(), 1u);
    EXPECT_EQ(cookWith("none.png").errors[0], (folder / "test.vlr").string() + ":2:63: the picture '" +
                                                  (folder / "none.png").string() + "': it can't be read");
    fs::remove_all(folder);
}

} // namespace

} // namespace vellor::cooker
