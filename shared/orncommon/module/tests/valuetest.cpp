#include "orncommon/module/value.h"
#include "orncommon/module/matrix.h"
#include "orncommon/module/struct.h"
#include "orncommon/module/typemetacustom.h"
#include "orncommon/module/valueserializer.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>

using namespace Orn::Module;

namespace {

std::shared_ptr<const EnumDesc> projections()
{
    return std::make_shared<const EnumDesc>(
        "projection_type_enum",
        std::vector<EnumDesc::Item>{{4, "perspective", "Perspective"}, {7, "orthographic", "Orthographic"}});
}

struct Opaque
{
    int number = 3;
    friend bool operator==(const Opaque& a, const Opaque& b) { return a.number == b.number; }
};

struct OtherMeta : Type::TypeMetaCustom<Opaque>
{
    using TypeMetaCustom::TypeMetaCustom;
};

Type listOf(const char* item, std::size_t size)
{
    return Type::sCreateList(Type::sFromName(item), size);
}

} // namespace

TEST(Type, CodesNamesAndComponents)
{
    const struct
    {
        const char* name;
        std::uint32_t code;
        std::size_t size;
        const char* item;
    } rows[] = {{"void", 1, 1, "void"},        {"bool", 2, 1, "bool"},       {"bool4", 5, 4, "bool"},
                {"int", 6, 1, "int"},          {"int3", 8, 3, "int"},        {"uint", 10, 1, "uint"},
                {"uint2", 11, 2, "uint"},      {"float", 14, 1, "float"},    {"float4", 17, 4, "float"},
                {"double", 18, 1, "double"},   {"double3", 20, 3, "double"}, {"ColorRGB", 22, 3, "float"},
                {"ColorRGBA", 23, 4, "float"}, {"Matrix3f", 24, 9, "float"}, {"Transform", 25, 12, "float"},
                {"string", 26, 1, "string"},   {"Plugin", 27, 1, "Plugin"}};
    for (const auto& row : rows) {
        const Type type = Type::sFromName(row.name);
        EXPECT_EQ(type.code(), row.code) << row.name;
        EXPECT_EQ(type.name(), row.name);
        EXPECT_EQ(type.getCompoundSize(), row.size) << row.name;
        EXPECT_EQ(type.getCompoundItemType().name(), row.item) << row.name;
    }
    for (const char* name : {"", "list", "custom", "Float"})
        EXPECT_FALSE(Type::sFromName(name).isValid()) << name;
    EXPECT_FALSE(Type(28).isValid());
    // The classes that outputs of an engine arrive in.
    EXPECT_EQ(plainTypeOf<float>().code(), 14u);
    EXPECT_EQ((plainTypeOf<std::array<float, 4>>().code()), 17u);
    EXPECT_EQ((plainTypeOf<std::array<int, 4>>().code()), 9u);
}

TEST(Type, Equality)
{
    const Type custom = Type::sCreateCustom(std::make_shared<Type::TypeMetaCustom<Opaque>>("a"));
    const struct
    {
        Type a, b;
        bool equal;
    } rows[] = {{Type(14), Type(14), true},
                {Type(14), Type(14, 1), false},
                {Type(14), Type(15), false},
                {listOf("int", 2), listOf("int", 2), true},
                {listOf("int", 2), listOf("int", 3), false},
                {listOf("int", 2), listOf("uint", 2), false},
                {Type(projections()), Type(projections()), true},
                {Type(projections()),
                 Type(std::make_shared<const EnumDesc>("e", std::vector<EnumDesc::Item>())), false},
                {custom, Type::sCreateCustom(std::make_shared<Type::TypeMetaCustom<Opaque>>("b")), true},
                {custom, Type::sCreateCustom(std::make_shared<OtherMeta>("a")), false}};
    int number = 0;
    for (const auto& row : rows) {
        ++number;
        EXPECT_EQ(row.a == row.b, row.equal) << number;
        EXPECT_EQ(row.b == row.a, row.equal) << number;
    }
}

