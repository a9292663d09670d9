#pragma once

#include "applications/player/views/viewoutput.h"

namespace Zph::Applications::Player {

/// The panel of the 3D view. It asks for no outputs and says that this build shows materials flat only.
class View3D : public ViewOutput
{
    Q_OBJECT

public:
    explicit View3D(ViewHost& host, QWidget* parent = nullptr);

    void setPackage(std::shared_ptr<const PackageModel> package) override;
    std::vector<quint32> currentOutputs() const override { return {}; }
    void setDisplay(const ValueOrSurfacePlayer&, quint32) override {}
    void outputComplete(const VellorOutputDesc&, const ValueOrSurfacePlayer&) override {}
    void outputsChanged(const std::set<quint32>&) override {}
    void clearView() override;

public slots:
    void closeView() override {}
};

} // namespace Zph::Applications::Player
