#include "orncommon/core/bindlogger.h"
#include "orncommon/core/debug.h"
#include "orncommon/core/logtofiledelegate.h"
#include "orncommon/core/tests/capturedlog.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <functional>
#include <thread>

using namespace Orn::Core::Log;

namespace {

struct FunctionDelegate : AbstractDelegate
{
    explicit FunctionDelegate(std::function<void(const QString&)> call) : function(std::move(call)) {}
    void log(MsgSeverity, Channel const&, const QString& text) override { function(text); }
    std::function<void(const QString&)> function;
};

QString contentsOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QString::fromUtf8(file.readAll());
}

// What follows the two lines that open a session.
QString afterSessionStart(const QString& contents)
{
    return contents.section(QLatin1Char('\n'), 2);
}

} // namespace

TEST(LogManager, MessagesLoggedByADelegateFollowInOrder)
{
    LogManager manager;
    QStringList seen;
    int depth = 0;
    manager.addDelegate(QSharedPointer<FunctionDelegate>::create([&](const QString& text) {
        EXPECT_EQ(++depth, 1);
        if (text == "a") {
            manager.info("", "b");
            manager.info("", "c");
        }
        --depth;
    }));
    manager.addDelegate(QSharedPointer<FunctionDelegate>::create([&](const QString& text) { seen << text; }));
    manager.info("", "a");
    EXPECT_EQ(seen, QStringList({"a", "b", "c"}));
}

TEST(LogManager, DelegatesMayComeAndGoWhileLogging)
{
    LogManager manager;
    QStringList seen;
    const auto late =
        QSharedPointer<FunctionDelegate>::create([&](const QString& text) { seen << "late " + text; });
    QSharedPointer<FunctionDelegate> first;
    first = QSharedPointer<FunctionDelegate>::create([&](const QString& text) {
        seen << "first " + text;
        manager.addDelegate(late);
    });
    manager.info("", "lost");
    manager.removeDelegate(late); // was never added
    manager.addDelegate(first);
    manager.info("", "a");
    manager.removeDelegate(first);
    manager.info("", "b");
    EXPECT_EQ(seen, QStringList({"first a", "late a", "late b"}));
}

TEST(LogManager, WorksOnAfterADelegateThrew)
{
    LogManager manager;
    QStringList seen;
    bool armed = true;
    manager.addDelegate(QSharedPointer<FunctionDelegate>::create([&](const QString& text) {
        if (std::exchange(armed, false))
            throw std::runtime_error("delegate");
        seen << text;
    }));
    EXPECT_THROW(manager.info("", "a"), std::runtime_error);
    // Another thread would hang if the mutex were still held.
    std::thread([&] { manager.info("", "b"); }).join();
    EXPECT_EQ(seen, QStringList({"b"}));
}

TEST(LogManager, DelegatesAreNeverEnteredByTwoThreads)
{
    LogManager manager;
    int calls = 0; // a data race, were calls not serialised
    manager.addDelegate(QSharedPointer<FunctionDelegate>::create([&](const QString&) { ++calls; }));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int j = 0; j < 2000; ++j)
                manager.info("", "x");
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(calls, 8000);
}

TEST(LogToFileDelegate, CollapsesRepeatedLines)
{
    struct Message
    {
        int times;
        MsgSeverity severity;
        const char* channel;
        const char* text;
    };
    struct Row
    {
        std::vector<Message> messages;
        const char* expected;
    };
    const Row rows[] = {
        {{{10, Info, "C", "x"}, {1, Warning, "C", "y"}},
         "[INFO][C] x\n   ... (repeated 9 more times)\n[WARNING][C] y\n"},
        {{{2, Info, "C", "x"}, {1, Info, "C", "y"}, {1, Info, "C", "z"}},
         "[INFO][C] x\n   ... (repeated 1 more times)\n[INFO][C] y\n[INFO][C] z\n"},
        {{{2, Info, "C", "x"}, {3, Info, "C", "y"}, {1, Error, "C", "z"}},
         "[INFO][C] x\n   ... (repeated 1 more times)\n[INFO][C] y\n   ... (repeated 2 more "
         "times)\n[ERROR][C] z\n"},
        {{{1, Info, "C", "x"}, {1, Error, "C", "x"}, {1, Error, "D", "x"}},
         "[INFO][C] x\n[ERROR][C] x\n[ERROR][D] x\n"},
        {{{1, MsgSeverity(3), "C", "\u00e9"}, {4, Info, "C", "x"}}, "[UNEXPECTED][C] \u00e9\n[INFO][C] x\n"},
    };
    const QTemporaryDir folder;
    int number = 0;
    for (const Row& row : rows) {
        const QString path = folder.filePath(QString::number(++number));
        LogToFileDelegate delegate(path);
        for (const Message& message : row.messages)
            for (int i = 0; i < message.times; ++i)
                delegate.log(message.severity, message.channel, QString::fromUtf8(message.text));
        // Read while the delegate has the file open: nothing may wait in a buffer.
        EXPECT_EQ(afterSessionStart(contentsOf(path)), QString::fromUtf8(row.expected)) << number;
    }
}

