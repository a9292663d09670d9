#include "platform/cooker/expression.h"

#include "platform/cooker/literals.h"

#include <algorithm>
#include <initializer_list>

namespace vellor::cooker {

namespace {

constexpr int kMaxNesting = 120, kMaxDepth = 240;
constexpr std::size_t kMaxLets = 256;

struct Token
{
    enum class Kind
    {
        Number,
        Name,
        Reserved,
        String,
        Symbol,
        End
    };

    Kind kind = Kind::End;
    std::size_t at = 0;
    std::string text;
};

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}
bool isNameStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool isNamePart(char c)
{
    return isNameStart(c) || isDigit(c);
}

using Pointer = std::unique_ptr<Expression>;

class Parser
{
public:
    Parser(const Sources& sources, const SourceText& text)
        : m_sources(sources), m_source(text), m_text(text.text)
    {
        advance();
    }

    ExpressionProgram program()
    {
        ExpressionProgram program;
        while (isWord("let")) {
            advance();
            ExpressionProgram::Let let;
            let.name = m_token.text;
            let.at = m_token.at;
            if (m_token.kind != Token::Kind::Name)
                fail("expected a name");
            if (program.lets.size() >= kMaxLets)
                fail("too many lets");
            advance();
            expect("=");
            let.expression = expression();
            expect(";");
            program.lets.push_back(std::move(let));
        }
        program.result = expression();
        if (m_token.kind != Token::Kind::End)
            fail("expected an operator or the end");
        return program;
    }

private:
    [[noreturn]] void failAt(std::size_t at, const std::string& text) const
    {
        throw ExpressionError(m_sources.within(m_source, at), text);
    }

    [[noreturn]] void fail(const std::string& expected) const
    {
        failAt(m_token.at, expected + (m_token.kind == Token::Kind::End ? ", found the end of the expression"
                                                                        : ", found '" + m_token.text + "'"));
    }

    void advance()
    {
        while (m_at < m_text.size() &&
               (m_text[m_at] == ' ' || (m_text[m_at] >= '\t' && m_text[m_at] <= '\r')))
            ++m_at;
        m_token = {Token::Kind::End, m_at, {}};
        if (m_at >= m_text.size())
            return;
        const char c = m_text[m_at];
        if (isDigit(c) || (c == '.' && m_at + 1 < m_text.size() && isDigit(m_text[m_at + 1])))
            take(Token::Kind::Number, numberEnd());
        else if (isNameStart(c) || c == '$')
            take(c == '$' ? Token::Kind::Reserved : Token::Kind::Name, nameEnd(m_at + 1));
        else if (c == '"' || c == '\'')
            takeString(c);
        else
            takeSymbol();
    }

    void take(Token::Kind kind, std::size_t end)
    {
        m_token.kind = kind;
        m_token.text = m_text.substr(m_at, end - m_at);
        m_at = end;
    }

    std::size_t nameEnd(std::size_t at) const
    {
        while (at < m_text.size() && isNamePart(m_text[at]))
            ++at;
        return at;
    }

    std::size_t numberEnd() const
    {
        std::size_t at = m_at;
        if (m_text.compare(at, 2, "0x") == 0)
            return nameEnd(at + 2);
        const auto digits = [&] {
            while (at < m_text.size() && isDigit(m_text[at]))
                ++at;
        };
        digits();
        if (at < m_text.size() && m_text[at] == '.') {
            ++at;
            digits();
        }
        if (at < m_text.size() && (m_text[at] == 'e' || m_text[at] == 'E')) {
            ++at;
            if (at < m_text.size() && (m_text[at] == '+' || m_text[at] == '-'))
                ++at;
            digits();
        }
        return nameEnd(at);
    }

    void takeString(char quote)
    {
        const std::size_t end = m_text.find(quote, m_at + 1);
        if (end == std::string::npos)
            failAt(m_at, "this string has no end");
        m_token.kind = Token::Kind::String;
        m_token.text = m_text.substr(m_at + 1, end - m_at - 1);
        m_at = end + 1;
    }

