#include "platform/nodes/curve.h"
#include "platform/nodes/gradient.h"
#include "platform/nodes/powertable.h"
#include "platform/nodes/scalar.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>

namespace vellor::nodes {

namespace {

struct FunctionCase
{
    const char* name;
    std::function<float(float)> ours;
    std::function<double(double)> exact;
    double low, high;
    double absolute, relative; // the error may be the sum of both
};

} // namespace

TEST(Math, ErrorsStayWithinWhatIsStated)
{
    using namespace scalar;
    const double ulp = std::ldexp(1.0, -23);
    const FunctionCase cases[] = {
        {"exp2", exp2Of, [](double x) { return std::exp2(x); }, -125, 127, 0, 2 * ulp},
        {"exp", expOf, [](double x) { return std::exp(x); }, -10, 10, 0, 2 * ulp + 10e-7},
        {"log2", log2Of, [](double x) { return std::log2(x); }, 1e-6, 100, 2e-7, 2 * ulp},
        {"log", logOf, [](double x) { return std::log(x); }, 1e-6, 100, 2e-7, 2 * ulp},
        {"sin", sinOf, [](double x) { return std::sin(x); }, -100, 100, 3e-7, 0},
        {"cos", cosOf, [](double x) { return std::cos(x); }, -4000, 4000, 3e-7, 0},
        {"tan", tanOf, [](double x) { return std::tan(x); }, -1.5, 1.5, 0, 5e-6},
        {"asin", asinOf, [](double x) { return std::asin(x); }, -1, 1, 6e-7, 0},
        {"acos", acosOf, [](double x) { return std::acos(x); }, -1, 1, 6e-7, 0},
        {"atan", atanOf, [](double x) { return std::atan(x); }, -50, 50, 4e-7, 0},
        {"sin of turns", [](float x) { return sinCosOfTurns(x).sine; },
         [](double x) { return std::sin(2.0 * 3.14159265358979323846 * x); }, -3, 3, 2e-7, 0},
    };
    for (const FunctionCase& row : cases) {
        double worst = 0.0;
        for (int i = 0; i <= 200000; ++i) {
            const auto x = static_cast<float>(row.low + (row.high - row.low) * i / 200000.0);
            const double exact = row.exact(x), error = std::fabs(row.ours(x) - exact);
            worst = std::max(worst, error / (row.absolute + row.relative * std::fabs(exact) + 1e-300));
        }
        EXPECT_LE(worst, 1.0) << row.name;
    }
}

TEST(Math, PowersStayWithinTwoUlpAndTheExponent)
{
    for (const float y : {0.1f, 1 / 2.4f, 1 / 2.2f, 1.0f, 2.2f, 2.4f, 10.0f, -1.5f, 30.0f}) {
        double worst = 0.0;
        for (int i = 0; i <= 400000; ++i) {
            const auto x = static_cast<float>(std::exp2(-20.0 + 26.0 * i / 400000.0));
            const double exact = std::pow(double(x), double(y));
            if (exact < std::ldexp(1.0, -126) || exact > std::ldexp(1.0, 127))
                continue;
            const double ulp = std::ldexp(1.0, std::ilogb(exact) - 23);
            worst = std::max(worst, std::fabs(scalar::powOf(x, y) - exact) / ulp);
        }
        EXPECT_LE(worst, 2.0 + std::fabs(y)) << y;
    }
}

TEST(Math, TabledPowersStayWithinFourUlp)
{
    for (const float y : {0.05f, 1 / 2.4f, 1 / 2.2f, 0.9f, 1.8f, 2.2f, 2.4f, 3.2f}) {
        const PowerTable table(y);
        ASSERT_TRUE(table.exact);
        double worst = 0.0;
        for (int i = 0; i <= 400000; ++i) {
            const auto x = static_cast<float>(std::exp2(-30.0 + 36.0 * i / 400000.0));
            const double exact = std::pow(double(x), double(y));
            if (exact < std::ldexp(1.0, -126))
                continue;
            // As the kernels put it together.
            const std::uint32_t bits = scalar::bitsOf(x);
            const float t = scalar::floatOfBits((bits & 0x7fffffu) | 0x3f800000u) - 1.0f;
            float p = 0.0f;
            for (int k = PowerTable::kDegree; k >= 0; --k)
                p = p * t + table.coefficients[k];
            worst = std::max(worst, std::fabs(p * table.scales[bits >> 23] - exact) /
                                        std::ldexp(1.0, std::ilogb(exact) - 23));
        }
        EXPECT_LE(worst, 4.0) << y;
    }
    EXPECT_EQ(PowerTable(2.2f).scales[127], 1.0f);
    EXPECT_LT(PowerTable(3.2f).scales[255], std::numeric_limits<float>::infinity());
    EXPECT_FALSE(PowerTable(10.0f).exact);
}

TEST(Math, SpecialValues)
{
    using namespace scalar;
    EXPECT_EQ(exp2Of(10.0f), 1024.0f);
    EXPECT_LT(exp2Of(1000.0f), std::numeric_limits<float>::infinity());
    EXPECT_LT(powOf(1e30f, 1e30f), std::numeric_limits<float>::infinity());
    EXPECT_EQ(powOf(0.5f, 1e6f), 0.0f);
    EXPECT_EQ(exp2Of(-300.0f), 0.0f);
    EXPECT_EQ(log2Of(8.0f), 3.0f);
    EXPECT_EQ(log2Of(0.0f), -126.0f);
    EXPECT_EQ(powOf(0.0f, 2.0f), 0.0f);
    EXPECT_EQ(powOf(0.0f, 0.0f), 1.0f);
    EXPECT_FLOAT_EQ(powOf(-2.0f, 3.0f), -8.0f);
    EXPECT_EQ(powOf(-2.0f, 0.5f), 0.0f);
    EXPECT_EQ(sinCosOfTurns(0.25f).sine, 1.0f);
    EXPECT_EQ(sinCosOfTurns(0.25f).cosine, 0.0f);
    EXPECT_EQ(atan2Of(0.0f, 0.0f), 0.0f);
    EXPECT_FLOAT_EQ(atan2Of(-1.0f, -1.0f), -2.35619449f);
    EXPECT_EQ(modOf(-1.0f, 3.0f), 2.0f);
    EXPECT_EQ(modOf(5.0f, 0.0f), 0.0f);
}

TEST(Math, HashIsEven)
{
    int buckets[16] = {};
    for (std::uint32_t y = 0; y < 256; ++y)
        for (std::uint32_t x = 0; x < 256; ++x)
            ++buckets[static_cast<int>(scalar::unitOf(scalar::hashLattice(x, y, 7)) * 16.0f)];
    double chi = 0.0;
    for (const int count : buckets)
        chi += (count - 4096.0) * (count - 4096.0) / 4096.0;
    EXPECT_LT(chi, 37.7); // 15 degrees of freedom, one chance in a thousand
}

TEST(Curve, PassesThroughKeysAndIsMonotoneBetween)
{
    const Curve curve({{0.0f, 0.1f}, {0.2f, 0.15f}, {0.25f, 0.9f}, {0.7f, 0.9f}, {1.0f, 0.2f}});
    EXPECT_FLOAT_EQ(curve.at(0.0f), 0.1f);
    EXPECT_FLOAT_EQ(curve.at(0.2f), 0.15f);
    EXPECT_FLOAT_EQ(curve.at(0.25f), 0.9f);
    EXPECT_FLOAT_EQ(curve.at(-5.0f), 0.1f);
    EXPECT_FLOAT_EQ(curve.at(5.0f), 0.2f);
    for (int i = 0; i < 1000; ++i) {
        const float x = static_cast<float>(i) / 1000.0f, step = curve.at(x + 0.001f) - curve.at(x);
        const bool rises = x + 0.001f <= 0.25f, level = x >= 0.25f && x + 0.001f <= 0.7f, falls = x >= 0.7f;
        EXPECT_TRUE(!rises || step >= -1e-6f) << x;
        EXPECT_TRUE(!level || std::fabs(step) <= 1e-6f) << x;
        EXPECT_TRUE(!falls || step <= 1e-6f) << x;
    }
}

TEST(Curve, OddBlobsAreServed)
{
    EXPECT_FLOAT_EQ(Curve::fromBlob(nullptr, 0).at(0.3f), 0.3f);
    const float unsorted[] = {1.0f, 0.5f, 0.0f, 0.25f, std::numeric_limits<float>::quiet_NaN(), 7.0f, 9.0f};
    std::uint8_t bytes[sizeof unsorted];
    std::memcpy(bytes, unsorted, sizeof unsorted);
    const Curve curve = Curve::fromBlob(bytes, sizeof bytes); // the last float has no partner
    EXPECT_FLOAT_EQ(curve.at(0.0f), 0.25f);
    EXPECT_FLOAT_EQ(curve.at(1.0f), 0.5f);
}

TEST(Gradient, InterpolatesAndJumps)
{
    const Gradient gradient(
        {{0.5f, {1, 0, 0, 1}}, {0.5f, {0, 0, 1, 1}}, {0.0f, {0, 0, 0, 0}}, {1.0f, {0, 0, 1, 0}}});
    EXPECT_FLOAT_EQ(gradient.at(0.25f)[0], 0.5f);
    EXPECT_FLOAT_EQ(gradient.at(0.25f)[3], 0.5f);
    EXPECT_FLOAT_EQ(gradient.at(0.5f)[2], 1.0f);
    EXPECT_FLOAT_EQ(gradient.at(0.75f)[3], 0.5f);
    EXPECT_FLOAT_EQ(gradient.at(-1.0f)[3], 0.0f);
}

} // namespace vellor::nodes
