#pragma once

#include <QString>
#include <QStringList>

namespace Zph::Applications::Player {

/// The kinds of file that open as a document, told by the suffix in lower case.
enum class FileKind
{
    Authoring, ///< .vlr
    Archive,   ///< .vlrar
    Assembly,  ///< .vlrasm
    Binary,    ///< .vlrbin
    Xml,       ///< .xml, the description beside an assembly or binary
    Metadata   ///< .vlrmeta and every other file, taken as a bitmap with metadata
};

FileKind fileKind(const QString& path);

/// The filter of the open dialog, with one pattern for each image format that can be read.
QString openDialogFilter();

/// Whether the suffix is that of an image format that can be read.
bool isImageFile(const QString& path);

/// Suffixes in lower case that a drag may bring: packages, metadata and every readable image format.
const QStringList& droppableSuffixes();

} // namespace Zph::Applications::Player
