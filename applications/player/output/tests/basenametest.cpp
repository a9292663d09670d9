#include "applications/player/output/basename.h"

#include <gtest/gtest.h>

using namespace Zph::Applications::Player;

namespace {

BaseNameSource source()
{
    return {"walls/brick", "Base Color", 0xbeef, "rgb:basecolor|opacity", "Old Wall"};
}

} // namespace

TEST(BaseName, TokensAndFrames)
{
    struct Row
    {
        const char* pattern;
        std::optional<int> frame;
        const char* name;
    };
    const Row rows[] = {
        {"%O", {}, "Base_Color"},
        {"%G_%O", {}, "brick_Base_Color"},
        {"%P-%G", {}, "walls_brick"},
        {"%F", {}, "walls_brick"},
        {"x%Iy", {}, "x0000BEEFy"},
        {"%U", {}, "opacity"},
        {"%R.%U", {}, "Old_Wall_opacity"},
        {"%X%", {}, "_X_"},
        {"%O_####", {}, "Base_Color"},
        {"a#b_##c", {}, "abc"},
        {"####", {}, "0000BEEF"},
        {"%O_####", 7, "Base_Color_0007"},
        {"%O", 7, "Base_Color_0007"},
        {"##_x", 7, "07_x"},
        {"##_x", 1234, "1234_x"},
        {"##_x_#", 7, "007_x"},
        {"#", 0, "0"},
        {"#", -3, "0"},
        {"caf\xc3\xa9/..", {}, "caf____"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(baseName(QString::fromUtf8(row.pattern), source(), row.frame).toStdString(), row.name)
            << row.pattern;
}

TEST(BaseName, LabelsComeApart)
{
    struct Row
    {
        const char* label;
        const char* path;
        const char* name;
    };
    const Row rows[] = {
        {"pkg://wall - 'Base Color' (id:basecolor)", "wall", "Base Color"},
        {"pkg://a b/c - height", "ab/c", "height"},
        {"pkg://wall - one - two (id:x)", "wall", "one - two"},
        {" - index:0 uid:7", "", "index:0 uid:7"},
    };
    for (const Row& row : rows) {
        const BaseNameSource parts = baseNameSource(row.label, 1, {}, {});
        EXPECT_EQ(parts.path.toStdString(), row.path);
        EXPECT_EQ(parts.name.toStdString(), row.name);
    }
    PackageOutput output;
    output.graphKey = "pkg://wall";
    output.identifier = "basecolor";
    output.label = "Base Color";
    EXPECT_EQ(exportLabel(output).toStdString(), rows[0].label);
    output.label = "basecolor";
    EXPECT_EQ(exportLabel(output).toStdString(), "pkg://wall - basecolor");
}

TEST(BaseName, NamesOfOneExportDiffer)
{
    BaseNames names(" %O ", "unused");
    EXPECT_EQ(names.next(source(), {}), "Base_Color");
    EXPECT_EQ(names.next(source(), {}), "Base_Color[2]");
    EXPECT_EQ(names.next(source(), {}), "Base_Color[3]");
    EXPECT_EQ(names.next(source(), 1), "Base_Color_0001");
    EXPECT_EQ(BaseNames("  ", "%G").next(source(), {}), "brick");
}

TEST(BaseName, DefaultPattern)
{
    QDomDocument one, two;
    ASSERT_TRUE(one.setContent(
        QByteArray("<d><graphs><graph pkgurl='pkg://w/a'/><graph pkgurl='pkg://w/b'/></graphs></d>")));
    ASSERT_TRUE(two.setContent(
        QByteArray("<d><graphs><graph pkgurl='pkg://a'/><graph pkgurl='pkg://b'/></graphs></d>")));
    EXPECT_EQ(defaultBaseNamePattern(PackageModel({}, {}, one), false), "%G_%O");
    EXPECT_EQ(defaultBaseNamePattern(PackageModel({}, {}, two), true), "%F_%O_####");
}
