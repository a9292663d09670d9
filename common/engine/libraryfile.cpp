#include "common/engine/libraryfile.h"

#include <QFileInfo>

#include <cstring>

#include <elf.h>

namespace Zph::Engine {

namespace {

template<typename Record> bool read(QFile& file, quint64 offset, Record& record)
{
    return file.seek(qint64(offset)) &&
           file.read(reinterpret_cast<char*>(&record), sizeof record) == qint64(sizeof record);
}

bool isWithin(quint64 fileSize, quint64 offset, quint64 size)
{
    return size <= fileSize && offset <= fileSize - size;
}

} // namespace

bool isWholeLibrary(const QString& path)
{
    QFile file(path);
    Elf64_Ehdr header;
    if (!file.open(QIODevice::ReadOnly) || !read(file, 0, header) ||
        std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64)
        return false;
    const auto size = quint64(file.size());
    if (header.e_phnum == 0 || !isWithin(size, header.e_shoff, quint64(header.e_shnum) * header.e_shentsize))
        return false;
    for (quint64 i = 0; i < header.e_phnum; ++i) {
        Elf64_Phdr segment;
        if (!read(file, header.e_phoff + i * sizeof segment, segment) ||
            !isWithin(size, segment.p_offset, segment.p_filesz))
            return false;
    }
    return true;
}

std::unique_ptr<QTemporaryFile> hiddenCopy(const QString& path)
{
    const QFileInfo original(path);
    auto copy = std::make_unique<QTemporaryFile>(original.absolutePath() + "/.XXXXXX-" + original.fileName());
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !copy->open())
        return nullptr;
    const QByteArray bytes = file.readAll();
    if (copy->write(bytes) != bytes.size() || !copy->flush())
        return nullptr;
    return copy;
}

} // namespace Zph::Engine
