#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace vellor::tool {

/// A table for people: columns as wide as their widest cell, two blanks between them, nothing behind the
/// last.
class TextTable
{
public:
    /// `numbers` are the columns that are flush right.
    explicit TextTable(const QStringList& titles, const QVector<int>& numbers = {});

    void addRow(const QStringList& cells);
    /// A line that keeps out of the columns.
    void addLine(const QString& text);

    /// Every line begins with `indent` blanks and ends with a line end.
    QString text(int indent = 0) const;

private:
    struct Row
    {
        QStringList cells;
        bool isLine = false;
    };

    QVector<int> m_numbers;
    QVector<Row> m_rows;
};

} // namespace vellor::tool
