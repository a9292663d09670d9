// Files that are damaged in every way that a disk, a network or a hand can do it: told in words, and the
// window lives on.

#include "applications/player/session/engine.h"
#include "tests/program/programfixture.h"

#include <QApplication>
#include <QFile>

#include <random>

namespace Zph::Applications::Player::Tests {

namespace {

class Damage : public ProgramFixture
{
protected:
    Damage() { openWindow(); }

    /// Opens the damaged file. Either it plays all the same, or it is told why it doesn't.
    void open(const QString& path, const QString& what)
    {
        const bool isLoaded = window->loadFile(path);
        if (isLoaded)
            EXPECT_NE(window->engine(), nullptr) << what.toStdString();
        else
            EXPECT_FALSE(consoleText().isEmpty()) << what.toStdString();
        EXPECT_EQ(status().toStdString(), isLoaded ? "Load Done." : "Load Failed!") << what.toStdString();
        ++m_opened;
        m_refused += !isLoaded;
    }

    void expectSoundFileOpens(const QString& suffix)
    {
        EXPECT_TRUE(window->loadFile(putPackage("walls", suffix)));
        EXPECT_EQ(outputs(*views().first()).size(), 3);
    }

    int m_opened = 0, m_refused = 0;
};

const char* const kinds[] = {"vlr", "vlrar", "vlrasm", "vlrbin", "xml"};

TEST_F(Damage, CutOffAtEveryLength)
{
    for (const QString kind : kinds) {
        const QByteArray whole = PackageFiles::get("walls").form(kind);
        if (kind == "xml")
            putPackage("walls", "vlrbin");
        m_opened = m_refused = 0;
        // A description that is cut costs its names alone, and the package plays each time.
        for (int size = 0; size < whole.size() - 1; size += kind == "xml" ? 37 : 3)
            open(put("walls." + kind, whole.left(size)), QStringLiteral("%1 cut at %2").arg(kind).arg(size));
        // An archive that lost nothing but its table of contents plays: what is in it is whole.
        EXPECT_GE(m_refused, kind == "xml"     ? 0
                             : kind == "vlrar" ? m_opened * 3 / 4
                                               : m_opened)
            << kind.toStdString();
        expectSoundFileOpens(kind);
    }
}

TEST_F(Damage, FlippedBits)
{
    std::mt19937 random(2718);
    for (const QString kind : kinds) {
        const QByteArray whole = PackageFiles::get("walls").form(kind);
        if (kind == "xml")
            putPackage("walls", "vlrbin");
        m_opened = m_refused = 0;
        for (int round = 0; round < 150; ++round) {
            QByteArray bytes = whole;
            QString what = kind + " flipped at";
            for (unsigned flips = 1 + random() % 3; flips > 0; --flips) {
                const int at = int(random() % unsigned(whole.size()));
                bytes[at] = char(bytes[at] ^ (1 << random() % 8));
                what += QStringLiteral(" %1").arg(at);
            }
            open(put("walls." + kind, bytes), what);
        }
        if (kind == "vlrbin" || kind == "vlrasm") {
            EXPECT_GE(m_refused, m_opened * 9 / 10) << kind.toStdString() << ": checksums find damage";
        }
        expectSoundFileOpens(kind);
    }
}

TEST_F(Damage, EmptyForeignHugeAndOfAnotherVersion)
{
    const PackageFiles& walls = PackageFiles::get("walls");
    for (const QString kind : kinds) {
        if (kind == "xml")
            putPackage("walls", "vlrbin");
        const QByteArray whole = walls.form(kind);
        m_opened = m_refused = 0;
        open(put("walls." + kind, ""), kind + " empty");
        open(put("walls." + kind, QByteArray(100000, '\0')), kind + " of zeros");
        open(put("walls." + kind, QByteArray(100000, '<')), kind + " of brackets");
        open(put("walls." + kind, readFile(cpuEngine).left(200000)), kind + " that is a library");
        for (const QString other : kinds)
            if (other != kind && kind != "xml" && !(kind == "vlrar" && other == "vlrasm") &&
                !(kind == "vlrasm" && other == "vlrar")) // the linker tells these two apart
                open(put("walls." + kind, walls.form(other)), kind + " that is a " + other);
        QFile file(installation.path("walls." + kind));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.resize(qint64(3) << 30)); // sparse
        file.close();
        open(file.fileName(), kind + " of 3 GB");
        EXPECT_EQ(m_refused, kind == "xml" ? 0 : m_opened) << kind.toStdString();
        expectSoundFileOpens(kind);
    }

    const QString path =
        put("later.vlr", QByteArray(walls.authoring).replace("formatversion=\"1\"", "formatversion=\"99\""));
    EXPECT_FALSE(window->loadFile(path));
    EXPECT_TRUE(consoleText().contains("format version '99' is not supported"))
        << consoleText().toStdString();
    for (const QString kind : {"vlrbin", "vlrasm"}) {
        QByteArray bytes = walls.form(kind);
        bytes[8] = char(bytes[8] + 40); // the version follows the eight characters of the mark
        EXPECT_FALSE(window->loadFile(put("later." + kind, bytes))) << kind.toStdString();
        EXPECT_FALSE(consoleText().isEmpty()) << kind.toStdString();
    }
}

} // namespace

} // namespace Zph::Applications::Player::Tests
