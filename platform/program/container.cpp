#include "platform/program/sections.h"

#include <cstring>

namespace vellor::program {

namespace {

constexpr std::size_t kHeaderSize = 32, kEntrySize = 24, kAlignment = 16;
constexpr std::size_t kVersionAt = 8, kChecksumAt = 12, kChecksumFrom = 16, kSizeAt = 16;
constexpr std::size_t kProgramCountAt = 24, kSectionCountAt = 28;
constexpr std::size_t kSectionCount = static_cast<std::size_t>(Section::Count);

constexpr std::array<std::uint32_t, 256> makeCrcTable()
{
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 1u) ? 0xEDB88320u ^ (value >> 1) : value >> 1;
        table[i] = value;
    }
    return table;
}

/// CRC-32 with the reflected polynomial 0xEDB88320, as ZIP and PNG have it.
std::uint32_t crc32(ByteView bytes)
{
    static constexpr std::array<std::uint32_t, 256> table = makeCrcTable();
    std::uint32_t crc = 0xFFFFFFFFu;
    for (const std::uint8_t byte : bytes)
        crc = table[(crc ^ byte) & 0xFFu] ^ (crc >> 8);
    return ~crc;
}

template<typename Integer> void store(std::vector<std::uint8_t>& bytes, std::size_t at, Integer value)
{
    for (std::size_t i = 0; i < sizeof(Integer); ++i)
        bytes[at + i] = static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * i));
}

struct Header
{
    std::size_t programs = 0, sections = 0;
};

/// Reads the header and compares everything that can be compared at this point.
std::optional<Header> readHeader(const Container& container, ByteView bytes, std::string& error)
{
    const auto failed = [&](const std::string& text) {
        error = text;
        return std::nullopt;
    };
    if (!hasMagic(bytes, container))
        return failed("this is not " + std::string(container.name));
    if (bytes.size < kHeaderSize)
        return failed("the file ends within its header");
    ByteReader in(bytes.part(kMagicSize, kHeaderSize - kMagicSize));
    const auto version = in.get<std::uint32_t>(), checksum = in.get<std::uint32_t>();
    const auto size = in.get<std::uint64_t>();
    Header header;
    header.programs = in.get<std::uint32_t>();
    header.sections = in.get<std::uint32_t>();
    if (version != kFileVersion)
        return failed("version " + std::to_string(version) + " is not supported, only version " +
                      std::to_string(kFileVersion));
    if (size != bytes.size)
        return failed("the file should have " + std::to_string(size) + " bytes but has " +
                      std::to_string(bytes.size));
    if (checksum != crc32(bytes.part(kChecksumFrom, bytes.size - kChecksumFrom)))
        return failed("the file is damaged: its checksum does not fit");
    if (header.programs == 0 || header.programs > container.maxPrograms)
        return failed("the number of programs is out of range");
    if (header.sections != header.programs * kSectionCount)
        return failed("the number of sections does not fit");
    if (header.sections > (bytes.size - kHeaderSize) / kEntrySize)
        return failed("the file ends within its section table");
    return header;
}

} // namespace

bool hasMagic(ByteView bytes, const Container& container)
{
    return bytes.size >= kMagicSize && std::memcmp(bytes.data, container.magic, kMagicSize) == 0;
}

void sealContainer(std::vector<std::uint8_t>& bytes)
{
    if (bytes.size() < kHeaderSize)
        return;
    store(bytes, kVersionAt, kFileVersion);
    store(bytes, kSizeAt, static_cast<std::uint64_t>(bytes.size()));
    store(bytes, kChecksumAt, crc32(ByteView(bytes).part(kChecksumFrom, bytes.size() - kChecksumFrom)));
}

std::vector<std::uint8_t> writeContainer(const Container& container, const std::vector<Program>& programs)
{
    const std::size_t sections = programs.size() * kSectionCount;
    ByteWriter out;
    out.putBytes({container.magic, kMagicSize});
    out.bytes().resize(kHeaderSize + sections * kEntrySize);
    for (std::size_t i = 0; i < sections; ++i) {
        out.align(kAlignment);
        const std::size_t start = out.bytes().size(), entry = kHeaderSize + i * kEntrySize;
        writeSection(static_cast<Section>(i % kSectionCount), programs[i / kSectionCount], out);
        std::vector<std::uint8_t>& bytes = out.bytes();
        store(bytes, entry, static_cast<std::uint32_t>(i % kSectionCount));
        store(bytes, entry + 4, static_cast<std::uint32_t>(i / kSectionCount));
        store(bytes, entry + 8, static_cast<std::uint64_t>(start));
        store(bytes, entry + 16, static_cast<std::uint64_t>(bytes.size() - start));
    }
    std::vector<std::uint8_t> bytes = std::move(out.bytes());
    store(bytes, kProgramCountAt, static_cast<std::uint32_t>(programs.size()));
    store(bytes, kSectionCountAt, static_cast<std::uint32_t>(sections));
    sealContainer(bytes);
    return bytes;
}

std::optional<std::vector<Program>> readContainer(const Container& container, ByteView bytes,
                                                  std::string& error)
{
    const std::optional<Header> header = readHeader(container, bytes, error);
    if (!header)
        return std::nullopt;
    std::vector<Program> programs(header->programs);
    ByteReader table(bytes.part(kHeaderSize, header->sections * kEntrySize));
    std::uint64_t end = kHeaderSize + header->sections * kEntrySize;
    for (std::size_t i = 0; i < header->sections; ++i) {
        const auto tag = table.get<std::uint32_t>(), program = table.get<std::uint32_t>();
        const auto offset = table.get<std::uint64_t>(), size = table.get<std::uint64_t>();
        const std::uint64_t expected = (end + kAlignment - 1) / kAlignment * kAlignment;
        if (tag != i % kSectionCount || program != i / kSectionCount || offset != expected ||
            offset > bytes.size || size > bytes.size - offset) {
            error = "the section table is damaged";
            return std::nullopt;
        }
        end = offset + size;
        if (!readSection(static_cast<Section>(tag), bytes.part(offset, size), programs[program])) {
            error = "section " + std::to_string(tag) + " is damaged";
            return std::nullopt;
        }
    }
    if (end != bytes.size) {
        error = "there is something behind the last section";
        return std::nullopt;
    }
    return programs;
}

} // namespace vellor::program
