#pragma once

#include "applications/player/session/cookingaliases.h"
#include "applications/player/session/engine.h"
#include "applications/tool/options.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <initializer_list>

namespace vellor::tool {

/// Options that several commands take.
extern const Option kAlias;
extern const Option kEngine;
/// The engine, its threads and instruction set, and aliases.
const std::vector<Option>& engineOptions();

std::vector<Option> joined(std::initializer_list<std::vector<Option>> lists);

/// The one file of the command line. Throws UsageError where there is none or another one.
QString onlyFile(const Arguments& arguments);

/// The values of kAlias. Throws UsageError, and Failure where there is no such folder.
QVector<Zph::Applications::Player::CookingAlias> readAliases(const Arguments& arguments);

/// The values of engineOptions() that the session is made with. Throws UsageError.
Zph::Applications::Player::EngineOptions readEngineOptions(const Arguments& arguments);

/// The values of an option that may be repeated, in their order.
QStringList allValues(const Arguments& arguments, const char* option);

/// Writes results to standard output; Done, or Unwritable with a line on standard error.
int printOut(const QByteArray& text);

} // namespace vellor::tool
