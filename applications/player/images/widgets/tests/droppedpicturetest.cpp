#include "applications/player/images/widgets/droppedpicture.h"

#include <QDir>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>
#include <gtest/gtest.h>

namespace {

using namespace Zph::Applications::Player;

TEST(DroppedPicture, IsTheFirstOfWhatIsDropped)
{
    const QTemporaryDir folder;
    QDir(folder.path()).mkpath("frames/inner");
    QDir(folder.path()).mkpath("notes");
    for (const char* name :
         {"photo.png", "LOUD.TGA", "text.txt", "p.vlrar", "frames/f10.png", "frames/f9.png", "frames/f11.png",
          "frames/a.txt", "frames/inner/a1.png", "notes/a.txt"}) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << name;
    }
    const auto dropped = [&](const QStringList& names) {
        QList<QUrl> urls;
        for (const QString& name : names)
            urls.append(QUrl::fromLocalFile(folder.filePath(name)));
        QMimeData data;
        data.setUrls(urls);
        return QDir(folder.path()).relativeFilePath(droppedPicture(data));
    };
    EXPECT_EQ(dropped({"photo.png"}), "photo.png");
    EXPECT_EQ(dropped({"LOUD.TGA"}), "LOUD.TGA");
    EXPECT_EQ(dropped({"frames"}), "frames/f9.png");
    EXPECT_EQ(dropped({"frames/f10.png", "frames/a.txt", "frames/f9.png"}), "frames/f9.png");
    for (const char* none : {"text.txt", "p.vlrar", "notes", "gone"})
        EXPECT_EQ(dropped({none, "photo.png"}), "") << none;
    EXPECT_EQ(dropped({}), "");
    QMimeData remote;
    remote.setUrls({QUrl("https://example.org/a.png")});
    EXPECT_EQ(droppedPicture(remote), "");
}

} // namespace
