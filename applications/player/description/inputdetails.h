#pragma once

#include "applications/player/description/packagemodel.h"

#include <QString>
#include <QVector>

namespace Zph::Applications::Player {

// What the description says of an input beside its type and default, for those who print it or check values
// against it.
struct InputDetails
{
    struct Choice
    {
        int value = 0;
        QString label;
    };

    QString identifier;
    QString label;       // the identifier where there is none
    QString description; // may be empty
    QString group;       // a path with "/", or empty
    QString widget;      // "slider", "combobox"..., for the engine's own inputs "time", "seed"...; or empty
    QString unit;        // of an angle
    QString visibleIf;
    QString defaultText; // of a text input
    bool toggle = false; // an integer that means off and on
    bool clamp = false;  // values beyond the range are not accepted
    // As many numbers as the type has components, or none where nothing bounds that side.
    QVector<double> minimum;
    QVector<double> maximum;
    QVector<Choice> choices; // in the order of the description
};

// All of it empty for an input that the description doesn't name.
InputDetails inputDetails(const PackageInput& input);

// What the window's panel starts an input with: the engine's default, but width and height 512 for an output
// size, whatever the engine starts from.
InputValue panelDefault(const PackageInput& input);

// The inputs of the graph with this key, and of no graph, in the order in which the panel shows them.
QVector<PackageInput> sortedInputs(const PackageModel& package, const QString& graphKey);

} // namespace Zph::Applications::Player
