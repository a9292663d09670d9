#include "platform/engines/cpu/inputs.h"

#include <algorithm>
#include <utility>

namespace vellor::cpu {
namespace {

bool sameText(const std::shared_ptr<const std::u32string>& a, const std::shared_ptr<const std::u32string>& b)
{
    return a == b || (a && b && *a == *b);
}

bool sameImage(const std::shared_ptr<const HostImage>& a, const std::shared_ptr<const HostImage>& b)
{
    return a == b || (a && b && a->key() == b->key());
}

} // namespace

Inputs::Inputs(const program::Program& program)
    : values_(program.inputs.size()), words_(4 * program.inputs.size()), serials_(program.inputs.size(), 1),
      changed_(program.inputs.size(), false)
{
    for (std::size_t i = 0; i < values_.size(); ++i) {
        values_[i].words = program.inputs[i].defaultValue;
        if (program.inputs[i].type == program::ValueType::String)
            values_[i].text = std::make_shared<std::u32string>(program.inputs[i].defaultText);
        std::copy(values_[i].words.begin(), values_[i].words.end(),
                  words_.begin() + 4 * static_cast<std::ptrdiff_t>(i));
    }
}

void Inputs::set(std::uint32_t input, InputValue value)
{
    InputValue& old = values_[input];
    // A picture with user data may be another one next time that the host is asked, so it counts as changed.
    const bool same = old.words == value.words && sameText(old.text, value.text) &&
                      sameImage(old.image, value.image) && !old.user && !value.user;
    old = std::move(value);
    if (same)
        return;
    std::copy(old.words.begin(), old.words.end(), words_.begin() + 4 * static_cast<std::ptrdiff_t>(input));
    serials_[input] = ++lastSerial_;
    changed_[input] = true;
}

std::vector<bool> Inputs::takeChanged()
{
    return std::exchange(changed_, std::vector<bool>(values_.size(), false));
}

} // namespace vellor::cpu
