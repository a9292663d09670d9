#pragma once

#include "applications/player/description/expression.h"

namespace Zph::Applications::Player {

class Input;

// Enters an input into the dictionary that the conditions of its graph read, under its identifier: a boolean
// for a single-component toggle, a number for other single components, or a dictionary of "x", "y", "z" and
// "w". Images, texts and unknown types are left out.
void enterInput(QVariantHash& inputs, const Input& input, bool toggle);

// The context of one graph's conditions.
EvaluationContext visibilityContext(const QVariantHash& inputs);

// Whether a condition shows what it stands at. An empty one does, and so does one that fails.
bool isVisible(const EvaluationContext& context, const QString& condition);

} // namespace Zph::Applications::Player
