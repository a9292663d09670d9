#pragma once

#include "applications/player/packing/packer.h"

#include <functional>

namespace Zph::Applications::Player {

// Gathers the pictures of one generation as they come, and keeps each no longer than a file waits for it.
class PackingCollector
{
public:
    // The plan's files, which outlive the object.
    explicit PackingCollector(const QVector<PlannedFile>& files) : m_files(&files) { reset(); }

    // Forgets the pictures, for the next generation.
    void reset();

    // A file, by its place in the plan, has all its pictures.
    using Complete = std::function<void(int file, const PackingPictures& pictures)>;

    // Takes the picture of an output, and tells of the files that became complete by it, in their order.
    void add(quint32 uid, const QSharedPointer<Orn::Surfaces::Surface>& picture, const Complete& complete);

private:
    bool isNeeded(quint32 uid) const;

    const QVector<PlannedFile>* m_files;
    QVector<bool> m_isDone; // by file
    PackingPictures m_pictures;
};

} // namespace Zph::Applications::Player
