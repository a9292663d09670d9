#pragma once

#include "applications/player/session/valueorsurfaceplayer.h"
#include "orncommon/gui/layoutwidget.h"

#include <vellor/engine.h>

#include <memory>
#include <set>
#include <vector>

namespace Zph::Applications::Player {

class PackageModel;
class ViewOutput;

/// What a view asks of the window that holds it.
class ViewHost
{
public:
    virtual ~ViewHost() = default;
    /// From here on the view gets packages and finished outputs, and its wishes count in the generation step.
    virtual void registerViewer(ViewOutput* view) = 0;
    /// Forgets the view. Called by the view's destructor too, then for an object that is no longer a full
    /// view.
    virtual void unregisterViewer(ViewOutput* view) = 0;
    virtual int viewerCount() const = 0;
};

/// A panel that shows outputs of the package: the common base of the 2D and the 3D view.
/// Disabled until a package is there. All calls on the main thread.
class ViewOutput : public Orn::Gui::LayoutWidget
{
    Q_OBJECT

public:
    explicit ViewOutput(ViewHost& host, QWidget* parent = nullptr);
    ~ViewOutput() override;

    /// A frozen view keeps what it shows and asks for nothing.
    bool isFrozen() const { return m_frozen; }

    /// A new package. The model outlives the call by the shared pointer; never null.
    virtual void setPackage(std::shared_ptr<const PackageModel> package) = 0;
    /// The uids that the view wants to show; the generation step computes at least these.
    virtual std::vector<quint32> currentOutputs() const = 0;
    /// Shows a result at once; used when the cache has it already. An empty one means "being computed".
    virtual void setDisplay(const ValueOrSurfacePlayer& display, quint32 uid) = 0;
    /// An output was computed; the view takes it if it is its current one and the view isn't frozen.
    virtual void outputComplete(const VellorOutputDesc& desc, const ValueOrSurfacePlayer& result) = 0;
    /// Which outputs of the package the description's conditions hide now.
    virtual void outputsChanged(const std::set<quint32>& hidden) = 0;
    /// No package any more.
    virtual void clearView() = 0;

signals:
    void currentOutputChanged(ORNUInt32 uid);
    void visibilityChangedSignal();

public slots:
    virtual void closeView() = 0;

protected:
    ViewHost& host() const { return m_host; }
    void setFrozen(bool frozen) { m_frozen = frozen; }

private:
    ViewHost& m_host;
    bool m_frozen = false;
};

} // namespace Zph::Applications::Player
