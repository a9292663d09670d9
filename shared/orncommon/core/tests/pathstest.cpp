#include "orncommon/core/defaultsettings.h"
#include "orncommon/core/filepathmgr.h"
#include "orncommon/core/system.h"
#include "orncommon/core/tempfiles.h"
#include "orncommon/core/tests/capturedlog.h"
#include "orncommon/core/url.h"
#include "orncommon/core/urlaliases.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

using namespace Orn::Core;

namespace {

void writeFile(const QString& path, const QByteArray& contents = "x")
{
    QDir::root().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(contents);
}

UrlAliases::Name name(const char* text)
{
    return UrlAliases::Name::sFixedName(text);
}

} // namespace

TEST(Url, SchemeAndPath)
{
    const struct
    {
        const char* text;
        const char* scheme;
        const char* path;
    } rows[] = {{"foo", "", "foo"},
                {"", "", ""},
                {"a://b?x=1&y=2", "a", "b"},
                {"a://b://c", "a", "b://c"},
                {"://b", "", "b"},
                {"b?u=a://c", "b?u=a", "b"},
                {"a://", "a", ""}};
    for (const auto& row : rows) {
        const Url url{QString(row.text)};
        EXPECT_EQ(url.getScheme(), row.scheme) << row.text;
        EXPECT_EQ(url.getPath(), row.path) << row.text;
        EXPECT_EQ(url.isValid(), *row.scheme != 0) << row.text;
    }
    const Url file = Url::fromLocalFile("/a b/c");
    EXPECT_TRUE(file.isLocalFile());
    EXPECT_EQ(file.toLocalFile(), "/a b/c");
}

TEST(Url, IsUnderPath)
{
    const struct
    {
        const char* path;
        const char* folder;
        bool under;
    } rows[] = {{"/a/bc/d", "/a/b", false}, {"/a/b/c", "/a/b", true},  {"/a/b/c", "/a/b/", true},
                {"/a/b", "/a/b", false},    {"/A/b/c", "/a/b", false}, {"/a", "/", true}};
    for (const auto& row : rows) {
        EXPECT_EQ(Url(QString(row.path)).isUnderPath(Url(QString(row.folder))), row.under) << row.path;
        EXPECT_EQ(Url(QString(row.folder)).isParentOf(Url(QString(row.path))), row.under) << row.path;
    }
}

TEST(Url, Queries)
{
    Url url(QStringLiteral("a://b?x=1&y=2=3&&z"));
    EXPECT_EQ(url.queryItems(), Url::QueryItems({{"x", "1"}, {"y", "2=3"}, {"z", ""}}));
    EXPECT_EQ(url.queryItem("y"), "2=3");
    EXPECT_EQ(url.queryItem("w"), "");
    url.setQueryItems({{"p", "q"}, {"r", "s"}});
    EXPECT_EQ(url.toString(), "a://b?p=q&r=s");
    url.setQueryItems({});
    EXPECT_EQ(url.toString(), "a://b");
    EXPECT_FALSE(url.hasQueries());
}

TEST(UrlAliases, BothWays)
{
    UrlAliases aliases;
    aliases.setAlias(name("lib"), "/opt/lib");
    aliases.setAlias(name("maps"), "/opt/lib/maps/");
    aliases.setAlias(name("deep"), "/opt/lib/deep"); // before its parent in the order of names
    aliases.setAlias(name("unset"), "");
    const struct
    {
        const char* path;
        const char* base;
        const char* url;
        bool matched;
    } rows[] = {{"/opt/lib/a/b.png", "", "lib://a/b.png", true},
                {"/opt/lib/maps/b.png", "", "maps://b.png", true},
                {"/opt/lib/deep/b.png", "", "deep://b.png", true},
                {"/opt/lib", "", "lib://", true},
                {"/opt/library/b.png", "", "/opt/library/b.png", false},
                {"../lib/./b.png", "/opt/doc", "lib://b.png", true},
                {"/projects/doc/sub/b.png", "/projects/doc", "sub/b.png", false},
                {"sub/b.png", "/projects/doc", "sub/b.png", false},
                {"../b.png", "/projects/doc", "/projects/b.png", false},
                {"?himself", "/opt/lib", "?himself", false},
                {":/icons/b.png", "/opt/lib", ":/icons/b.png", false},
                {"other://b.png", "/opt/lib", "other://b.png", false}};
    for (const auto& row : rows) {
        bool matched = !row.matched;
        EXPECT_EQ(aliases.absPathToUrl(row.path, row.base, {}, &matched), row.url) << row.path;
        EXPECT_EQ(matched, row.matched) << row.path;
    }
    EXPECT_EQ(aliases.urlToAbsPath("maps://b.png?x=1"), "/opt/lib/maps/b.png");
    EXPECT_EQ(aliases.urlToAbsPath("lib://"), "/opt/lib/");
    EXPECT_EQ(aliases.urlToAbsPath("other://b?x"), "other://b?x");
    EXPECT_EQ(aliases.urlToAbsPath("b?x"), "b?x");
    aliases.setAlias(name("root"), "/");
    EXPECT_EQ(aliases.absPathToUrl("/x", ""), "root://x");
    EXPECT_EQ(aliases.urlToAbsPath("root://x"), "/x");
}

