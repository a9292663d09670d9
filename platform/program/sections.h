#pragma once

// The file layout shared by binaries (.vlrbin) and assemblies (.vlrasm).
//
//   0  8 bytes  magic
//   8  u32      version
//  12  u32      CRC-32 of everything from byte 16 on
//  16  u64      size of the file
//  24  u32      number of programs
//  28  u32      number of sections
//  32           section table: u32 tag, u32 program, u64 offset, u64 size
//               sections, each at a multiple of 16, without gaps beyond the padding and in the table's order
//
// Every program has each of the sections once, in the order of Section. A section is a sequence of records
// that begins with their number; records are padded to four bytes. Records hold no offsets, only counts of
// what follows, so that nothing can be counted twice: what a file unfolds to is in proportion to its size.

#include "platform/program/bytes.h"
#include "platform/program/program.h"

#include <optional>
#include <string>
#include <vector>

namespace vellor::program {

/// Names one of the two kinds of files.
struct Container
{
    const char* magic; // 8 characters
    const char* name;  // for messages: "a binary"
    std::size_t maxPrograms;
};

constexpr std::size_t kMagicSize = 8;
constexpr std::uint32_t kFileVersion = 1;
constexpr Container kBinary{"VLRBIN\r\n", "a binary", 1};
constexpr Container kAssembly{"VLRASM\r\n", "an assembly", 1024};

bool hasMagic(ByteView bytes, const Container& container);

std::vector<std::uint8_t> writeContainer(const Container& container, const std::vector<Program>& programs);

/// Writes version, size and checksum into the header of a file that has at least a header.
void sealContainer(std::vector<std::uint8_t>& bytes);

/// The programs of a file, not yet checked by programchecker.h. Damage of any kind: nullopt, and error says
/// what.
std::optional<std::vector<Program>> readContainer(const Container& container, ByteView bytes,
                                                  std::string& error);

enum class Section : std::uint32_t
{
    Inputs,
    Values,
    Blobs,
    Nodes,
    Outputs,
    Count
};

void writeSection(Section section, const Program& program, ByteWriter& writer);
/// Fills one part of program; false when the bytes don't make up a whole section.
bool readSection(Section section, ByteView bytes, Program& program);

/// Bytes that are equal exactly when two records say the same. The name of a node doesn't count.
std::string recordKey(const ValueProgram& value);
std::string recordKey(const Node& node);

} // namespace vellor::program
