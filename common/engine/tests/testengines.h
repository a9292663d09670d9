#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace Zph::Engine::Tests {

/// A form of the test engine (tests/testengine): "", "_next" or "_partial".
inline QString testEngine(const QString& form = {})
{
    return QStringLiteral(VELLOR_TEST_ENGINES "/libvellor_test_engine%1.so").arg(form);
}

/// Has the test engine write its log to a file of its own, and forgets every setting of it in the end.
class TestEngineLog
{
public:
    TestEngineLog() : m_path(m_folder.filePath(QStringLiteral("engine.log")))
    {
        qputenv("VELLOR_TEST_ENGINE_LOG", m_path.toUtf8());
    }

    ~TestEngineLog()
    {
        for (const char* name : {"LOG", "FAIL", "ID", "STATUS", "REVISION", "LINKER"})
            qunsetenv(QByteArray("VELLOR_TEST_ENGINE_") + name);
    }

    static void set(const char* name, const char* value)
    {
        qputenv(QByteArray("VELLOR_TEST_ENGINE_") + name, value);
    }

    /// The lines since the last call.
    QStringList take()
    {
        QFile file(m_path);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        const QString text = QString::fromUtf8(file.readAll());
        file.remove();
        return text.split('\n', Qt::SkipEmptyParts);
    }

private:
    QTemporaryDir m_folder;
    QString m_path;
};

} // namespace Zph::Engine::Tests
