#pragma once

// What the fuzz targets call, one function for each kind of file. Each takes anything and must come back; a
// result that breaks a promise (a cooked package that does not link, say) ends the process.

#include <cstddef>
#include <cstdint>

namespace vellor::fuzz {

void authoring(const std::uint8_t* data, std::size_t size);
void picture(const std::uint8_t* data, std::size_t size); // a PNG file that a package embeds
void assembly(const std::uint8_t* data, std::size_t size);
void archive(const std::uint8_t* data, std::size_t size);
void binary(const std::uint8_t* data, std::size_t size);
void preset(const std::uint8_t* data, std::size_t size);
void metadata(const std::uint8_t* data, std::size_t size);  // a bitmap with a record at its end, or a record
void engine(const std::uint8_t* data, std::size_t size);    // bytes that decide about a graph and its host
void dds(const std::uint8_t* data, std::size_t size);       // a DDS file, without the libraries behind it
void imagefile(const std::uint8_t* data, std::size_t size); // a byte for the format, then a file of it

struct Target
{
    const char* name; // of the folder with its regression inputs, too
    void (*run)(const std::uint8_t*, std::size_t);
};

constexpr Target kTargets[] = {{"authoring", authoring}, {"picture", picture},   {"assembly", assembly},
                               {"archive", archive},     {"binary", binary},     {"engine", engine},
                               {"preset", preset},       {"metadata", metadata}, {"dds", dds},
                               {"imagefile", imagefile}};

} // namespace vellor::fuzz
