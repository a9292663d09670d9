#include "applications/player/session/videomemory.h"

#include <QBuffer>

#include <gtest/gtest.h>

namespace VideoMemory = Zph::Applications::Player::VideoMemory;

TEST(VideoMemory, TheDriversAnswerIsInMegabytes)
{
    const std::pair<const char*, quint64> rows[] = {
        {" 8192\n", 8589934592ull}, {"0", 0}, {"-1", 0}, {"", 0}, {"8 GB", 0}};
    for (const auto& [answer, bytes] : rows)
        EXPECT_EQ(VideoMemory::fromDriverTool(answer), bytes) << answer;
}

TEST(VideoMemory, TheServersLogGivesItsFirstNumberAsItStands)
{
    const std::pair<const char*, quint64> rows[] = {
        {"[ 5.0] (--) NVIDIA(0): Memory: 4194304 kBytes\n(--) VideoRam: 1 kB\n", 4194304},
        {"nothing\n(--) RADEON(0): Video RAM override 65536kB\n", 65536},
        {"(--) MEMORY: 1 kB\n(--) videoram: 2 kB\n", 0}, // upper and lower case matter
        {"(--) VideoRam: 12 MB\n", 0},
        {"", 0}};
    for (const auto& [text, number] : rows) {
        QByteArray bytes = text;
        QBuffer log(&bytes);
        log.open(QIODevice::ReadOnly);
        EXPECT_EQ(VideoMemory::fromServerLog(log), number) << text;
    }
}
