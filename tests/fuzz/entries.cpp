#include "tests/fuzz/entries.h"

#include "platform/cooker/cooker.h"
#include "platform/cooker/pngreader.h"
#include "platform/linker/linker.h"
#include "platform/nodes/pictureblob.h"
#include "platform/program/assembly.h"
#include "platform/program/packagearchive.h"
#include "platform/program/programreader.h"
#include "platform/program/programwriter.h"
#include "platform/program/sections.h"
#include "tests/fuzz/promise.h"

#include <zlib.h>

namespace vellor::fuzz {

namespace {

void linkAndReadBack(const std::vector<program::Program>& programs, int sizeLimit)
{
    std::string error;
    const auto linked = linker::link(programs, sizeLimit, error);
    require(linked || programs.size() > 1, "one checked program links", error);
    if (!linked)
        return;
    const auto image = program::writeProgram(*linked);
    const auto read = program::readProgram(image, error);
    require(read.has_value(), "a linked program reads back", error);
    require(program::writeProgram(*read) == image, "what was read is what was written", "");
}

void readAssemblyAndLink(program::ByteView bytes)
{
    std::string error;
    if (const auto programs = program::readAssembly(bytes, error)) {
        linkAndReadBack(*programs, 14);
        linkAndReadBack(*programs, 8);
    } else {
        require(!error.empty(), "a failure has words", "");
    }
}

/// Mutated files have wrong checksums and would be refused at the door: mend the header to get inside.
std::vector<std::uint8_t> sealed(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::uint8_t> bytes(data, data + size);
    program::sealContainer(bytes);
    return bytes;
}

/// The same for the chunks of a PNG file: big-endian length, name, data, check sum of the last two.
std::vector<std::uint8_t> withChunkSums(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::uint8_t> bytes(data, data + size);
    for (std::size_t at = 8; at + 12 <= size;) {
        std::size_t length = 0;
        for (std::size_t i = 0; i < 4; ++i)
            length = length << 8 | bytes[at + i];
        if (length > size - at - 12)
            break;
        const auto sum = crc32(0, &bytes[at + 4], static_cast<uInt>(length + 4));
        for (std::size_t i = 0; i < 4; ++i)
            bytes[at + 8 + length + i] = static_cast<std::uint8_t>(sum >> (24 - 8 * i));
        at += length + 12;
    }
    return bytes;
}

void readPicture(const std::uint8_t* data, std::size_t size)
{
    std::string error;
    const auto blob = cooker::pictureOfPng({reinterpret_cast<const char*>(data), size}, error);
    require(blob.empty() != error.empty(), "a picture or words", error);
    const auto read = nodes::PictureBlob::read(blob.data(), blob.size());
    require(blob.empty() == (read.pixels == nullptr), "a picture that was packed can be read", "");
    if (read.pixels)
        read.at(read.width - 1, read.height - 1, read.channels - 1);
}

} // namespace

void authoring(const std::uint8_t* data, std::size_t size)
{
    cooker::CookOptions options;
    options.dynamicRandomSeed = size % 2 != 0;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto result = cooker::cook({{VELLOR_FUZZ_PICTURES "/fuzz.vlr", text}}, nodes::allNodes(), options);
    require(result.end != cooker::CookEnd::BadProgram || result.errors.size() == 1,
            "one program breaks one rule", "");
    require((result.end == cooker::CookEnd::Done) == result.errors.empty(), "a failure has words", "");
    if (result.end != cooker::CookEnd::Done)
        return;
    std::string error;
    const auto programs = program::readAssembly(result.assembly, error);
    require(programs.has_value(), "a cooked assembly reads back", error);
    linkAndReadBack(*programs, 10);
}

void picture(const std::uint8_t* data, std::size_t size)
{
    readPicture(data, size);
    readPicture(withChunkSums(data, size).data(), size);
}

void assembly(const std::uint8_t* data, std::size_t size)
{
    readAssemblyAndLink({data, size});
    readAssemblyAndLink(sealed(data, size));
}

void archive(const std::uint8_t* data, std::size_t size)
{
    std::string error;
    const auto read = program::readArchive({data, size}, error);
    if (!read)
        return require(!error.empty(), "a failure has words", "");
    readAssemblyAndLink(sealed(read->assembly.data(), read->assembly.size()));
}

void binary(const std::uint8_t* data, std::size_t size)
{
    std::string error;
    if (!program::readProgram({data, size}, error))
        require(!error.empty(), "a failure has words", "");
    if (const auto read = program::readProgram(sealed(data, size), error))
        linkAndReadBack({*read}, 14);
}

} // namespace vellor::fuzz
