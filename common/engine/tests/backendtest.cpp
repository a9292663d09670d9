#include "common/engine/backend.h"
#include "common/engine/backendlocal.h"
#include "common/engine/tests/testengines.h"

#include <QDir>

using namespace Zph::Engine;
using namespace Zph::Engine::Tests;

namespace {

class BackEnd : public testing::Test
{
protected:
    void TearDown() override { unload(); }

    TestEngineLog log;
};

} // namespace

TEST_F(BackEnd, NeedsEveryEntryPointAndTheStatusZero)
{
    EXPECT_TRUE(probe(testEngine()));
    EXPECT_FALSE(probe(testEngine("_partial")));
    EXPECT_FALSE(probe(testEngine("_missing")));
    log.set("STATUS", "1");
    EXPECT_FALSE(probe(testEngine()));
}

TEST_F(BackEnd, AFileThatIsNoLibraryIsNoEngine)
{
    QTemporaryDir folder;
    VellorVersion version;
    for (const char* name : {"notes.txt", "broken.so", "empty.so.1"}) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(name[0] == 'e' ? ""
                                  : "\x7f"
                                    "ELF and nothing more");
        file.close();
        EXPECT_FALSE(engineInfo(file.fileName(), version)) << name;
    }
}

TEST_F(BackEnd, ALibraryThatWasCutShortIsNoEngine)
{
    QTemporaryDir folder;
    const qint64 size = QFileInfo(testEngine()).size();
    for (const qint64 length : {qint64(63), qint64(1000), size / 4, size / 2, size * 3 / 4, size - 1}) {
        const QString path = folder.filePath(QString("cut%1.so").arg(length));
        ASSERT_TRUE(QFile::copy(testEngine(), path) && QFile::resize(path, length));
        EXPECT_FALSE(probe(path)) << length;
    }
}

TEST_F(BackEnd, AnEngineThatRunsMindsNobodyWritingIntoItsFile)
{
    QTemporaryDir folder;
    const QString path = folder.filePath("engine.so");
    ASSERT_TRUE(QFile::copy(testEngine(), path));
    ASSERT_TRUE(load(path));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList("engine.so"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    VellorVersion version = {};
    getCurrentVersion(&version, VELLOR_API_VERSION);
    EXPECT_STREQ(version.name, "Test Engine");
    EXPECT_FALSE(probe(path));
}

TEST_F(BackEnd, TextsOfAVersionOutliveTheLibrary)
{
    VellorVersion version;
    ASSERT_TRUE(engineInfo(testEngine(), version));
    EXPECT_STREQ(version.name, "Test Engine");
    EXPECT_STREQ(version.build, "in C");
    EXPECT_EQ(version.buildHash, 0xc0ffeeu);
    EXPECT_EQ(engineVersionText(version), "1.2.1-test");
    version.label = "";
    EXPECT_EQ(engineVersionText(version), "1.2.1");
}

TEST_F(BackEnd, ScanTakesEveryEngineOfTheFolderAndNoLink)
{
    QTemporaryDir folder;
    QFile::copy(testEngine(), folder.filePath("b.so.1.2"));
    QFile::copy(testEngine("_next"), folder.filePath("a.so"));
    QFile::copy(testEngine("_partial"), folder.filePath("c.so"));
    QFile::link(testEngine(), folder.filePath("d.so"));
    QMap<QString, VellorVersion> engines;
    scanEngines(folder.path(), engines);
    EXPECT_EQ(engines.keys(), QStringList({folder.filePath("a.so"), folder.filePath("b.so.1.2")}));
    EXPECT_EQ(engines.first().versionPatch, 2u);
}

TEST_F(BackEnd, AFailedLoadLeavesNone)
{
    ASSERT_TRUE(load(testEngine()));
    EXPECT_TRUE(isLoaded());
    EXPECT_FALSE(load(testEngine("_partial")));
    EXPECT_FALSE(isLoaded());
    VellorContext* context = nullptr;
    VellorDevice device = {};
    EXPECT_EQ(contextInit(&context, &device, VELLOR_API_VERSION, 0), NoBackEnd);
    contextRestoreStates(context);
}

TEST_F(BackEnd, ALoadOfTheSamePathTakesTheFileThatLiesThereNow)
{
    QTemporaryDir folder;
    const QString path = folder.filePath("engine.so");
    VellorVersion version = {};
    QFile::copy(testEngine(), path);
    ASSERT_TRUE(load(path));
    getCurrentVersion(&version, VELLOR_API_VERSION);
    EXPECT_EQ(version.versionPatch, 1u);

    QFile::remove(path);
    QFile::copy(testEngine("_next"), path);
    ASSERT_TRUE(load(path));
    getCurrentVersion(&version, VELLOR_API_VERSION);
    EXPECT_EQ(version.versionPatch, 2u);
}

TEST_F(BackEnd, EveryOperationReachesItsOwnEntryPoint)
{
    ASSERT_TRUE(load(testEngine()));
    VellorContext* context = nullptr;
    VellorDevice device = {};
    ASSERT_EQ(contextInit(&context, &device, VELLOR_API_VERSION, 0), 0u);
    VellorHandle* handle = nullptr;
    const VellorHardResources resources = {};
    const QByteArray data = "testengine\ninput 1 0\noutput 2 0\n";
    ASSERT_EQ(handleInit(&handle, context, data.constData(), uint64_t(data.size()), &resources), 0u);
    log.take();

    const uint32_t uid = 2;
    const float value = 1;
    uint32_t state = 0, label = 0;
    float number[4];
    VellorDataDesc dataDesc = {};
    VellorOutputDesc outputDesc = {};
    VellorInputDesc inputDesc = {};
    VellorImageRequest request = {};
    contextMemoryFree(context, nullptr);
    handlePushOutputs(handle, VELLOR_PUSH_UIDS, &uid, 1, nullptr);
    handleFlush(handle);
    handleStart(handle, 0);
    handleGetState(handle, nullptr, &state);
    handleSwitchHard(handle, 0, &resources, nullptr);
    handleStop(handle, 1);
    handleGetOutputs(handle, VELLOR_FETCH_NUMERIC, 0, 1, number);
    handlePushSetInput(handle, 0, 0, 0, &value, nullptr);
    handleGetDesc(handle, &dataDesc);
    handleGetOutputDesc(handle, 0, &outputDesc);
    handleGetInputDesc(handle, 0, &inputDesc);
    handleGetInputImageDesc(handle, 0, &request);
    handleSyncSetLabel(handle, 1, nullptr);
    handleSyncGetLabel(handle, &label);
    VellorContext* parent = nullptr;
    handleGetParentContext(handle, &parent);
    handleTransferCache(handle, handle, 0);
    handleRelease(handle);
    contextRelease(context);

    QStringList called;
    for (const QString& line : log.take())
        called.append(line.section(' ', 0, 0));
    EXPECT_EQ(
        called.join(' '),
        "ContextMemoryFree PushOutputs Flush Start GetState SwitchHard Stop GetOutputs PushSetInput GetDesc "
        "GetOutputDesc GetInputDesc GetInputImageDesc SyncSetLabel SyncGetLabel GetParentContext "
        "TransferCache "
        "HandleRelease ContextRelease");
    EXPECT_EQ(parent, context);
    EXPECT_EQ(dataDesc.inputsCount, 1u);
    EXPECT_EQ(outputDesc.uid, 2u);
    EXPECT_EQ(inputDesc.uid, 1u);
    EXPECT_EQ(number[0], 2.0f);
}
