#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vellor::cooker {

/// A PNG file as the blob of a picture: grey without alpha stays one channel, everything else becomes red,
/// green, blue and alpha; 16 bits stay, fewer become 8. Empty after an error, which is told in words that go
/// behind a colon. Memory is taken only for what a file of this length can hold.
std::vector<std::uint8_t> pictureOfPng(const std::string& bytes, std::string& error);

} // namespace vellor::cooker
