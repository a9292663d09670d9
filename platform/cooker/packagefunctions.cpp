#include "platform/cooker/packagefunctions.h"

#include <algorithm>
#include <set>

namespace vellor::cooker {

std::optional<TypedValue> PackageFunctions::input(const std::string&, ExpressionCompiler&) const
{
    return std::nullopt;
}

std::optional<TypedValue> PackageFunctions::value(const std::string&, ExpressionCompiler&) const
{
    return std::nullopt;
}

TypedValue PackageFunctions::instanceNumber(const std::string&, Place place, ExpressionCompiler&) const
{
    throw ExpressionError(place, "a function knows no instances; hand their numbers over as arguments");
}

OwnFunction PackageFunctions::function(const std::string& name) const
{
    const PackageSource* package = &m_package;
    const std::size_t dot = name.find('.');
    if (dot != std::string::npos) {
        const auto included = package->included.find(name.substr(0, dot));
        package = included == package->included.end() ? nullptr : included->second;
    }
    if (!package)
        return {};
    const std::string own = dot == std::string::npos ? name : name.substr(dot + 1);
    for (const FunctionSource& function : package->functions) {
        if (function.id.text == own)
            return {&function, package};
    }
    return {};
}

std::vector<std::string> PackageFunctions::knownFunctions() const
{
    std::vector<std::string> names;
    for (const FunctionSource& function : m_package.functions)
        names.push_back(function.id.text);
    for (const auto& [as, package] : m_package.included) {
        if (!package)
            continue;
        for (const FunctionSource& function : package->functions)
            names.push_back(as + "." + function.id.text);
    }
    return names;
}

void checkFunctions(const PackageSource& package, const Sources& sources, Diagnostics& diagnostics)
{
    std::set<std::string> names(functionNames().begin(), functionNames().end());
    for (const FunctionSource& function : package.functions) {
        if (!names.insert(function.id.text).second)
            diagnostics.error(function.id.place, "the function name '" + function.id.text + "' is taken");
        std::set<std::string> arguments;
        for (const SourceText& argument : function.arguments) {
            if (!arguments.insert(argument.text).second)
                diagnostics.error(argument.place, "the argument '" + argument.text + "' is there twice");
        }
        if (!function.expression)
            continue;
        try {
            parseExpression(sources, function.expression);
        } catch (const ExpressionError& error) {
            diagnostics.error(error.place, error.what());
        }
    }
}

} // namespace vellor::cooker