    void takeSymbol()
    {
        for (const char* symbol : {"||", "&&", "==", "!=", "<=", ">="}) {
            if (m_text.compare(m_at, 2, symbol) == 0)
                return take(Token::Kind::Symbol, m_at + 2);
        }
        if (std::string("<>+-*/%!?:().,[]=;").find(m_text[m_at]) == std::string::npos)
            failAt(m_at, "this character has no meaning here");
        take(Token::Kind::Symbol, m_at + 1);
    }

    bool isSymbol(const char* symbol) const
    {
        return m_token.kind == Token::Kind::Symbol && m_token.text == symbol;
    }
    bool isWord(const char* word) const { return m_token.kind == Token::Kind::Name && m_token.text == word; }

    void expect(const char* symbol)
    {
        if (!isSymbol(symbol))
            fail(std::string("expected '") + symbol + "'");
        advance();
    }

    /// Bounds the recursion of the parser itself.
    struct Nesting
    {
        explicit Nesting(Parser& parser) : m_parser(parser)
        {
            if (++m_parser.m_nesting > kMaxNesting)
                m_parser.failAt(m_parser.m_token.at, "the expression is nested too deeply");
        }
        ~Nesting() { --m_parser.m_nesting; }

        Parser& m_parser;
    };

    Pointer make(Expression::Kind kind, std::size_t at, std::string text) const
    {
        auto expression = std::make_unique<Expression>();
        expression->kind = kind;
        expression->at = at;
        expression->text = std::move(text);
        return expression;
    }

    void adopt(Expression& parent, Pointer child) const
    {
        parent.depth = std::max(parent.depth, child->depth + 1);
        if (parent.depth > kMaxDepth)
            failAt(parent.at, "the expression is too long; split it with 'let'");
        parent.parts.push_back(std::move(child));
    }

    Pointer expression()
    {
        const Nesting nesting(*this);
        Pointer condition = binary(0);
        if (!isSymbol("?"))
            return condition;
        Pointer conditional = make(Expression::Kind::Conditional, m_token.at, "?");
        advance();
        adopt(*conditional, std::move(condition));
        adopt(*conditional, expression());
        expect(":");
        adopt(*conditional, expression());
        return conditional;
    }

    /// The operator that stands here, if it is one of this level: from loosest to tightest.
    std::string operatorAt(std::size_t level) const
    {
        static const std::vector<std::vector<std::string>> levels = {
            {"||"}, {"&&"}, {"==", "!="}, {"<", "<=", ">", ">="}, {"+", "-"}, {"*", "/", "%"}};
        const std::string symbol = isWord("or")                          ? "||"
                                   : isWord("and")                       ? "&&"
                                   : m_token.kind == Token::Kind::Symbol ? m_token.text
                                                                         : "";
        const std::vector<std::string>& known = levels[level];
        return std::find(known.begin(), known.end(), symbol) != known.end() ? symbol : "";
    }

    Pointer binary(std::size_t level)
    {
        constexpr std::size_t kLevels = 6;
        if (level == kLevels)
            return unary();
        Pointer left = binary(level + 1);
        for (std::string symbol; !(symbol = operatorAt(level)).empty();) {
            Pointer both = make(Expression::Kind::Binary, m_token.at, symbol);
            advance();
            adopt(*both, std::move(left));
            adopt(*both, binary(level + 1));
            left = std::move(both);
        }
        return left;
    }

    Pointer unary()
    {
        const bool isNot = isSymbol("!") || isWord("not");
        if (!isNot && !isSymbol("-") && !isSymbol("+"))
            return postfix();
        const Nesting nesting(*this);
        Pointer negated = make(Expression::Kind::Unary, m_token.at, isNot ? "!" : m_token.text);
        advance();
        adopt(*negated, unary());
        return negated;
    }

