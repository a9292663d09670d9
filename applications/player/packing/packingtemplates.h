#pragma once

#include "applications/player/packing/packingtemplate.h"

namespace Zph::Applications::Player {

// The templates to choose from: those that come with the program and those of the user's folder, where a
// file takes the place of a shipped one of the same name. Main thread.
//
// A dialog shows entries() by shownName() and keeps the choice as Entry::name. Its export goes as the command
// line's: planPacking() and PackingPlan::settle(), the outputs of PackingPlan::outputs() into a
// PackingCollector as they come, packPicture() with PlannedFile::depth for each file that it completes, and
// writePictureFile() in PlannedFile::format and that depth under BaseNames::next(packedBaseNameSource()); the
// pattern of the plan holds where the user has given none.
class PackingTemplates
{
public:
    struct Entry
    {
        QString name; // of the file without ".json": what the command line and settings know it by
        QString file;
        bool isShipped = false;
        std::optional<PackingTemplate> content; // nothing for a file that can't be read
        QString error;                          // why, then

        // The label, or the name where there is none.
        QString shownName() const;
    };

    // Reads shippedFolder() and userFolder(). The codecs are registered before.
    PackingTemplates();
    // Reads these folders; one that isn't there has no templates.
    PackingTemplates(const QString& shipped, const QString& users);

    static QString shippedFolder();
    // It need not be there.
    static QString userFolder();

    // Sorted by name.
    const QVector<Entry>& entries() const { return m_entries; }
    // By name in any case of letters; null where there is none.
    const Entry* find(const QString& name) const;
    QStringList names() const;

private:
    void readFolder(const QString& folder, bool isShipped);

    QVector<Entry> m_entries;
};

} // namespace Zph::Applications::Player
