#include "orncommon/gui/elidedlabel.h"

#include <QEvent>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QRegularExpression>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QToolTip>

namespace Orn::Gui {

ElidedLabel::ElidedLabel(const QString& text, QWidget* parent, Qt::WindowFlags flags) : QLabel(parent, flags)
{
    setMinimumWidth(0);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    setText(text);
}

void ElidedLabel::setText(const QString& text)
{
    static const QRegularExpression wrapped(QStringLiteral("^((?:<[^<>/]+>)+)([^<>]*)((?:</[^<>]+>)+)$"));
    m_fullText = text;
    m_head.clear();
    m_tail.clear();
    m_plain = text;
    const QRegularExpressionMatch match = wrapped.match(text);
    if (match.hasMatch()) {
        m_head = match.captured(1);
        m_plain = QTextDocumentFragment::fromHtml(match.captured(2)).toPlainText();
        m_tail = match.captured(3);
    } else if (Qt::mightBeRichText(text)) {
        m_plain.clear();
    }
    elide();
    updateGeometry();
}

QFont ElidedLabel::fullFont() const
{
    QFont result = font();
    if (m_head.contains(QLatin1String("<b>")))
        result.setBold(true);
    if (m_head.contains(QLatin1String("<i>")))
        result.setItalic(true);
    return result;
}

void ElidedLabel::elide()
{
    if (m_plain.isEmpty()) {
        QLabel::setText(m_fullText);
        return;
    }
    const int room = contentsRect().width() - 2 * margin();
    const QString shown = QFontMetrics(fullFont()).elidedText(m_plain, Qt::ElideRight, room);
    QLabel::setText(m_head.isEmpty() ? shown : m_head + shown.toHtmlEscaped() + m_tail);
}

QSize ElidedLabel::sizeHint() const
{
    QSize hint = QLabel::sizeHint();
    if (!m_plain.isEmpty())
        hint.setWidth(QFontMetrics(fullFont()).horizontalAdvance(m_plain) + 2 * margin() + width() -
                      contentsRect().width() + 1);
    return hint;
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

bool ElidedLabel::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && text() != m_fullText &&
        !m_plain.isEmpty() && text() != m_head + m_plain.toHtmlEscaped() + m_tail) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), m_plain, this);
        return true;
    }
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        const bool handled = QLabel::event(event);
        elide();
        return handled;
    }
    return QLabel::event(event);
}

void ElidedLabel::showEvent(QShowEvent* event)
{
    QLabel::showEvent(event);
    elide();
}

void ElidedLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    elide();
}

} // namespace Orn::Gui
