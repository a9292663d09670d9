#include "benchmarks/pictures/testpicture.h"

#include "orncommon/image/surfaceoperations.h"

#include <chrono>
#include <cmath>

using namespace Orn::Surfaces;

QSharedPointer<Surface> testPicture(PixelFormat format)
{
    Surface picture(SurfaceDescription(kSide, kSide, RGBA32F));
    std::uint32_t random = 1;
    for (unsigned y = 0; y < kSide; ++y) {
        auto* pixel = reinterpret_cast<float*>(picture.row(y));
        const float down = std::sin(float(y) * 0.011f);
        for (unsigned x = 0; x < kSide; ++x, pixel += 4) {
            random = random * 1664525u + 1013904223u;
            const float grain = float(random >> 24) / 6000.0f;
            for (unsigned c = 0; c < 3; ++c)
                pixel[c] = 0.5f + 0.2f * down + 0.2f * std::sin(float(x) * 0.007f + float(c)) + grain;
            pixel[3] = 1.0f;
        }
    }
    QSharedPointer<Surface> converted;
    const ConversionParameters opaque{255};
    Orn::Image::Core::convertTo(picture, converted, format, &opaque);
    return converted;
}

void registerPair(const std::string& name, const std::string& rival, std::optional<double> aim,
                  std::function<Pair()> make)
{
    const auto measure = [=](benchmark::State& state) {
        const Pair pair = make();
        pair.theirs();
        pair.ours();
        Comparison comparison(state, rival);
        using Clock = std::chrono::steady_clock;
        const auto end = Clock::now() + std::chrono::seconds(2);
        for (auto whole : state)
            for (int turn = 0; turn < 3 || (turn < 15 && Clock::now() < end); ++turn) {
                const Span beside = Comparison::time(pair.theirs);
                comparison.add(Comparison::time(pair.ours), beside);
            }
        if (aim)
            state.counters["aim"] = -*aim;
    };
    benchmark::RegisterBenchmark(name.c_str(), measure)->Iterations(1)->UseManualTime();
}
