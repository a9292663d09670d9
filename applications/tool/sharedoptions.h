#pragma once

#include "applications/player/session/cookingaliases.h"
#include "applications/tool/options.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace vellor::tool {

/// Options that several commands take.
inline const Option kAlias{"--alias", nullptr, "NAME=DIR",
                           "the folder that includes like NAME://file.vlr are looked up in; may be repeated"};
inline const Option kEngine{"--engine", nullptr, "FILE",
                            "the engine to use; the best one of plugins/engines by default"};

/// The one file of the command line. Throws UsageError where there is none or another one.
QString onlyFile(const Arguments& arguments);

/// The values of kAlias. Throws UsageError, and Failure where there is no such folder.
QVector<Zph::Applications::Player::CookingAlias> readAliases(const Arguments& arguments);

/// The values of an option that may be repeated, in their order.
QStringList allValues(const Arguments& arguments, const char* option);

/// Writes results to standard output; Done, or Unwritable with a line on standard error.
int printOut(const QByteArray& text);

} // namespace vellor::tool
