#pragma once

// The expression language of authoring files, as a tree.
//
//   program     = { "let" name "=" expression ";" } expression
//   expression  = or [ "?" expression ":" expression ]
//   or          = and { ("||" | "or") and }             and = equality { ("&&" | "and") equality }
//   equality    = relation { ("==" | "!=") relation }   relation = sum { ("<" | "<=" | ">" | ">=") sum }
//   sum         = product { ("+" | "-") product }       product = unary { ("*" | "/" | "%") unary }
//   unary       = ("-" | "+" | "!" | "not") unary | postfix
//   postfix     = primary { "." swizzle }
//   primary     = number | "true" | "false" | name | name "(" [ expression { "," expression } ] ")"
//               | name "." name "(" [ expression { "," expression } ] ")"
//               | "$" name | "(" expression ")" | ("input" | "value") ( "." name | "[" string "]" )
//               | "instance" "." name "." name
//
// Depth is bounded by the parser, so that whoever walks a tree may do so by recursion.

#include "platform/cooker/diagnostics.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace vellor::cooker {

struct Expression
{
    enum class Kind
    {
        Float,
        Int,
        Bool, // literals
        Input,
        Value,    // text: what is referred to
        Instance, // text: "instance.output"
        Name,     // a let, or a built-in like pi and pos
        String,   // only as an argument
        Call,     // text: function
        Swizzle,  // text: components
        Unary,
        Binary, // text: operator
        Conditional
    };

    Kind kind = Kind::Float;
    std::size_t at = 0; // byte offset in the expression's text
    std::string text;
    double number = 0.0;
    std::vector<std::unique_ptr<Expression>> parts;
    int depth = 1;
};

struct ExpressionProgram
{
    struct Let
    {
        std::string name;
        std::size_t at = 0;
        std::unique_ptr<Expression> expression;
    };
    std::vector<Let> lets;
    std::unique_ptr<Expression> result;
};

/// What is wrong with an expression, at a place in its file.
struct ExpressionError : std::runtime_error
{
    ExpressionError(Place where, const std::string& text) : std::runtime_error(text), place(where) {}

    Place place;
};

/// Throws ExpressionError.
ExpressionProgram parseExpression(const Sources& sources, const SourceText& text);

} // namespace vellor::cooker