TEST(LogToFileDelegate, EmptiesOnlyAFileAboveTheLimit)
{
    const QTemporaryDir folder;
    const struct
    {
        int size;
        bool kept;
    } rows[] = {{0, true}, {2097152, true}, {2097153, false}};
    for (const auto& row : rows) {
        const QString path = folder.filePath(QString::number(row.size));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(row.size, 'o'));
        file.close();
        {
            LogToFileDelegate delegate(path);
        }
        const QString contents = contentsOf(path);
        EXPECT_EQ(contents.count('o') >= row.size, row.kept) << row.size;
        EXPECT_EQ(contents.indexOf("===== New Session =====\n"), row.kept ? row.size : 0) << row.size;
    }
    LogToFileDelegate nowhere(folder.filePath("missing/log.txt"));
    nowhere.log(Info, "C", "x"); // dropped
    EXPECT_FALSE(QFile::exists(folder.filePath("missing")));
}

TEST(ChannelLogger, LogsMessageTreesDepthFirst)
{
    const CapturedLog log;
    Msg root{"", Msg::Alert, {}};
    root.children << QSharedPointer<Msg>::create(Msg{"a", Msg::Alert, {}})
                  << QSharedPointer<Msg>::create(Msg{"c", Msg::Failure, {}})
                  << QSharedPointer<Msg>::create(Msg{"d", Msg::Success, {}});
    root.children[0]->children << QSharedPointer<Msg>::create(Msg{"b", Msg::None, {}});
    const ChannelLogger logger("Tree");
    logger.log(root);
    logger.stream(Error) << "e"
                         << "f";
    EXPECT_EQ(log.lines(),
              QStringList({"1 Tree: a", "0 Tree: b", "1 Tree: c", "0 Tree: d", "2 Tree: e", "2 Tree: f"}));
}

TEST(Logging, OtherSourcesReachTheManager)
{
    const CapturedLog log;
    Orn::Logger lower = orncppLogger(ChannelLogger("News"));
    lower.log(1, "/sub", "text");
    lower.log(7, "", "odd");
    const int line = __LINE__ + 1;
    Orn::Debug::warning("here");
    LogManager::installQtMsgHandler();
    qWarning("warned");
    qCritical("failed");
    qDebug("dropped");
    QMessageLogger("f.cpp", 12, "").info("told");
    qWarning("QObject::connect: Cannot connect (null)::stateChanged(QNetworkSession::State) to "
             "QNetworkReplyHttpImpl::_q_networkSessionStateChanged(QNetworkSession::State)");
    qInstallMessageHandler(nullptr);
    ASSERT_EQ(log.lines().size(), 6);
    EXPECT_EQ(log.lines().mid(0, 3), QStringList({"1 News/sub: text", "2 News: odd",
                                                  QString("1 Default: logtest.cpp(%1): here").arg(line)}));
    EXPECT_TRUE(log.lines()[3].startsWith("1 Default: ") && log.lines()[3].endsWith("): warned"));
    EXPECT_TRUE(log.lines()[4].startsWith("2 Default: ") && log.lines()[4].endsWith("): failed"));
    EXPECT_EQ(log.lines()[5], "0 Default: f.cpp(12): told");
}
