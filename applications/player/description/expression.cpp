#include "applications/player/description/expression.h"

#include <charconv>
#include <limits>

// A recursive-descent parser that computes while it reads: texts are short and evaluated once per change.
// A fault of the text ends the reading; a reference that can't be had is noted, stands for 0, and reading
// goes on, so that one evaluation tells all of its faults.

namespace Zph::Applications::Player {

namespace {

constexpr int maximumDepth = 200;

float truth(bool value)
{
    return value ? 1.0f : 0.0f;
}

struct Operator
{
    const char* token;
    float (*apply)(float, float);
};

// One row a level, from the loosest; in a level a token stands behind the longer ones that start with it.
constexpr int levelCount = 6;
constexpr Operator levels[levelCount][4] = {
    {{"||", [](float a, float b) { return truth(a != 0 || b != 0); }}},
    {{"&&", [](float a, float b) { return truth(a != 0 && b != 0); }}},
    {{"==", [](float a, float b) { return truth(a == b); }},
     {"!=", [](float a, float b) { return truth(a != b); }}},
    {{"<=", [](float a, float b) { return truth(a <= b); }},
     {">=", [](float a, float b) { return truth(a >= b); }},
     {"<", [](float a, float b) { return truth(a < b); }},
     {">", [](float a, float b) { return truth(a > b); }}},
    {{"+", [](float a, float b) { return a + b; }}, {"-", [](float a, float b) { return a - b; }}},
    {{"*", [](float a, float b) { return a * b; }}, {"/", [](float a, float b) { return a / b; }}},
};

bool isDictionary(const QVariant& value)
{
    return value.userType() == QMetaType::QVariantHash;
}

bool isKeyCharacter(QChar c)
{
    return c.isLetterOrNumber() || QLatin1String("_$[]{}-+^@=%,!").contains(c);
}

class Parser
{
public:
    Parser(const EvaluationContext& context, const QString& text) : m_context(context), m_text(text) {}

    Evaluation run()
    {
        const float value = chain(0);
        skipBlanks();
        if (m_position < m_text.size())
            parsingError();
        Evaluation result;
        result.failed = m_failed;
        result.messages = m_messages;
        if (!m_failed)
            result.value = value;
        return result;
    }

private:
    float chain(int level)
    {
        if (level == levelCount)
            return unary();
        float left = chain(level + 1);
        while (const Operator* op = takeOperator(level)) {
            const float right = chain(level + 1);
            left = op->apply(left, right);
        }
        return left;
    }

    float unary()
    {
        const DepthGuard guard(*this);
        if (!guard.allowed || m_stopped)
            return parsingError();
        if (take("!"))
            return truth(unary() == 0);
        if (take("+"))
            return unary();
        if (take("-"))
            return -unary();
        return primary();
    }

    float primary()
    {
        float number = 0;
        if (takeNumber(number))
            return number;
        if (take("true"))
            return 1;
        if (take("false"))
            return 0;
        if (take("(")) {
            const float value = chain(0);
            return expect(")") ? value : 0;
        }
        return take("input") ? reference() : parsingError();
    }

    float reference()
    {
        QString key;
        const bool bracketed = take("[");
        if (!expect(bracketed ? "\"" : ".") || !takeKey(key))
            return parsingError();
        if (bracketed && !(expect("\"") && expect("]")))
            return 0;
        const int beforeDot = m_position;
        QString component;
        if (take(".") && !takeComponent(component)) {
            m_position = beforeDot;
            return parsingError();
        }
        return lookUp(key, component);
    }

    float lookUp(const QString& key, const QString& component)
    {
        QVariant value;
        if (!find(QStringLiteral("input"), value) || !findIn(value, key, value))
            return 0;
        if (!component.isEmpty() && !findIn(value, component, value))
            return 0;
        switch (value.userType()) {
        case QMetaType::Bool:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Double:
        case QMetaType::Float:
            return value.toFloat();
        default:
            return failed(QStringLiteral("Can't convert to float: ") + key);
        }
    }

    bool find(const QString& key, QVariant& value)
    {
        for (int i = m_context.size() - 1; i >= 0; --i) {
            const auto found = m_context[i].constFind(key);
            if (found != m_context[i].constEnd()) {
                value = *found;
                return true;
            }
        }
        failed(QStringLiteral("Key not found: '%1'").arg(key));
        return false;
    }

    bool findIn(const QVariant& dictionary, const QString& key, QVariant& value)
    {
        if (isDictionary(dictionary)) {
            const QVariantHash entries = dictionary.toHash();
            const auto found = entries.constFind(key);
            if (found != entries.constEnd()) {
                value = *found;
                return true;
            }
        }
        failed(QStringLiteral("Key not found: '%1'").arg(key));
        return false;
    }

    void skipBlanks()
    {
        while (m_position < m_text.size() && m_text[m_position].isSpace())
            ++m_position;
    }

    bool take(const char* token)
    {
        skipBlanks();
        const QLatin1String wanted(token);
        if (m_stopped || !m_text.midRef(m_position).startsWith(wanted))
            return false;
        m_position += wanted.size();
        return true;
    }

    bool expect(const char* token)
    {
        if (take(token))
            return true;
        parsingError();
        return false;
    }

    const Operator* takeOperator(int level)
    {
        for (const Operator& op : levels[level])
            if (op.token && take(op.token))
                return &op;
        return nullptr;
    }

    // A number without its sign, which is an operator; the words for infinity and not-a-number are numbers.
    bool takeNumber(float& number)
    {
        skipBlanks();
        const QByteArray rest = m_text.midRef(m_position, 64).toLatin1();
        if (rest.isEmpty() || rest.front() == '-')
            return false;
        double wide = 0;
        const auto [end, error] = std::from_chars(rest.begin(), rest.end(), wide);
        if (error != std::errc())
            return false;
        number = float(wide);
        m_position += int(end - rest.begin());
        return true;
    }

    bool takeKey(QString& key)
    {
        skipBlanks();
        const int start = m_position;
        while (m_position < m_text.size() && isKeyCharacter(m_text[m_position]))
            ++m_position;
        key = m_text.mid(start, m_position - start);
        return !key.isEmpty();
    }

    bool takeComponent(QString& component)
    {
        for (const char* name : {"x", "y", "z", "w"})
            if (take(name)) {
                component = QLatin1String(name);
                return true;
            }
        return false;
    }

    float failed(const QString& message)
    {
        m_failed = true;
        m_messages.append(message);
        return 0;
    }

    float parsingError()
    {
        if (!m_stopped)
            failed(QStringLiteral("Parsing Error at %1: ").arg(m_position) + m_text.mid(m_position));
        m_stopped = true;
        return 0;
    }

    struct DepthGuard
    {
        explicit DepthGuard(Parser& owner) : parser(owner), allowed(++owner.m_depth <= maximumDepth) {}
        ~DepthGuard() { --parser.m_depth; }
        Parser& parser;
        const bool allowed;
    };

    const EvaluationContext& m_context;
    const QString& m_text;
    int m_position = 0;
    int m_depth = 0;
    bool m_failed = false;
    bool m_stopped = false;
    QStringList m_messages;
};

} // namespace

Evaluation evaluate(const EvaluationContext& context, const QString& text)
{
    return Parser(context, text).run();
}

} // namespace Zph::Applications::Player
