#pragma once

// Archives (.vlrar): ZIP files with an assembly, its description and, if there is one, a thumbnail.

#include "platform/program/bytes.h"

#include <optional>
#include <string>
#include <vector>

namespace vellor::program {

struct Archive
{
    std::vector<std::uint8_t> assembly;  // "package.vlrasm"; empty when the archive has none
    std::string description;             // "description.xml", UTF-8; empty when the archive has none
    std::vector<std::uint8_t> thumbnail; // "thumbnail.png"; may be empty
};

/// True when bytes begin as a ZIP file does.
bool isArchive(ByteView bytes);

/// The bytes of an archive; equal archives give equal bytes. nullopt with an error when the archive can't be
/// put together.
std::optional<std::vector<std::uint8_t>> writeArchive(const Archive& archive, std::string& error);

constexpr std::size_t kMaxUnfolded = std::size_t{1} << 30;

/// Reads an archive that any tool may have packed; other members are passed over. Anything may be in bytes:
/// what isn't a sound ZIP file, or unfolds to more bytes than allowed, gives nullopt and an error.
std::optional<Archive> readArchive(ByteView bytes, std::string& error,
                                   std::size_t maxUnfolded = kMaxUnfolded);

} // namespace vellor::program