TEST(UrlAliases, SavingReplacesTheArray)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("store.ini");
    UrlAliases aliases;
    aliases.setAlias(name("b"), "/two/.");
    aliases.setAlias(name("a"), "");
    aliases.setAlias(name("c"), "/three");
    {
        const auto store = QSharedPointer<DefaultSettings>::create(path, DefaultSettings::Ini);
        aliases.save(store);
        aliases.removeAlias(name("c"));
        aliases.save(store);
        const UrlAliases loaded = UrlAliases::load(*store);
        EXPECT_EQ(loaded.getAliases(), QList<UrlAliases::Name>({name("a"), name("b")}));
        EXPECT_EQ(loaded.getPath(name("b")), "/two");
    }
    const QSettings written(path, QSettings::IniFormat);
    const QString array = "preferences/resources/urlAliases/";
    EXPECT_EQ(written.value(array + "size").toInt(), 2);
    EXPECT_EQ(written.value(array + "1/path").toString(), "");
    EXPECT_EQ(written.value(array + "2/name").toString(), "b");
    EXPECT_FALSE(written.contains(array + "3/name"));
}

TEST(System, CopiesAndRemovesFolders)
{
    const QTemporaryDir folder;
    const QString from = folder.filePath("from");
    const QString to = folder.filePath("to");
    writeFile(from + "/a", "1");
    writeFile(from + "/sub/deep/b", "2");
    QFile::link(from, from + "/sub/circle");
    QStringList top;
    System::collectFiles(top, from, System::CollectTopLevel);
    EXPECT_EQ(top, QStringList({from + "/a"}));

    EXPECT_TRUE(System::copyDirectory(from, to));
    EXPECT_TRUE(QFile::exists(to + "/sub/deep/b"));
    EXPECT_FALSE(QFile::exists(to + "/sub/circle"));

    const CapturedLog log;
    QFile::remove(to + "/sub/deep/b");
    EXPECT_FALSE(System::copyDirectory(from, to)); // "a" is there, the rest is still copied
    EXPECT_TRUE(QFile::exists(to + "/sub/deep/b"));
    EXPECT_EQ(log.lines(), QStringList({"2 System: Unable to copy file:", "2 System:    from:" + from + "/a",
                                        "2 System:    to  :" + to + "/a"}));
    EXPECT_TRUE(System::removeDirectory(to));
    EXPECT_FALSE(QFile::exists(to));
    EXPECT_FALSE(System::removeDirectory(""));
}

TEST(TempFiles, RootAndFiles)
{
    const QTemporaryDir folder;
    const QString other = folder.filePath("new/root");
    writeFile(folder.filePath("file"));
    {
        TempFiles files;
        EXPECT_TRUE(QFile::exists(TempFiles::getDefaultTempDir()));
        EXPECT_TRUE(files.setRoot(other));
        const CapturedLog log;
        EXPECT_FALSE(files.setRoot(folder.filePath("file")));
        EXPECT_FALSE(files.setRoot(folder.filePath("file/below")));
        EXPECT_FALSE(files.setRoot(""));
        EXPECT_EQ(log.lines(), QStringList({"1 TempFiles: Can't set the file path '" +
                                                folder.filePath("file") + "' as temporary directory",
                                            "1 TempFiles: Fail to create directory '" +
                                                folder.filePath("file/below") + "'",
                                            "1 TempFiles: Fail to create directory ''"}));
        EXPECT_EQ(files.getTempDir(""), other);
        const QString path = files.getTempFile("a%TIMESTAMP%b%TIMESTAMP%.png", "x");
        ASSERT_TRUE(path.startsWith(other + "/x/a"));
        const QStringList stamps = QFileInfo(path).completeBaseName().mid(1).split('b');
        ASSERT_EQ(stamps.size(), 2);
        EXPECT_EQ(stamps[0], stamps[1]);
        EXPECT_GT(stamps[0].toLongLong(), 1600000000000);
        EXPECT_TRUE(QFileInfo(other + "/x").isDir());
        EXPECT_FALSE(QFile::exists(path));
    }
    EXPECT_TRUE(QFile::exists(other + "/x"));
    {
        const TempFiles files;
        writeFile(files.getTempFile("left", "behind"));
    }
    EXPECT_FALSE(QFile::exists(TempFiles::getDefaultTempDir()));
}
