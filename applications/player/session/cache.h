#pragma once

#include "applications/player/session/valueorsurfaceplayer.h"

#include <QObject>

#include <map>
#include <memory>

namespace Zph::Applications::Player {

class PackageModel;

/// The last result of each output of the document, by uid.
///
/// An output is absent (nobody asked for it, or an input that alters it changed), a placeholder (it is being
/// computed) or a result. There is no limit: one result for each output until an input or the document's end
/// drops it. Main thread.
class Cache : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// A copy of the entry; empty if there is none.
    ValueOrSurfacePlayer get(ORNUInt32 uid) const;

    /// The package whose outputs are kept, and which tells what an input alters. With none, or for an input
    /// that it knows nothing of, a change counts for every output.
    void setDescription(std::shared_ptr<const PackageModel> description);

public slots:
    void pushOutput(ORNUInt32 uid, const ValueOrSurfacePlayer& value);
    void invalidateOutput(ORNUInt32 uid);
    void clear();
    /// Drops the outputs that the input with this index alters.
    void inputChanged(int index);

private:
    std::map<quint32, ValueOrSurfacePlayer> m_results;
    std::shared_ptr<const PackageModel> m_description;
};

} // namespace Zph::Applications::Player
