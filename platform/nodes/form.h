#pragma once

#include "platform/nodes/node.h"

namespace vellor::nodes {

/// The form of a kind that serves one evaluation best. A kind with an area kernel may have a point kernel too, for
/// parameters by which it reads nothing but the pixel's own place: it then runs within chains. Results are the same.
/// The declaration given where there is no other; lives as long as the program. Any thread.
const NodeDeclaration& formFor(const NodeDeclaration& kind, const ParameterValue* parameters);

} // namespace vellor::nodes
