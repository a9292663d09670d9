#pragma once

#include <QList>
#include <QPair>
#include <QString>

namespace Orn::Core {

/// The name of a resource: "scheme://path?key=value&key=value", kept as the plain text that it is. Nothing is
/// escaped or decoded, except between local files and their URLs.
class Url
{
public:
    using QueryItems = QList<QPair<QString, QString>>;

    Url() = default;
    explicit Url(const QString& text) : m_text(text) {}
    Url(const QString& scheme, const QString& path);

    static Url fromLocalFile(const QString& path);
    QString toLocalFile() const;

    const QString& toString() const { return m_text; }

    /// What stands before the first "://"; empty if there is none.
    QString getScheme() const;
    bool hasScheme() const { return !getScheme().isEmpty(); }
    bool isValid() const { return hasScheme(); }
    bool isLocalFile() const;

    /// Without scheme and query.
    QString getPath() const;

    /// Whether this lies in the other's folder, by the texts alone and case-sensitively.
    bool isUnderPath(const Url& other) const;
    bool isParentOf(const Url& other) const { return other.isUnderPath(*this); }

    bool hasQueries() const;
    void removeQueries();
    QueryItems queryItems() const;
    /// The first value for the key, or empty.
    QString queryItem(const QString& key) const;
    /// Replaces the query; no items leave none.
    void setQueryItems(const QueryItems& items);

private:
    QString m_text;
};

inline bool operator==(const Url& a, const Url& b)
{
    return a.toString() == b.toString();
}

inline bool operator!=(const Url& a, const Url& b)
{
    return !(a == b);
}

} // namespace Orn::Core
