#include "applications/tool/texttable.h"

#include <algorithm>

namespace vellor::tool {

namespace {

QString withoutBlanksBehind(QString text)
{
    while (text.endsWith(' '))
        text.chop(1);
    return text;
}

} // namespace

TextTable::TextTable(const QStringList& titles, const QVector<int>& numbers)
    : m_numbers(numbers), m_rows{{titles, false}}
{
}

void TextTable::addRow(const QStringList& cells)
{
    m_rows.append({cells, false});
}

void TextTable::addLine(const QString& text)
{
    m_rows.append({{text}, true});
}

QString TextTable::text(int indent) const
{
    QVector<int> widths(m_rows.first().cells.size());
    for (const Row& row : m_rows)
        for (int i = 0; !row.isLine && i < row.cells.size(); ++i)
            widths[i] = std::max(widths[i], row.cells[i].size());
    QString text;
    for (const Row& row : m_rows) {
        QString line(indent, ' ');
        for (int i = 0; i < row.cells.size(); ++i) {
            const QString& cell = row.cells[i];
            const int width = row.isLine ? 0 : widths[i];
            line += (i > 0 ? "  " : "") +
                    (m_numbers.contains(i) ? cell.rightJustified(width) : cell.leftJustified(width));
        }
        text += withoutBlanksBehind(line) + '\n';
    }
    return text;
}

} // namespace vellor::tool
