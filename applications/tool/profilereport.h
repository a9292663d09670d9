#pragma once

#include "applications/player/description/packagemodel.h"
#include "applications/tool/profiler.h"

#include <QJsonObject>

namespace vellor::tool {

/// What one generation cost.
struct Profile
{
    struct Output
    {
        Zph::Applications::Player::PackageOutput output;
        double seconds = 0; // on the clock since the output before it
    };

    QString file;
    QString engine;
    bool hasSteps = false; // false: the engine doesn't tell
    std::vector<ProfileStep> steps;
    std::vector<Output> outputs;
    double seconds = 0; // on the clock, of all outputs together
};

/// For people: first what takes the time, then the steps from the dearest on, then the outputs.
QString profileText(const Profile& profile);

/// The same for machines, as docs/commandline.md describes it.
QJsonObject profileJson(const Profile& profile);

} // namespace vellor::tool
