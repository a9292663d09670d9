#include "errorconsole.h"

#include <QTextCursor>
#include <QTextEdit>
#include <QVBoxLayout>

namespace Zph::Applications::Player {

namespace {

QColor levelColour(int level)
{
    switch (level) {
    case 0:
        return Qt::darkYellow;
    case 1:
        return Qt::darkRed;
    default:
        return Qt::red;
    }
}

} // namespace

ErrorConsole::ErrorConsole(QWidget* parent) : QDialog(parent), m_text(new QTextEdit(this))
{
    setWindowTitle(tr("Error console"));
    setObjectName("errorConsole");
    resize(600, 150);
    m_text->setReadOnly(true);
    m_text->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_text->setAccessibleName(tr("Error console"));
    m_text->setObjectName("console");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_text);
}

void ErrorConsole::clear()
{
    m_text->clear();
}

void ErrorConsole::message(int level, const QString& text)
{
    append(levelColour(level), text);
    if (isHidden())
        show();
}

void ErrorConsole::stage(const QString& text)
{
    append(Qt::darkGray, text);
}

QString ErrorConsole::text() const
{
    return m_text->toPlainText();
}

void ErrorConsole::append(const QColor& colour, const QString& text)
{
    QTextCursor end(m_text->document());
    end.movePosition(QTextCursor::End);
    if (!m_text->document()->isEmpty())
        end.insertBlock();
    QTextCharFormat format;
    format.setForeground(colour);
    end.insertText(text, format);
    m_text->setTextCursor(end);
    m_text->ensureCursorVisible();
}

} // namespace Zph::Applications::Player