    Pointer postfix()
    {
        Pointer operand = primary();
        while (isSymbol(".")) {
            advance();
            if (m_token.kind != Token::Kind::Name)
                fail("expected components like 'x' or 'rgb'");
            if (operand->kind == Expression::Kind::Name && nextIsBracket()) { // a function of an include
                Token function = m_token;
                function.text = operand->text + "." + function.text;
                advance();
                operand = call(function);
                continue;
            }
            Pointer swizzle = make(Expression::Kind::Swizzle, m_token.at, m_token.text);
            advance();
            adopt(*swizzle, std::move(operand));
            operand = std::move(swizzle);
        }
        return operand;
    }

    Pointer primary()
    {
        const Token token = m_token;
        if (isSymbol("(")) {
            advance();
            Pointer inner = expression();
            expect(")");
            return inner;
        }
        if (token.kind == Token::Kind::End || token.kind == Token::Kind::Symbol)
            fail("expected a value");
        advance();
        if (token.kind == Token::Kind::Number)
            return number(token);
        if (token.kind == Token::Kind::Reserved)
            return make(Expression::Kind::Input, token.at, token.text);
        if (token.kind == Token::Kind::String)
            return make(Expression::Kind::String, token.at, token.text);
        if (token.text == "true" || token.text == "false") {
            Pointer literal = make(Expression::Kind::Bool, token.at, token.text);
            literal->number = token.text == "true";
            return literal;
        }
        if (token.text == "input" || token.text == "value")
            return reference(token);
        if (token.text == "instance")
            return instance();
        return isSymbol("(") ? call(token) : make(Expression::Kind::Name, token.at, token.text);
    }

    Pointer number(const Token& token) const
    {
        const bool isInt =
            token.text.find_first_of(".eE") == std::string::npos || token.text.compare(0, 2, "0x") == 0;
        Pointer literal = make(isInt ? Expression::Kind::Int : Expression::Kind::Float, token.at, token.text);
        const auto whole = isInt ? parseInt(token.text) : std::nullopt;
        const auto real = isInt ? std::nullopt : parseFloat(token.text);
        if (!whole && !real)
            failAt(token.at, "'" + token.text + "' is no number");
        literal->number = whole ? *whole : *real;
        return literal;
    }

    Pointer reference(const Token& token)
    {
        const auto kind = token.text == "input" ? Expression::Kind::Input : Expression::Kind::Value;
        const bool bracket = isSymbol("[");
        if (!bracket)
            expect(".");
        else
            advance();
        if (m_token.kind != (bracket ? Token::Kind::String : Token::Kind::Name))
            fail(bracket ? "expected a name in quotes" : "expected the name of an " + token.text);
        Pointer found = make(kind, m_token.at, m_token.text);
        advance();
        if (bracket)
            expect("]");
        return found;
    }

    Pointer instance()
    {
        std::string names[2];
        const std::size_t at = m_token.at;
        for (std::string& name : names) {
            expect(".");
            if (m_token.kind != Token::Kind::Name)
                fail("expected instance.id.output");
            name = m_token.text;
            advance();
        }
        return make(Expression::Kind::Instance, at, names[0] + "." + names[1]);
    }

    /// Whether what follows the present token is an opening bracket.
    bool nextIsBracket() const
    {
        const std::size_t at = m_text.find_first_not_of(" \t\n\v\f\r", m_at);
        return at != std::string::npos && m_text[at] == '(';
    }

    Pointer call(const Token& token)
    {
        Pointer function = make(Expression::Kind::Call, token.at, token.text);
        advance();
        while (!isSymbol(")")) {
            if (!function->parts.empty())
                expect(",");
            adopt(*function, expression());
        }
        advance();
        return function;
    }

    const Sources& m_sources;
    const SourceText& m_source;
    const std::string& m_text;
    std::size_t m_at = 0;
    Token m_token;
    int m_nesting = 0;
};

} // namespace

ExpressionProgram parseExpression(const Sources& sources, const SourceText& text)
{
    return Parser(sources, text).program();
}

} // namespace vellor::cooker
