#include "platform/nodes/surface/fourier.h"

#include "platform/nodes/scalar.h"

namespace vellor::nodes {

FourierPlan planFourier(int length)
{
    FourierPlan plan;
    plan.length = length;
    while (plan.steps < length)
        plan.steps *= 2;
    if (plan.steps != length) {
        plan.steps *= 2;
        for (int n = 0; n < length; ++n) {
            const std::int64_t square = std::int64_t(n) * n % (2 * length);
            const scalar::SinCos turn =
                scalar::sinCosOfTurns(static_cast<float>(square) / static_cast<float>(2 * length));
            plan.chirpRe.push_back(turn.cosine);
            plan.chirpIm.push_back(turn.sine);
        }
    }
    for (int i = 0; i < plan.steps / 2; ++i) {
        const scalar::SinCos turn =
            scalar::sinCosOfTurns(static_cast<float>(i) / static_cast<float>(plan.steps));
        plan.cosines.push_back(turn.cosine);
        plan.sines.push_back(turn.sine);
    }
    return plan;
}

} // namespace vellor::nodes
