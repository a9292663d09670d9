#pragma once

#include "platform/engines/cpu/hash.h"
#include "platform/engines/cpu/image.h"
#include "platform/program/program.h"

#include <memory>

namespace vellor::cpu {

/// The last result of one output, for the host to fetch.
struct Result
{
    bool available = false;
    program::Words words{}; // numeric outputs
    Key key;                // image outputs: of the picture in the store
    std::shared_ptr<const Image>
        image; // set while the output-complete callback runs, so that it can't be evicted
};

} // namespace vellor::cpu