TEST(Value, Equality)
{
    const auto plugin = std::make_shared<Plugin>();
    const struct
    {
        Value a, b;
        bool equal;
    } rows[] = {{Value(), Value(), true},
                {Value(), Value(0), false},
                {Value(0), Value(), false},
                {1, 1, true},
                {1, 1u, false},
                {1.0f, 1.0, false},
                {std::nanf(""), std::nanf(""), false},
                {0.0f, -0.0f, true},
                {std::string("a\0b", 3), std::string("a\0b", 3), true},
                {std::string("a\0b", 3), std::string("a"), false},
                {std::array<float, 2>{1, 2}, std::array<float, 2>{1, 2}, true},
                {ColorRGB{1, 2, 3}, std::array<float, 3>{1, 2, 3}, false},
                {std::vector<int>{1, 2}, std::vector<int>{1, 2}, true},
                {std::vector<int>{1, 2}, std::vector<int>{1, 3}, false},
                {std::vector<int>{1, 2}, std::vector<int>{1}, false},
                {plugin, plugin, true},
                {plugin, std::make_shared<Plugin>(), false},
                {Enum(projections()), Enum(projections(), 4), true},
                {Enum(projections()), Enum(projections(), 7), false}};
    int number = 0;
    for (const auto& row : rows)
        EXPECT_EQ(row.a == row.b, row.equal) << ++number;
    const Value nan = std::nanf("");
    EXPECT_FALSE(nan == nan);
    EXPECT_TRUE(Value::DataVoid() == Value::DataT<int>(Type(Type::Void), 5));
    EXPECT_FALSE(Value::DataVoid() == Value::DataT<int>(5));
    EXPECT_FALSE(Value::DataT<int>(Type(Type::Int, 1), 5) == Value::DataT<int>(5));
}

TEST(Value, DefaultRecords)
{
    const struct
    {
        Type type;
        Value expected; // invalid where there is no record
    } rows[] = {{Type(), Value()},
                {Type(Type::Bool + 1), std::array<bool, 2>{}},
                {Type(Type::UInt), 0u},
                {Type(Type::Double + 3), std::array<double, 4>{}},
                {Type(Type::ColorRgba), ColorRGBA{0, 0, 0, 0}},
                {Type(Type::AffineTransform), Transform()},
                {Type(Type::String), std::string()},
                {Type(projections()), Enum(projections(), 4)},
                {listOf("float3", 0), std::vector<std::array<float, 3>>()},
                {listOf("bool", 0), std::vector<bool>()},
                {Type::sCreateList(listOf("int", 1), 1), Value()},
                {Type::sCreateList(Type(projections()), 1), Value()},
                {Type::sCreateList(Type(), 1), Value()}};
    int number = 0;
    for (const auto& row : rows)
        EXPECT_TRUE(Value(Value::createData(row.type)) == row.expected) << ++number;
    EXPECT_EQ(Value::createData(Type(Type::Void))->type().code(), 1u);
    const Type ofValues = Type::sCreateList(Type(Type::Void), 0);
    EXPECT_TRUE(dynamic_cast<Value::DataT<std::vector<Value>>*>(Value::createData(ofValues).get()));
    EXPECT_TRUE(Value(Value::createListData(listOf("int", 3), 7)) == Value(std::vector<int>{7, 7, 7}));
    const Value custom(
        Value::createData(Type::sCreateCustom(std::make_shared<Type::TypeMetaCustom<Opaque>>("opaque"))));
    ASSERT_TRUE(custom.get<Opaque>());
    EXPECT_EQ(custom.get<Opaque>()->number, 3);
    EXPECT_EQ(custom.type().name(), "opaque");
}

TEST(Value, TextBothWays)
{
    const struct
    {
        Value value;
        const char* text;
    } rows[] = {{true, "bool(true)"},
                {std::array<bool, 2>{false, true}, "bool2(false,true)"},
                {INT_MIN, "int(-2147483648)"},
                {4294967295u, "uint(4294967295)"},
                {0.1f, "float(0.1)"},
                {0.1, "double(0.1)"},
                {double(0.1f), "double(0.10000000149011612)"},
                {FLT_MAX, "float(3.4028235e+38)"},
                {-HUGE_VALF, "float(-inf)"},
                {std::array<float, 3>{1, -2.5f, 0}, "float3(1,-2.5,0)"},
                {ColorRGBA{0.25f, 0.5f, 0.75f, 1}, "ColorRGBA(0.25,0.5,0.75,1)"},
                {Matrix3f{{1, 2, 3, 4, 5, 6, 7, 8, 9}}, "Matrix3f(1,2,3,4,5,6,7,8,9)"},
                {Transform{{{1, 0, 0, 0, 1, 0, 0, 0, 1}}, {7, 8, 9}}, "Transform(1,0,0,0,1,0,0,0,1,7,8,9)"},
                {std::string("a, (b) \"c\""), "string(a, (b) \"c\")"},
                {std::string(), "string()"},
                {Enum(projections(), 7), "enum(orthographic)"},
                {std::vector<int>{}, "list()"},
                {std::vector<bool>{true, false}, "list(true,false)"},
                {std::vector<std::array<int, 2>>{{1, 2}, {3, 4}}, "list(1,2,3,4)"},
                {std::vector<std::string>{"a,b", "", "\"\\)"}, "list(\"a,b\",\"\",\"\\\"\\\\)\")"}};
    for (const auto& row : rows) {
        bool ok = false;
        EXPECT_EQ(row.value.toString(&ok), row.text);
        EXPECT_TRUE(ok) << row.text;
        EXPECT_TRUE(Value::sFromString(row.text, row.value.type(), &ok) == row.value) << row.text;
        EXPECT_TRUE(ok) << row.text;
    }
    EXPECT_EQ(Value(ColorRGB{1, 2, 3}).toString(nullptr, false), "1,2,3");
    for (const Value& value : {Value(), Value(std::make_shared<Plugin>()), Value(Enum(projections(), 5))}) {
        bool ok = true;
        EXPECT_EQ(value.toString(&ok), "");
        EXPECT_FALSE(ok);
    }
}

