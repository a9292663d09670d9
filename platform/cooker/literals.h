#pragma once

// What authors write into attributes: numbers, colours, type names, picture formats.

#include "platform/cooker/package.h"

#include <optional>
#include <string>
#include <vector>

namespace vellor::cooker {

std::string trimmed(const std::string& text);
/// The parts between commas, trimmed.
std::vector<std::string> splitList(const std::string& text);

/// A finite number that a float can hold. The whole text must be one.
std::optional<float> parseFloat(const std::string& text);
/// A 32-bit integer, signed or unsigned, decimal or with 0x. The whole text must be one.
std::optional<std::int32_t> parseInt(const std::string& text);
/// "#rrggbb" or "#rrggbbaa", as red, green, blue, alpha from 0 to 1.
std::optional<std::array<float, 4>> parseHexColor(const std::string& text);
/// A colour by hexadecimal digits or as three or four numbers.
std::optional<std::array<float, 4>> parseColor(const std::string& text);

/// A value of a numeric type: as many numbers as the type has components, or one number for all of them.
/// Float3 and Float4 take colours too. "on", "off", "true" and "false" are integers 1 and 0.
std::optional<program::Words> parseWords(program::ValueType type, const std::string& text);
/// What parseWords takes, for messages: "3 numbers separated by commas".
std::string expectedWords(program::ValueType type);
/// The components joined by ",", floats in the shortest form that reads back the same.
std::string printWords(program::ValueType type, const program::Words& words);
std::string printFloat(float value);

std::optional<InputType> parseInputType(const std::string& name);
std::string typeName(program::ValueType type);
const std::vector<std::string>& inputTypeNames();

struct PictureFormat
{
    std::uint8_t code = 0; // the engine interface's format byte
    bool grey = false;
};
/// "grey8", "rgb16", "rgba32f-srgb", ...
std::optional<PictureFormat> parseFormat(const std::string& name);
std::vector<std::string> formatNames();

/// True for a name of letters, digits and "_", not beginning with a digit, of at most 256 characters.
bool isName(const std::string& text);
/// True when text is well-formed UTF-8 without zeros; otherwise offset is where it goes wrong.
bool isUtf8(const std::string& text, std::size_t& offset);
/// The characters of well-formed UTF-8.
std::u32string toUtf32(const std::string& text);

} // namespace vellor::cooker
