#include "packagefiles.h"

#include "applications/player/session/packagecooker.h"
#include "applications/player/session/packagelinker.h"
#include "applications/player/session/packagelistener.h"
#include "platform/program/packagearchive.h"

#include <QBuffer>
#include <QFile>

#include <gtest/gtest.h>

#include <map>

namespace Zph::Applications::Player::Tests {

namespace {

/// Nothing may go wrong.
class StrictListener : public PackageListener
{
public:
    void message(int, const QString& text) override { ADD_FAILURE() << text.toStdString(); }
    void stage(const QString&) override {}
    void status(const QString&) override {}
};

QByteArray archiveOf(const QByteArray& assembly, const QByteArray& description)
{
    vellor::program::Archive archive;
    archive.assembly.assign(assembly.begin(), assembly.end());
    archive.description = description.toStdString();
    std::string error;
    const auto bytes = vellor::program::writeArchive(archive, error);
    EXPECT_TRUE(bytes) << error;
    return bytes ? QByteArray(reinterpret_cast<const char*>(bytes->data()), int(bytes->size()))
                 : QByteArray();
}

PackageFiles make(const QString& name)
{
    const QString path = QStringLiteral(VELLOR_TEST_PACKAGES "/%1.vlr").arg(name);
    StrictListener listener;
    PackageFiles files;
    files.authoring = readFile(path);
    CookingOptions options;
    options.dynamicState = 7;
    PackageCooker cooker(listener, options);
    EXPECT_TRUE(cooker.cook({path}));
    files.assembly = QByteArray(cooker.assembly().constData(), cooker.assembly().size());
    files.description = QByteArray(cooker.description().constData(), cooker.description().size());
    QBuffer device(&files.assembly);
    device.open(QIODevice::ReadOnly);
    PackageLinker linker(listener, 0);
    EXPECT_TRUE(linker.link(device));
    files.binary = QByteArray(linker.binary().constData(), linker.binary().size());
    files.archive = archiveOf(files.assembly, files.description);
    return files;
}

} // namespace

const PackageFiles& PackageFiles::get(const QString& name)
{
    static std::map<QString, PackageFiles> made;
    auto found = made.find(name);
    if (found == made.end())
        found = made.emplace(name, make(name)).first;
    return found->second;
}

const QByteArray& PackageFiles::form(const QString& suffix) const
{
    const std::map<QString, const QByteArray*> forms{{"vlr", &authoring},
                                                     {"vlrasm", &assembly},
                                                     {"xml", &description},
                                                     {"vlrbin", &binary},
                                                     {"vlrar", &archive}};
    return *forms.at(suffix);
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size()) << path.toStdString();
}

} // namespace Zph::Applications::Player::Tests
