#include "filekinds.h"

#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QFileInfo>
#include <QImageReader>
#include <QObject>

namespace Zph::Applications::Player {

namespace {

const QStringList& packageSuffixes()
{
    static const QStringList suffixes{"vlrbin", "vlrasm", "vlrar", "vlr", "vlrmeta"};
    return suffixes;
}

const QStringList& imageSuffixes()
{
    static const QStringList suffixes = [] {
        QStringList list;
        for (const auto& format : Orn::Image::Codec::SurfaceCodecManager::instance().getReadableFormats())
            list << format.extension.toLower();
        list.removeDuplicates();
        return list;
    }();
    return suffixes;
}

} // namespace

FileKind fileKind(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == "vlr")
        return FileKind::Authoring;
    if (suffix == "vlrar")
        return FileKind::Archive;
    if (suffix == "vlrasm")
        return FileKind::Assembly;
    if (suffix == "vlrbin")
        return FileKind::Binary;
    return suffix == "xml" ? FileKind::Xml : FileKind::Metadata;
}

QString openDialogFilter()
{
    QString images;
    for (const QByteArray& format : QImageReader::supportedImageFormats())
        images += QStringLiteral("*.%1 ").arg(QString::fromLatin1(format));
    images.chop(1);
    return QObject::tr(
               "All Vellor files (*.vlrar *.vlr *.vlrasm *.xml *.vlrbin *.vlrmeta %1)"
               ";;Vellor assembly files (*.vlrasm *.xml);;Vellor engine binary files (*.vlrbin *.xml)"
               ";;Vellor authoring files (*.vlr);;Vellor archive files (*.vlrar)"
               ";;Vellor metadata files (*.vlrmeta);;Bitmap w/ Vellor metadata files (%1);;All files (*.*)")
        .arg(images);
}

bool isImageFile(const QString& path)
{
    return imageSuffixes().contains(QFileInfo(path).suffix().toLower());
}

const QStringList& droppableSuffixes()
{
    static const QStringList suffixes = packageSuffixes() + imageSuffixes();
    return suffixes;
}

} // namespace Zph::Applications::Player
