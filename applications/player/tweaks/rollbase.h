#pragma once

#include <QFrame>

class QHBoxLayout;
class QToolButton;
class QVBoxLayout;

namespace Zph::Applications::Player {

// A panel that folds: a header with a caption above a body. Owned by its Qt parent.
class RollBase : public QFrame
{
    Q_OBJECT

public:
    RollBase(const QString& caption, QWidget* parent);

    QFrame* headerFrame() const { return m_headerFrame; }
    QFrame* bodyFrame() const { return m_bodyFrame; }
    QVBoxLayout* bodyLayout() const { return m_bodyLayout; }
    bool isUnfolded() const;

    // The room at the left of the body, in pixels.
    int indent() const;
    void setIndent(int pixels);

signals:
    void notifyUnfold(bool unfold);
    void unfolded(RollBase* roll);

public slots:
    void unfold(bool unfold);
    void setItemsVisible(bool visible);

protected:
    QHBoxLayout* headerLayout() const { return m_headerLayout; }
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    QFrame* m_headerFrame;
    QHBoxLayout* m_headerLayout;
    QToolButton* m_foldButton;
    QFrame* m_bodyFrame;
    QVBoxLayout* m_bodyLayout;
};

} // namespace Zph::Applications::Player
