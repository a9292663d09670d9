#include "applications/player/session/packagecooker.h"
#include "applications/player/session/packagelinker.h"
#include "applications/player/session/packagelistener.h"
#include "applications/player/session/tests/fakelibraries.h"

#include <QBuffer>
#include <QDir>
#include <QDomDocument>

#include <gtest/gtest.h>

using namespace Zph::Applications::Player;
using namespace Zph::Applications::Player::Tests;

namespace {

class Listener : public PackageListener
{
public:
    void message(int level, const QString& text) override
    {
        lines.append(QString("%1 %2").arg(level).arg(text));
    }
    void stage(const QString& text) override { lines.append("> " + text); }
    void status(const QString& text) override { lines.append("= " + text); }

    QStringList lines;
};

class PackageConversion : public testing::Test
{
protected:
    PackageConversion() { FakeLibraries::reset(); }

    static bool link(PackageLinker& linker)
    {
        QByteArray bytes = "asm";
        QBuffer device(&bytes);
        device.open(QIODevice::ReadOnly);
        return linker.link(device);
    }

    FakeLibraries& fake = FakeLibraries::instance();
    Listener listener;
};

} // namespace

TEST_F(PackageConversion, LinksWithLimitAndMessages)
{
    fake.message = "odd node";
    {
        PackageLinker linker(listener, 10);
        ASSERT_TRUE(link(linker));
        EXPECT_EQ(linker.binary(), "binary");
    }
    EXPECT_EQ(fake.calls, QStringList({"Init 10002 0", "SetOption 2 1024", "HandleInit", "Push asm", "Link",
                                       "HandleRelease", "ContextRelease"}));
    EXPECT_EQ(listener.lines,
              QStringList({"> Linking : Linker Version 1.2.3 beta 0x000000ab May 1", "> Linking : Started.",
                           "1 Linking : odd node", "> Linking : Done"}));
}

TEST_F(PackageConversion, AFailedLinkIsToldAndReleasesWhatItMade)
{
    struct Row
    {
        const char* call;
        quint32 code;
        const char* words;
        const char* released;
    };
    const Row rows[] = {
        {"Init", 7, "Engine version not supported", ""},
        {"HandleInit", 2, "Internal error (code: 2)", "ContextRelease"},
        {"Push", 15, "Invalid archive format", "HandleRelease ContextRelease"},
        {"Link", 6, "Linker version not supported (vellor_linker.dll should be updated)",
         "HandleRelease ContextRelease"},
    };
    for (const Row& row : rows) {
        FakeLibraries::reset();
        listener.lines.clear();
        fake.failingCall = row.call;
        fake.code = row.code;
        {
            PackageLinker linker(listener, 0);
            EXPECT_FALSE(link(linker));
            EXPECT_TRUE(linker.binary().isEmpty());
        }
        EXPECT_EQ(listener.lines.last(), QString("2 Link process failed: %1.").arg(row.words));
        EXPECT_EQ(QStringList(fake.calls.filter("Release")).join(' '), row.released) << row.call;
    }
}

TEST_F(PackageConversion, TheFirstDescriptionThatParsesCounts)
{
    const auto rootAfter = [this](const QList<QByteArray>& descriptions) {
        FakeLibraries::reset();
        fake.descriptions = descriptions;
        PackageLinker linker(listener, 0);
        EXPECT_TRUE(link(linker));
        QDomDocument document;
        document.setContent(QByteArray("<old/>"));
        linker.takeDescription(document);
        return document.documentElement().tagName();
    };
    EXPECT_EQ(rootAfter({"<first/>", "<second/>"}), "first");
    EXPECT_EQ(listener.lines.last(), "= XML description Loaded.");
    EXPECT_EQ(rootAfter({"<broken", "<second/>"}), "second");
    for (const auto& none : {QList<QByteArray>(), QList<QByteArray>({"<broken"})}) {
        EXPECT_EQ(rootAfter(none), "");
        EXPECT_EQ(listener.lines.last(), "2 Missing Vellor XML description file");
    }
}

TEST_F(PackageConversion, CooksWithOptionsAndTheAliasesThatExist)
{
    CookingOptions options;
    options.sizeLimit = 11;
    options.dynamicState = 0b010; // pixel size alone: the menu's bit 1, the cooker's bit 2
    options.aliases = {{"here", QDir::tempPath()}, {"nowhere", "/no/such/folder"}, {"empty", ""}};
    {
        PackageCooker cooker(listener, options);
        ASSERT_TRUE(cooker.cook({"/a/b\u00e9.vlr", "/a/\U0001f600.vlr"}));
        EXPECT_EQ(cooker.assembly(), "assembly");
        EXPECT_EQ(cooker.description(), "<package/>");
    }
    EXPECT_EQ(fake.calls, QStringList({"Init 20000", "SetOption 2 2048", "SetOption 4 4", "HandleInit",
                                       "Push /a/b\u00e9.vlr", "Push /a/\U0001f600.vlr",
                                       "Include here " + QDir::tempPath(), "Cook", "GetAssembly", "GetIODesc",
                                       "HandleRelease", "ContextRelease"}));
    EXPECT_EQ(listener.lines,
              QStringList({"> Cooker Version 1.2.3 beta 0x000000ab May 1", "> Started.", "> Loading...",
                           "> Flattening...", "> Front End...", "> Back End...", "> Done"}));
}

TEST_F(PackageConversion, TheMenusBitsAreSortedForTheCooker)
{
    const std::pair<int, quint32> rows[] = {{0, 0}, {1, 1}, {2, 4}, {4, 2}, {5, 3}, {7, 7}};
    for (const auto& [state, mask] : rows)
        EXPECT_EQ(PackageCooker::dynamicMask(state), mask) << state;
}

TEST_F(PackageConversion, APackageThatCantBeOpenedEndsThePushing)
{
    fake.failingCall = "Push";
    fake.code = 15;
    PackageCooker cooker(listener, {});
    EXPECT_TRUE(cooker.cook({"/a.vlr", "/b.vlr"}));
    EXPECT_EQ(fake.calls.filter("Push"), QStringList({"Push /a.vlr"}));
    EXPECT_TRUE(listener.lines.contains(
        "2 Cannot open Vellor package '/a.vlr': Cannot open Vellor Assembly (.VLRAR)."));
}

TEST_F(PackageConversion, AFailedCookIsTold)
{
    fake.failingCall = "Cook";
    fake.code = 10;
    fake.message = "line 3";
    PackageCooker cooker(listener, {});
    EXPECT_FALSE(cooker.cook({"/a.vlr"}));
    EXPECT_EQ(
        listener.lines.mid(listener.lines.size() - 3),
        QStringList({"1 line 3", "2 Cooking process failed: Cooking front end error.", "= Load Failed!"}));
}
