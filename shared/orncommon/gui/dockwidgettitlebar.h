#pragma once

#include <QList>
#include <QWidget>

class QAction;
class QLabel;

namespace Orn::Gui {

class ElidedLabel;

/// The strip above a dock: icon, title, and one button for each action. The mouse passes through to the
/// dock, which is dragged by it.
class DockWidgetTitleBar : public QWidget
{
    Q_OBJECT

public:
    /// The actions must outlive the bar.
    explicit DockWidgetTitleBar(const QList<QAction*>& actions, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    QString title() const;
    void setIcon(const QIcon& icon);
    /// A folded bar has no height.
    void setFolded(bool folded);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QLabel* m_icon = nullptr;
    ElidedLabel* m_title = nullptr;
    bool m_folded = false;
};

} // namespace Orn::Gui
