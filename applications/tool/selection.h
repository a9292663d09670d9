#pragma once

#include "applications/tool/inputvalues.h"
#include "applications/tool/options.h"

namespace vellor::tool {

class Package;

/// What of a package a command line asks for, and with which values.
struct Selection
{
    QVector<Zph::Applications::Player::PackageOutput> outputs; // in the package's order; never empty
    InputValues values;
    QStringList graphs; // their keys
    QString preset;     // the label of the one applied; or empty
};

/// The options that readSelection() reads.
const std::vector<Option>& selectionOptions();

/// Applies the preset first, then size and seed, then the values in their order, then the pictures. With a
/// rate, in frames a second, numbered pictures are sequences. Throws UsageError, and Failure for a picture
/// that can't be read.
Selection readSelection(const Package& package, const Arguments& arguments,
                        std::optional<double> sequenceRate = {});

} // namespace vellor::tool
