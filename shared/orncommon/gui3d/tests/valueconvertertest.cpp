#include "orncommon/gui3d/basetypeconverter.h"
#include "orncommon/gui3d/valueconvertermgr.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Orn::Gui3D;
using Orn::Module::ColorRGB;
using Orn::Module::ColorRGBA;
using Orn::Module::Type;
using Orn::Module::Value;

namespace {

template<class T> std::array<T, 2> two(T x, T y)
{
    return {x, y};
}

TEST(BaseTypeConverter, Rules)
{
    const float nan = std::nanf("");
    const std::array<float, 3> three{0.25f, -1.5f, 9.0f};
    const std::array<float, 4> four{0.25f, 0.5f, 0.75f, 0.125f};
    const struct
    {
        Value from;
        Value to;
    } rows[] = {
        {Value(nan), Value(true)},
        {Value(0.0), Value(false)},
        {Value(two(2, 0)), Value(two(true, false))},
        {Value(true), Value(1.0)},
        {Value(-2.75f), Value(-2)},
        {Value(1e20), Value(2147483647)},
        {Value(nan), Value(0)},
        {Value(0.5f), Value(std::array<double, 3>{0.5, 0.5, 0.5})},
        {Value(three), Value(std::array<int, 4>{0, -1, 9, 0})},
        {Value(three), Value(two(0.25f, -1.5f))},
        {Value(two(0.0f, 1.0f)), Value(0.0f)},
        {Value(two(0.0f, 1.0f)), Value(false)},
        {Value(two(false, true)), Value(true)},
        {Value(two(false, true)), Value(0)},
        {Value(0.5f), Value(ColorRGB{0.5f, 0.5f, 0.5f})},
        {Value(two(0.5f, 0.25f)), Value(ColorRGB{0.5f, 0.25f, 0.0f})},
        {Value(0.5f), Value(ColorRGBA{0.5f, 0.5f, 0.5f, 1.0f})},
        {Value(two(3, 4)), Value(ColorRGBA{3.0f, 4.0f, 0.0f, 1.0f})},
        {Value(four), Value(ColorRGBA{0.25f, 0.5f, 0.75f, 0.125f})},
        {Value(ColorRGB{0.25f, 0.5f, 0.75f}), Value(ColorRGBA{0.25f, 0.5f, 0.75f, 1.0f})},
        {Value(ColorRGBA{0.25f, 0.5f, 0.75f, 0.125f}), Value(four)},
        {Value(3u), Value(3u)},
        {Value(std::string("a")), Value(std::string("a"))},
    };
    const BaseTypeConverter converter;
    for (const auto& row : rows)
        EXPECT_EQ(converter.convert(row.from, row.to.type()), row.to)
            << row.from.toString() << " to " << row.to.toString();
}

TEST(BaseTypeConverter, NoWay)
{
    const BaseTypeConverter converter;
    EXPECT_FALSE(converter.convert(Value(3u), Type(Type::Int)).isValid());
    EXPECT_FALSE(converter.convert(Value(3), Type(Type::UInt)).isValid());
    EXPECT_FALSE(converter.convert(Value(1.0f), Type(Type::String)).isValid());
    EXPECT_FALSE(converter.convert(Value(1.0f), Type(Type::Matrix33)).isValid());
    EXPECT_FALSE(converter.convert(Value(std::vector<int>{1}), Type(Type::Int)).isValid());
    EXPECT_FALSE(converter.convert(Value(), Type(Type::Int)).isValid());
    EXPECT_FALSE(converter.convert(Value(1), Type()).isValid());
}

struct Constant : ValueConverter
{
    explicit Constant(Value result) : m_result(std::move(result)) {}
    Value convert(const Value&, const Type&) const override { return m_result; }
    const Value m_result;
};

TEST(ValueConverterMgr, TheFirstThatCanDoesIt)
{
    ValueConverterMgr mgr;
    EXPECT_FALSE(mgr.convert(Value(1), Type(Type::Float)).isValid());
    mgr.addConverter(std::make_unique<Constant>(Value()));
    mgr.addConverter(std::make_unique<BaseTypeConverter>());
    mgr.addConverter(std::make_unique<Constant>(Value(7)));
    EXPECT_EQ(mgr.convert(Value(1), Type(Type::Float)), Value(1.0f));
    EXPECT_EQ(mgr.convert(Value(1u), Type(Type::Float)), Value(7));
}

} // namespace
