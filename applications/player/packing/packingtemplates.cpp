#include "applications/player/packing/packingtemplates.h"

#include "applications/player/packing/packingtemplatefile.h"
#include "orncommon/core/applicationsettings.h"

#include <QDir>

#include <algorithm>

namespace Zph::Applications::Player {

QString PackingTemplates::Entry::shownName() const
{
    return content && !content->label.isEmpty() ? content->label : name;
}

PackingTemplates::PackingTemplates() : PackingTemplates(shippedFolder(), userFolder())
{
}

PackingTemplates::PackingTemplates(const QString& shipped, const QString& users)
{
    readFolder(shipped, true);
    readFolder(users, false);
    std::sort(m_entries.begin(), m_entries.end(),
              [](const Entry& a, const Entry& b) { return a.name < b.name; });
}

QString PackingTemplates::shippedFolder()
{
    return Orn::Core::ApplicationSettings::getInstance().findInInstallDir(
        QStringLiteral("resources/templates"));
}

QString PackingTemplates::userFolder()
{
    return QDir(Orn::Core::ApplicationSettings::getInstance().getApplicationDataDir()).filePath("templates");
}

void PackingTemplates::readFolder(const QString& folder, bool isShipped)
{
    if (folder.isEmpty())
        return;
    for (const QFileInfo& file : QDir(folder).entryInfoList({"*.json"}, QDir::Files, QDir::Name)) {
        Entry entry{file.completeBaseName(), file.filePath(), isShipped, {}, {}};
        entry.content = readPackingTemplate(entry.file, entry.error);
        const auto shadowed = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& other) {
            return other.isShipped && other.name.compare(entry.name, Qt::CaseInsensitive) == 0;
        });
        if (shadowed != m_entries.end() && !isShipped)
            *shadowed = entry;
        else
            m_entries.append(entry);
    }
}

const PackingTemplates::Entry* PackingTemplates::find(const QString& name) const
{
    for (const auto sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        const auto found = std::find_if(m_entries.cbegin(), m_entries.cend(), [&](const Entry& entry) {
            return entry.name.compare(name, sensitivity) == 0;
        });
        if (found != m_entries.cend())
            return &*found;
    }
    return nullptr;
}

QStringList PackingTemplates::names() const
{
    QStringList names;
    for (const Entry& entry : m_entries)
        names.append(entry.name);
    return names;
}

} // namespace Zph::Applications::Player
