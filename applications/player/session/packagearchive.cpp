#include "applications/player/session/packagearchive.h"

#include "platform/program/packagearchive.h"

namespace Zph::Applications::Player {

QByteArray packArchive(const QByteArray& assembly, const QByteArray& description)
{
    vellor::program::Archive archive;
    archive.assembly.assign(assembly.begin(), assembly.end());
    archive.description = description.toStdString();
    std::string error;
    const auto bytes = vellor::program::writeArchive(archive, error);
    return bytes ? QByteArray(reinterpret_cast<const char*>(bytes->data()), int(bytes->size()))
                 : QByteArray();
}

} // namespace Zph::Applications::Player
