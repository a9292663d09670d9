#include "platform/program/packagearchive.h"

#include <archive.h>
#include <archive_entry.h>

#include <cstring>
#include <memory>

namespace vellor::program {

namespace {

constexpr const char* kAssemblyName = "package.vlrasm";
constexpr const char* kDescriptionName = "description.xml";
constexpr const char* kThumbnailName = "thumbnail.png";
constexpr int kMaxMembers = 4096;

using Reader = std::unique_ptr<struct archive, int (*)(struct archive*)>;
using Entry = std::unique_ptr<struct archive_entry, void (*)(struct archive_entry*)>;

std::string errorOf(struct archive* archive)
{
    const char* text = archive_error_string(archive);
    return text ? text : "unknown error";
}

la_ssize_t appendBytes(struct archive*, void* bytes, const void* data, std::size_t size)
{
    try {
        const auto* first = static_cast<const std::uint8_t*>(data);
        auto& target = *static_cast<std::vector<std::uint8_t>*>(bytes);
        target.insert(target.end(), first, first + size);
        return static_cast<la_ssize_t>(size);
    } catch (const std::bad_alloc&) {
        return -1;
    }
}

bool writeMember(struct archive* zip, const char* name, ByteView bytes)
{
    if (bytes.size == 0)
        return true;
    const Entry entry(archive_entry_new(), archive_entry_free);
    archive_entry_set_pathname(entry.get(), name);
    archive_entry_set_size(entry.get(), static_cast<la_int64_t>(bytes.size));
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0644);
    archive_entry_set_mtime(entry.get(), 315532800, 0); // 1980-01-01, the first day of ZIP
    if (archive_write_header(zip, entry.get()) != ARCHIVE_OK)
        return false;
    return archive_write_data(zip, bytes.data, bytes.size) == static_cast<la_ssize_t>(bytes.size);
}

/// Reads the current member piece by piece, so that memory follows the bytes that are really there.
bool readMember(struct archive* zip, std::size_t& budget, std::vector<std::uint8_t>& bytes,
                std::string& error)
{
    const void* piece = nullptr;
    std::size_t size = 0;
    la_int64_t offset = 0;
    int state;
    while ((state = archive_read_data_block(zip, &piece, &size, &offset)) == ARCHIVE_OK) {
        if (size > budget || offset != static_cast<la_int64_t>(bytes.size())) {
            error = size > budget ? "the archive unfolds to too much" : "the archive is damaged";
            return false;
        }
        budget -= size;
        const auto* first = static_cast<const std::uint8_t*>(piece);
        bytes.insert(bytes.end(), first, first + size);
    }
    if (state != ARCHIVE_EOF)
        error = errorOf(zip);
    return state == ARCHIVE_EOF;
}

} // namespace

bool isArchive(ByteView bytes)
{
    return bytes.size >= 4 &&
           (std::memcmp(bytes.data, "PK\3\4", 4) == 0 || std::memcmp(bytes.data, "PK\5\6", 4) == 0);
}

std::optional<std::vector<std::uint8_t>> writeArchive(const Archive& archive, std::string& error)
{
    std::vector<std::uint8_t> bytes;
    const Reader zip(archive_write_new(), archive_write_free);
    archive_write_set_format_zip(zip.get());
    archive_write_set_bytes_per_block(zip.get(), 0);
    archive_write_set_options(zip.get(), "zip:compression=deflate,zip:!experimental");
    const bool good =
        archive_write_open(zip.get(), &bytes, nullptr, appendBytes, nullptr) == ARCHIVE_OK &&
        writeMember(zip.get(), kAssemblyName, archive.assembly) &&
        writeMember(zip.get(), kDescriptionName, {archive.description.data(), archive.description.size()}) &&
        writeMember(zip.get(), kThumbnailName, archive.thumbnail) &&
        archive_write_close(zip.get()) == ARCHIVE_OK;
    if (!good) {
        error = errorOf(zip.get());
        return std::nullopt;
    }
    return bytes;
}

std::optional<Archive> readArchive(ByteView bytes, std::string& error, std::size_t maxUnfolded)
{
    const Reader zip(archive_read_new(), archive_read_free);
    archive_read_support_format_zip(zip.get());
    if (archive_read_open_memory(zip.get(), bytes.data, bytes.size) != ARCHIVE_OK) {
        error = errorOf(zip.get());
        return std::nullopt;
    }
    Archive archive;
    std::size_t budget = maxUnfolded;
    struct archive_entry* entry = nullptr;
    int state = ARCHIVE_OK;
    for (int members = 0; (state = archive_read_next_header(zip.get(), &entry)) == ARCHIVE_OK; ++members) {
        const char* path = archive_entry_pathname(entry);
        const std::string name = path ? path : "";
        std::vector<std::uint8_t> member;
        if (members >= kMaxMembers) {
            error = "the archive has too many members";
            return std::nullopt;
        }
        if (name != kAssemblyName && name != kDescriptionName && name != kThumbnailName)
            continue;
        if (!readMember(zip.get(), budget, member, error))
            return std::nullopt;
        if (name == kAssemblyName)
            archive.assembly = std::move(member);
        else if (name == kThumbnailName)
            archive.thumbnail = std::move(member);
        else
            archive.description.assign(member.begin(), member.end());
    }
    if (state != ARCHIVE_EOF) {
        error = errorOf(zip.get());
        return std::nullopt;
    }
    return archive;
}

} // namespace vellor::program
