#include "applications/player/packing/packingtemplatefile.h"
#include "applications/player/packing/packingtemplates.h"
#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Zph::Applications::Player;

namespace {

class PackingTemplateTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        auto& manager = Orn::Image::Codec::SurfaceCodecManager::instance();
        if (manager.getWritableFormats().empty())
            Orn::Image::Codec::registerDefaultCodecs(manager);
    }
};

void write(const QString& path, const QByteArray& text)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
}

} // namespace

TEST_F(PackingTemplateTest, ReadsWhatItSays)
{
    QString reason;
    const auto read =
        parsePackingTemplate(R"({"label": "Mine", "pattern": "T_%O", "normals": "directx", "files": [
        {"name": " Mask ", "format": "tga", "depth": "8", "channels": {
            "a": [{"usage": "Glossiness", "channel": "luminance"}, {"output": "rough", "invert": true}, 0.5],
            "rgb": "baseColor"}},
        {"name": "Edge", "channels": {"grey": {"usage": "mask", "channel": "b"}}}]})",
                             reason);
    ASSERT_TRUE(read) << reason.toStdString();
    EXPECT_EQ(read->label, "Mine");
    EXPECT_EQ(read->pattern, "T_%O");
    EXPECT_EQ(read->normals, NormalDirection::Direct3d);
    ASSERT_EQ(read->files.size(), 2);
    const PackingFile& mask = read->files[0];
    EXPECT_EQ(mask.name, "Mask");
    EXPECT_EQ(mask.format, "tga");
    EXPECT_EQ(mask.depth, PictureDepth::Bits8);
    ASSERT_EQ(mask.channels.size(), 2);
    EXPECT_EQ(mask.channels[0].target, PackingTarget::Rgb);
    EXPECT_EQ(mask.channels[0].sources[0].usage, "basecolor");
    EXPECT_FALSE(mask.channels[0].constant);
    const PackingChannel& alpha = mask.channels[1];
    EXPECT_EQ(alpha.target, PackingTarget::Alpha);
    EXPECT_EQ(alpha.sources[0].channel, SourceChannel::Luminance);
    EXPECT_EQ(alpha.sources[1].identifier, "rough");
    EXPECT_TRUE(alpha.sources[1].isInverted);
    EXPECT_EQ(alpha.constant, 0.5);
    EXPECT_EQ(read->files[1].format, "");
    EXPECT_EQ(read->files[1].depth, PictureDepth::OfPicture);
    EXPECT_EQ(read->files[1].channels[0].sources[0].channel, SourceChannel::Blue);
}

TEST_F(PackingTemplateTest, SaysWhatIsWrongAndWhere)
{
    struct Row
    {
        const char* text;
        const char* reason; // its beginning
    };
    const Row rows[] = {
        {"", "line 1, column 1: "},
        {"{\n \"files\": [,]}", "line 2, column "},
        {"[]", "expected an object, not a list"},
        {"{}", "files: expected a list of files, not nothing"},
        {R"({"files": []})", "files: expected a list of files, not a list"},
        {R"({"file": []})", "file: nothing is called so here; expected label, "},
        {R"({"normals": "up", "files": []})", "normals: expected one of opengl, directx, not \"up\""},
        {R"({"label": 3, "files": []})", "label: expected a text, not 3"},
        {R"({"files": [3]})", "files[0]: expected an object, not 3"},
        {R"({"files": [{"channels": {"grey": "a"}}]})", "files[0].name: expected a text, not nothing"},
        {R"({"files": [{"name": "A", "format": "doc", "channels": {"grey": "a"}}]})",
         "files[0].format: expected one of "},
        {R"({"files": [{"name": "A", "depth": 8, "channels": {"grey": "a"}}]})",
         "files[0].depth: expected one of \"8\", \"16\", \"16f\", \"32f\", not 8"},
        {R"({"files": [{"name": "A", "format": "png", "depth": "32f", "channels": {"grey": "a"}}]})",
         "files[0].depth: expected one of \"8\", \"16\" for png, not \"32f\""},
        {R"({"files": [{"name": "A"}]})", "files[0].channels: expected an object, not nothing"},
        {R"({"files": [{"name": "A", "channels": {"r": "a"}}]})", "files[0].channels: expected 'grey' alone"},
        {R"({"files": [{"name": "A", "channels": {"grey": "a", "a": "b"}}]})",
         "files[0].channels: expected 'grey' alone"},
        {R"({"files": [{"name": "A", "channels": {"rgb": "a", "g": "b"}}]})",
         "files[0].channels: expected 'grey' alone"},
        {R"({"files": [{"name": "A", "channels": {"x": "a"}}]})",
         "files[0].channels.x: nothing is called so"},
        {R"({"files": [{"name": "A", "channels": {"rgb": 1}}]})",
         "files[0].channels: there are numbers alone"},
        {R"({"files": [{"name": "A", "channels": {"grey": []}}]})",
         "files[0].channels.grey: the list is empty"},
        {R"({"files": [{"name": "A", "channels": {"grey": ["a", 2]}}]})",
         "files[0].channels.grey[1]: expected a number from 0 to 1, not 2"},
        {R"({"files": [{"name": "A", "channels": {"grey": [0, "a"]}}]})",
         "files[0].channels.grey[0]: expected a usage"},
        {R"({"files": [{"name": "A", "channels": {"grey": {"usage": "a", "output": "b"}}}]})",
         "files[0].channels.grey: expected either a usage or an output"},
        {R"({"files": [{"name": "A", "channels": {"grey": {"usage": "a", "channel": "x"}}}]})",
         "files[0].channels.grey.channel: expected one of r, g, b, a, luminance, not \"x\""},
        {R"({"files": [{"name": "A", "channels": {"grey": {"usage": "a", "invert": 1}}}]})",
         "files[0].channels.grey.invert: expected true or false, not 1"},
        {R"({"files": [{"name": "A", "channels": {"grey": "a"}}, {"name": "A", "channels": {"grey": "b"}}]})",
         "files[1].name: 'A' is there twice"},
    };
    for (const Row& row : rows) {
        QString reason;
        EXPECT_FALSE(parsePackingTemplate(row.text, reason)) << row.text;
        EXPECT_EQ(reason.left(int(strlen(row.reason))).toStdString(), row.reason) << row.text;
    }
}

TEST_F(PackingTemplateTest, ThoseOfTheUserComeFirst)
{
    const QByteArray own = R"({"label": "Own", "files": [{"name": "A", "channels": {"grey": "height"}}]})";
    QTemporaryDir users;
    write(users.filePath("glTF.json"), own);
    write(users.filePath("mine.json"), own);
    write(users.filePath("broken.json"), "{");
    write(users.filePath("notes.txt"), "{");
    const PackingTemplates templates(VELLOR_SHIPPED_TEMPLATES, users.path());
    for (const PackingTemplates::Entry& entry : templates.entries())
        EXPECT_EQ(entry.content.has_value(), entry.name != "broken") << entry.error.toStdString();
    EXPECT_EQ(templates.names().join(' '),
              "blender broken glTF godot mine unity-builtin unity-hdrp unity-urp unreal");
    ASSERT_TRUE(templates.find("GLTF"));
    EXPECT_FALSE(templates.find("gltf")->isShipped);
    EXPECT_EQ(templates.find("mine")->shownName(), "Own");
    EXPECT_EQ(templates.find("broken")->error.left(4), "line");
    EXPECT_FALSE(templates.find("other"));
    EXPECT_TRUE(PackingTemplates(users.filePath("gone"), {}).entries().isEmpty());
}