TEST(Value, ReadsLooselyButOnlyItsOwnType)
{
    const struct
    {
        Type type;
        const char* text; // bare
        Value expected;   // invalid where it is refused
    } rows[] = {{Type(Type::Float + 2), " 1 , +2.5,\t3e0 ", std::array<float, 3>{1, 2.5f, 3}},
                {Type(Type::Bool + 1), "1,0", std::array<bool, 2>{true, false}},
                {Type(Type::Float + 2), "1,2", Value()},
                {Type(Type::Float + 2), "1,2,3,4", Value()},
                {Type(Type::Float + 2), "1,2,3,", Value()},
                {Type(Type::Float + 1), "1,,2", Value()},
                {Type(Type::Float), "", Value()},
                {Type(Type::Float), "1x", Value()},
                {Type(Type::Float), "1e99", Value()},
                {Type(Type::Float), "+-1", Value()},
                {Type(Type::Int), "1.5", Value()},
                {Type(Type::Int), "2147483648", Value()},
                {Type(Type::UInt), "-1", Value()},
                {Type(Type::Bool), "yes", Value()},
                {Type(Type::PluginPtr), "x", Value()},
                {Type(projections()), "Perspective", Value()},
                {listOf("int", 2), "1,2,3", Value()},
                {listOf("int2", 2), "1,2,3", Value()},
                {listOf("string", 1), "\"open", Value()},
                {listOf("string", 1), "\"open\\", Value()},
                {listOf("string", 1), "\"a\" b", Value()},
                {listOf("string", 1), "bare", Value()},
                {Type(), "", Value()}};
    for (const auto& row : rows) {
        bool ok = !row.expected.isValid();
        const std::string text = ValueSerializer::sToTypedValueStr(row.type.name(), row.text);
        EXPECT_TRUE(Value::sFromString(text, row.type, &ok) == row.expected) << text;
        EXPECT_EQ(ok, row.expected.isValid()) << text;
    }
    for (const char* text : {"1", "int(1)", "float(1", "float1)", "float2(1)", "float"})
        EXPECT_FALSE(Value::sFromString(text, Type(Type::Float)).isValid()) << text;
}

TEST(Value, CopiesShareNothing)
{
    const auto point = std::make_shared<const StructDesc>(
        "point", std::vector<StructDesc::Member>{{"x", Type(Type::Float)}, {"name", Type(Type::String)}});
    Struct first(point);
    const Struct untouched(first);
    EXPECT_TRUE(first.setMember("x", 2.0f));
    EXPECT_FALSE(first.setMember("x", 2));
    EXPECT_FALSE(first.setMember("y", 2.0f));
    EXPECT_EQ(*first.member("x")->get<float>(), 2.0f);
    EXPECT_EQ(*untouched.member("x")->get<float>(), 0.0f);
    EXPECT_FALSE(first == untouched);
    EXPECT_TRUE(Struct(first) == first);

    const auto grid = std::make_shared<const MatrixDesc>("grid", Type(Type::Int), 2, 3);
    Matrix cells(grid);
    const Matrix blank(cells);
    EXPECT_TRUE(cells.setCell(1, 2, Value::DataT<int>(5)));
    EXPECT_FALSE(cells.setCell(2, 0, Value::DataT<int>(5)));
    EXPECT_FALSE(cells.setCell(0, 0, Value::DataT<float>(5)));
    EXPECT_TRUE(*cells.cell(1, 2) == Value::DataT<int>(5));
    EXPECT_TRUE(*blank.cell(1, 2) == Value::DataT<int>(0));
    EXPECT_FALSE(cells == blank);
    EXPECT_EQ(Type(grid).getCompoundSize(), 6u);

    const Value value(Value::createData(Type(point)));
    EXPECT_TRUE(Value(value) == value);
    EXPECT_NE(Value(value).data(), value.data());
}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
