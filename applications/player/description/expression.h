#pragma once

#include <QStringList>
#include <QVariant>
#include <QVector>

namespace Zph::Applications::Player {

// The small language of visibility conditions: 32-bit float arithmetic, comparisons and logic over inputs.
//
//   or         and { "||" and }
//   and        equality { "&&" equality }
//   equality   relation { ("==" | "!=") relation }
//   relation   sum { ("<=" | ">=" | "<" | ">") sum }
//   sum        product { ("+" | "-") product }
//   product    unary { ("*" | "/") unary }
//   unary      { "!" | "+" | "-" } primary
//   primary    number | "true" | "false" | "(" or ")" | reference
//   reference  "input" ( "." key | "[" '"' key '"' "]" ) [ "." ( "x" | "y" | "z" | "w" ) ]
//
// Truth is 1.0 and 0.0. A key is letters, digits and "_$[]{}-+^@=%,!", so an operator that follows one needs
// a blank ahead of it.

// Dictionaries from the outermost to the innermost; a name is sought from the innermost. Values are booleans,
// integers, floats, or nested QVariantHash dictionaries.
using EvaluationContext = QVector<QVariantHash>;

struct Evaluation
{
    QVariant value; // a float; invalid when failed
    bool failed = false;
    QStringList messages;
};

// Evaluates `text`, whatever it holds: any fault, excessive nesting included, ends in `failed`.
Evaluation evaluate(const EvaluationContext& context, const QString& text);

} // namespace Zph::Applications::Player
