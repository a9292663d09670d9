#pragma once

#include "platform/cooker/expressioncompiler.h"

namespace vellor::cooker {

/// The names that a function of a package sees: the functions of that package and of those that it includes.
class PackageFunctions : public Names
{
public:
    explicit PackageFunctions(const PackageSource& package) : m_package(package) {}

    std::optional<TypedValue> input(const std::string& name, ExpressionCompiler& compiler) const override;
    std::optional<TypedValue> value(const std::string& name, ExpressionCompiler& compiler) const override;
    TypedValue instanceNumber(const std::string& name, Place place,
                              ExpressionCompiler& compiler) const override;
    OwnFunction function(const std::string& name) const override;
    std::vector<std::string> knownFunctions() const override;
    std::vector<std::string> knownInputs() const override { return {}; }
    std::vector<std::string> knownValues() const override { return {}; }

private:
    const PackageSource& m_package;
};

/// Looks at the functions of a package by themselves: names that are taken, expressions that can't be read.
void checkFunctions(const PackageSource& package, const Sources& sources, Diagnostics& diagnostics);

} // namespace vellor::cooker
