#include "applications/player/description/visibility.h"

#include "applications/player/description/input.h"

namespace Zph::Applications::Player {

namespace {

QVariant component(const Input& input, int i)
{
    return isFloatType(input.type()) ? QVariant(input.value().floatAt(i)) : QVariant(input.value().intAt(i));
}

QVariant contextValue(const Input& input, bool toggle)
{
    const int count = componentCount(input.type());
    if (count == 1 && toggle)
        return component(input, 0).toFloat() != 0.0f;
    if (count == 1)
        return component(input, 0);
    static const QString names[] = {QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z"),
                                    QStringLiteral("w")};
    QVariantHash components;
    for (int i = 0; i < count; ++i)
        components.insert(names[i], component(input, i));
    return components;
}

} // namespace

void enterInput(QVariantHash& inputs, const Input& input, bool toggle)
{
    if (componentCount(input.type()) > 0)
        inputs.insert(input.identifier(), contextValue(input, toggle));
}

EvaluationContext visibilityContext(const QVariantHash& inputs)
{
    return {QVariantHash{{QStringLiteral("input"), inputs}}};
}

bool isVisible(const EvaluationContext& context, const QString& condition)
{
    if (condition.isEmpty())
        return true;
    const Evaluation result = evaluate(context, condition);
    return result.failed || result.value.toFloat() != 0.0f;
}

} // namespace Zph::Applications::Player
