#include "applications/tool/messageprinter.h"

#include "applications/player/session/packagelinker.h"

#include <QRegularExpression>

#include <cstdio>

namespace vellor::tool {

using Zph::Applications::Player::PackageLinker;

namespace {

constexpr int kNote = 0;
constexpr int kSummary = 2; // says that the whole failed, of which the exit code tells already

} // namespace

void MessagePrinter::message(int level, const QString& text)
{
    if (level == kSummary && m_hasErrors)
        return;
    m_hasErrors |= level > kNote;
    QString line = text;
    if (line.startsWith(PackageLinker::prefix()))
        line = line.mid(PackageLinker::prefix().size()).trimmed();
    // The cooker's own begin with the file, or with one that it includes, then line and column.
    static const QRegularExpression located(QStringLiteral("^[^\\n]*:[0-9]+:[0-9]+: "));
    if (!located.match(line).hasMatch())
        line = m_file + ": " + line;
    std::fprintf(stderr, "%s\n", qPrintable(line));
}

} // namespace vellor::tool
