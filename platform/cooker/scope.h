#pragma once

// A graph at the place where it is used: what its inputs stand for there.
//
// A graph that the package exposes has inputs of the program. A graph within a graph has what its instance
// gives: expressions over the outer graph, pictures of the outer graph, or the defaults.

#include "platform/cooker/cookoptions.h"
#include "platform/cooker/expressioncompiler.h"
#include "platform/cooker/package.h"

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace vellor::cooker {

struct InputBinding
{
    enum class Kind
    {
        Exposed,    // index: input of the program
        Constant,   // words, or text
        Expression, // of the outer scope
        Outer,      // the outer scope's input of the same name
        Size,
        Seed,    // of the instance
        Picture, // index: node of the program
        Nothing  // an image input that nobody binds
    };

    Kind kind = Kind::Constant;
    InputType type;
    std::int32_t index = program::kNone;
    program::Words words{};
    std::string text;
    const SourceText* expression = nullptr;
    std::string outerName;
};

class Scope : public Names
{
public:
    /// Makes the scope of an instance in this one, its numbers bound; null when something is wrong, which was
    /// told.
    using Open = std::function<std::unique_ptr<Scope>(const Scope& outer, const NodeSource& instance)>;

    Scope(const PackageSource& package, const GraphSource& graph, const CookOptions& options,
          const Open& open, const Scope* outer, const NodeSource* instance);

    std::optional<TypedValue> input(const std::string& name, ExpressionCompiler& compiler) const override;
    std::optional<TypedValue> value(const std::string& name, ExpressionCompiler& compiler) const override;
    TypedValue instanceNumber(const std::string& name, Place place,
                              ExpressionCompiler& compiler) const override;
    OwnFunction function(const std::string& name) const override;
    std::vector<std::string> knownFunctions() const override;
    std::vector<std::string> knownInputs() const override;
    std::vector<std::string> knownValues() const override;

    /// The scope of an instance, made on first demand. Null when it failed. Throws ExpressionError when it is
    /// being made: it hangs on itself.
    Scope* inner(const NodeSource& instance) const;
    /// Forgets it; nothing asks for its numbers.
    void close(const NodeSource& instance) const { m_inner.erase(&instance); }

    /// Base-2 logarithms of width and height of the graph's pictures.
    TypedValue size(ExpressionCompiler& compiler) const;
    /// The same for a node with this size attribute: absent, "WIDTHxHEIGHT" in pixels, or steps "x,y" from
    /// the graph's size.
    TypedValue size(ExpressionCompiler& compiler, const SourceText& text) const;
    TypedValue seed(ExpressionCompiler& compiler) const;
    /// The same for a node with this seed attribute: absent, or an expression that is added.
    TypedValue seed(ExpressionCompiler& compiler, const SourceText& text) const;

    /// The binding of an image or text input, followed to where it comes from; null when there is no such
    /// input.
    const InputBinding* resource(const std::string& name) const;

    const PackageSource& package;
    const GraphSource& graph;
    const Scope* const outer;
    const NodeSource* const instance; // within the outer scope; null for exposed graphs
    std::string path;                 // "bricks/dirt", for messages
    std::map<std::string, InputBinding> inputs;

    struct Result
    {
        std::int32_t node = program::kNone; // kNone: it failed, and that was told
        bool isNumeric = false;
    };
    /// Pictures by "node" or "instance.output", filled while the scope is built.
    std::map<std::string, Result> results;
    /// Nodes that are not built: not yet, or because something is wrong with them, which is told at their
    /// place.
    std::set<std::string> pending;

private:
    TypedValue number(const OutputSource& output, ExpressionCompiler& compiler) const;
    TypedValue bound(const InputBinding& binding, ExpressionCompiler& compiler) const;
    TypedValue clampedSize(ExpressionCompiler& compiler, TypedValue size) const;

    const CookOptions& m_options;
    const Open& m_open;
    std::map<std::string, const ValueSource*> m_values;
    struct Inner
    {
        std::unique_ptr<Scope> scope;
        bool underWay = false;
    };
    mutable std::map<const NodeSource*, Inner> m_inner;
    // Values that are wrong, so that whatever hangs on them fails at once.
    mutable std::map<std::string, ExpressionError> m_failures;
};

} // namespace vellor::cooker
