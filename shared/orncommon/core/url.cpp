#include "orncommon/core/url.h"

#include <QStringList>
#include <QUrl>

namespace Orn::Core {

namespace {

const QLatin1String separator("://");
constexpr QLatin1Char queryMark('?');

} // namespace

Url::Url(const QString& scheme, const QString& path) : m_text(scheme + separator + path)
{
}

Url Url::fromLocalFile(const QString& path)
{
    return Url(QUrl::fromLocalFile(path).toString());
}

QString Url::toLocalFile() const
{
    return QUrl(m_text).toLocalFile();
}

QString Url::getScheme() const
{
    return m_text.left(qMax(0, m_text.indexOf(separator)));
}

bool Url::isLocalFile() const
{
    return getScheme() == QLatin1String("file");
}

QString Url::getPath() const
{
    const QString text = m_text.left(m_text.indexOf(queryMark));
    const int at = text.indexOf(separator);
    return at < 0 ? text : text.mid(at + separator.size());
}

bool Url::isUnderPath(const Url& other) const
{
    const QString& folder = other.m_text;
    return m_text.startsWith(folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/'));
}

bool Url::hasQueries() const
{
    return m_text.contains(queryMark);
}

void Url::removeQueries()
{
    m_text = m_text.left(m_text.indexOf(queryMark));
}

Url::QueryItems Url::queryItems() const
{
    QueryItems items;
    if (!hasQueries())
        return items;
    const QString query = m_text.mid(m_text.indexOf(queryMark) + 1);
    for (const QString& item : query.split(QLatin1Char('&'), Qt::SkipEmptyParts)) {
        const int equals = item.indexOf(QLatin1Char('='));
        items.append({item.left(equals), equals < 0 ? QString() : item.mid(equals + 1)});
    }
    return items;
}

QString Url::queryItem(const QString& key) const
{
    for (const auto& [itemKey, value] : queryItems())
        if (itemKey == key)
            return value;
    return {};
}

void Url::setQueryItems(const QueryItems& items)
{
    removeQueries();
    QStringList texts;
    for (const auto& [key, value] : items)
        texts.append(key + QLatin1Char('=') + value);
    if (!texts.isEmpty())
        m_text += queryMark + texts.join(QLatin1Char('&'));
}

} // namespace Orn::Core
