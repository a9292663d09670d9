#pragma once

#include "platform/engines/cpu/hostimage.h"
#include "platform/program/program.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vellor::cpu {

/// The value of one input as the host pushed it.
struct InputValue
{
    program::Words words{};                     // numeric types
    std::shared_ptr<const std::u32string> text; // strings; never null there
    std::shared_ptr<const HostImage> image;     // images; null: none
    void* user = nullptr;                       // images: for the host's image-input callback
};

/// The values that a package's inputs have at one point of the queue, and what was changed since the last
/// generation.
class Inputs
{
public:
    /// All at their defaults.
    explicit Inputs(const program::Program& program);

    void set(std::uint32_t input, InputValue value);

    const InputValue& value(std::uint32_t input) const { return values_[input]; }
    /// Word c of input i at 4 * i + c.
    const std::vector<std::uint32_t>& words() const { return words_; }
    /// Grows with each change of the input's value; 1 at first.
    std::uint64_t serial(std::uint32_t input) const { return serials_[input]; }
    /// Inputs changed since the last call.
    std::vector<bool> takeChanged();

private:
    std::vector<InputValue> values_;
    std::vector<std::uint32_t> words_;
    std::vector<std::uint64_t> serials_;
    std::vector<bool> changed_;
    std::uint64_t lastSerial_ = 1;
};

} // namespace vellor::cpu
