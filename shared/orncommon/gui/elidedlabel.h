#pragma once

#include <QLabel>

namespace Orn::Gui {

/// A label that shortens its text with an ellipsis to its own width, on show and on resize.
///
/// Rich text is shortened by its plain words, and the tags around the whole text stay: "<b>A long name</b>"
/// becomes "<b>A lon…</b>". Text with tags inside is left whole. Until a tooltip is set, the whole text is
/// the tooltip while it is shortened.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(const QString& text = {}, QWidget* parent = nullptr, Qt::WindowFlags flags = {});

    /// Hides QLabel::setText, which would set what is shown.
    void setText(const QString& text);
    QString fullText() const { return m_fullText; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void elide();
    QFont fullFont() const;

    QString m_fullText;
    QString m_head; ///< opening tags
    QString m_plain;
    QString m_tail; ///< closing tags
};

} // namespace Orn::Gui
