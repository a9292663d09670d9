#include "applications/tool/package.h"

#include "applications/player/description/descriptionfile.h"
#include "applications/player/session/enginerecords.h"
#include "applications/player/session/packagearchive.h"
#include "applications/player/session/packagecooker.h"
#include "applications/player/session/packagelinker.h"
#include "applications/tool/failure.h"
#include "applications/tool/messageprinter.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace vellor::tool {

using namespace Zph::Applications::Player;

namespace {

constexpr int kEverythingDynamic = 7; // output size, pixel size and random seed stay inputs

/// A package on its way to the engine.
struct Binary
{
    QByteArray bytes;
    QDomDocument description;
    QByteArray archive, assembly, descriptionText; // what there was of them
};

[[noreturn]] void fail(const QString& file, const MessagePrinter& printer, const char* otherwise)
{
    throw Failure(Failed, printer.hasErrors() ? QString() : file + ": " + otherwise);
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    if (QFileInfo(path).isDir() || !file.open(QIODevice::ReadOnly))
        throw Failure(UnreadableFile, path + ": the file can't be read");
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw Failure(UnreadableFile, path + ": " + file.errorString());
    return bytes;
}

void describe(const QString& file, const QByteArray& xml, QDomDocument& description)
{
    QString reason;
    if (!parseDescription(xml, description, &reason))
        throw Failure(UnreadableFile, file + ": " + reason);
}

/// Links `bytes`, an assembly or an archive. The description of an archive is taken.
void link(const QString& file, QByteArray bytes, Binary& binary)
{
    MessagePrinter printer(file);
    PackageLinker linker(printer, 0);
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    if (!linker.link(device))
        fail(file, printer, "linking failed");
    binary.bytes = QByteArray(linker.binary().constData(), linker.binary().size());
    if (binary.description.isNull() && !linker.descriptions().isEmpty())
        linker.takeDescription(binary.description);
}

Binary cook(const QString& file, const QVector<CookingAlias>& aliases)
{
    readFile(file); // tells a file that isn't there from one that is wrong
    MessagePrinter printer(file);
    PackageCooker cooker(printer, {0, kEverythingDynamic, aliases});
    if (!cooker.cook({file}))
        fail(file, printer, "cooking failed");
    Binary binary;
    describe(file, cooker.description(), binary.description);
    const QByteArray assembly = cooker.assembly(), description = cooker.description();
    binary.assembly = QByteArray(assembly.constData(), assembly.size()); // the cooker's go with it
    binary.descriptionText = QByteArray(description.constData(), description.size());
    link(file, binary.assembly, binary);
    return binary;
}

Binary readBesideDescription(const QString& file, bool isAssembly)
{
    Binary binary;
    const QFileInfo info(file);
    const QString xml = info.dir().filePath(info.baseName() + ".xml");
    if (QFileInfo::exists(xml)) {
        binary.descriptionText = readFile(xml);
        describe(xml, binary.descriptionText, binary.description);
    }
    if (!isAssembly) {
        binary.bytes = readFile(file);
        return binary;
    }
    binary.assembly = readFile(file);
    link(file, binary.assembly, binary);
    return binary;
}

Binary open(const QString& file, const QVector<CookingAlias>& aliases)
{
    const QString suffix = QFileInfo(file).suffix().toLower();
    if (suffix == "vlr")
        return cook(file, aliases);
    if (suffix == "vlrasm" || suffix == "vlrbin")
        return readBesideDescription(file, suffix == "vlrasm");
    if (suffix != "vlrar")
        throw Failure(UnreadableFile,
                      file + ": unknown kind of file; expected .vlr, .vlrar, .vlrasm or .vlrbin");
    Binary binary;
    binary.archive = readFile(file);
    link(file, binary.archive, binary);
    return binary;
}

} // namespace

Package::Package(const QString& file, const Options& options) : m_file(file)
{
    Binary binary = open(file, options.aliases);
    m_archive = binary.archive;
    m_assembly = binary.assembly;
    m_descriptionText = binary.descriptionText;
    QBuffer device(&binary.bytes);
    device.open(QIODevice::ReadOnly);
    m_engine = std::make_unique<Engine>(nullptr, device, options.engine);
    if (!m_engine->handleOrNull())
        throw Failure(Failed, file + ": the engine refuses the package");
    const EngineRecords records = readEngineRecords(m_engine->handleOrNull());
    m_model = PackageModel(records.inputs, records.outputs, binary.description);
    readPresets();
}

QByteArray Package::archive() const
{
    return m_archive.isEmpty() && !m_assembly.isEmpty() ? packArchive(m_assembly, m_descriptionText)
                                                        : m_archive;
}

QString Package::archiveFileName() const
{
    return QFileInfo(m_file).completeBaseName() + ".vlrar";
}

void Package::readPresets()
{
    // The window resolves the pictures of a package's presets against its data; here it is the package's
    // folder.
    const QDir folder = QFileInfo(m_file).dir();
    m_presets = readInternalPresets(m_model.description(), folder, [](quint32) { return nullptr; });
}

} // namespace vellor::tool
