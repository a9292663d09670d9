#pragma once

#include "applications/player/description/input.h"
#include "applications/player/description/widgetcode.h"
#include "applications/player/tweaks/tweakcontext.h"

#include <QFrame>

#include <list>

class QHBoxLayout;
class QLabel;
class QToolButton;
class QVBoxLayout;

namespace Orn::Gui {
class ElidedLabel;
}

namespace Zph::Applications::Player {

// One row of the tweaks panel: a caption, the widgets that edit one input, and the pin that keeps what lies
// just ahead of the input in the engine's cache.
//
// The row never talks to the engine. A change of the user ends in onWidgetValue(), which stores it in the
// Input and raises tweakChangedSignal(); the program writes through applyValue(). While the program writes to
// the widgets their own signals count for nothing, so a change is told exactly once.
//
// The row also gives every kind the manners of the panel: a double click on a slider and an entry of the
// context menu go back to the default, and every widget is named by the caption for assistive technology.
//
// Owned by its Qt parent. Main thread.
class TweakBase : public QFrame, public Input
{
    Q_OBJECT

public:
    TweakBase(quint32 type, const TweakContext& context, QWidget* parent, bool initialPinned = true);

    virtual void resetToDefault();
    virtual bool isTimeDependent() const { return false; }
    virtual bool isImage() const { return false; }
    virtual WidgetCode widgetKind() const { return WidgetCode::None; }

    // Joins the row to its input. Only the first call takes uid and default of the engine's record; later
    // ones keep the value. `element` is the description's `input`, or null.
    void initFromDescription(int index, const VellorInputDesc& record, const QDomElement& element);

    // Writes a value as the user would, and tells of it if it is another one.
    void applyValue(const InputValue& value);

    void setPinned(bool pinned);
    void setPinVisible(bool visible);

    // As the description gives it, without mark-up.
    const QString& caption() const { return m_caption; }
    const QString& group() const { return m_group; }
    const QString& visibleIf() const { return m_visibleIf; }

    // The result of the last evaluation of visibleIf(). Storing it shows or hides nothing.
    bool isShown() const { return m_shown; }
    void setShown(bool shown) { m_shown = shown; }

signals:
    void tweakChangedSignal(int index);
    void setActiveTweakSignal(bool active);

public slots:
    // Appends the input's index when the tweak is pinned.
    void getActiveTweak(std::list<size_t>& indexList);
    virtual void toggleSlidersTracking(bool tracking);
    virtual void setTimeChanged(float time);
    void toggleActive(bool active);
    // Pin an unpinned tweak for the length of a drag.
    void beginUserInteract();
    void endUserInteract();

protected:
    // Reads what the kind needs of the description's `input` element.
    virtual void parseInputGui(const QDomElement& element) = 0;
    virtual void updateInputFromWidget() = 0;
    virtual void updateWidgetFromInput() = 0;
    // For assistive technology: every widget by the caption.
    virtual void nameWidgets();

    // Where every edit of the user ends.
    void onWidgetValue();

    // Runs `write` as a write of the program to the widgets.
    template<class Function> void writeWidgets(Function write)
    {
        const bool outer = m_applying;
        m_applying = true;
        write();
        m_applying = outer;
    }

    // Gives a widget of the row its manners. Slider drags pin the row.
    void adopt(QWidget* widget);
    void setRichCaption(const QString& richText, const QString& plainText);

    const TweakContext& context() const { return m_context; }
    QHBoxLayout* firstRow() const { return m_firstRow; }
    QVBoxLayout* rightColumn() const { return m_rightColumn; }

    bool eventFilter(QObject* watched, QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void readTexts(const QDomElement& element);
    QString diagnosticToolTip(const QDomElement& element, bool labelled, const QString& description) const;
    void setPlainCaption(const QString& caption);

    QToolButton* m_pinButton;
    Orn::Gui::ElidedLabel* m_captionLabel;
    QVBoxLayout* m_rightColumn;
    QHBoxLayout* m_firstRow;
    bool m_pinned;
    bool m_applying = false;
    bool m_pinnedByInteraction = false;
    QString m_caption;
    QString m_group;
    QString m_visibleIf;
    bool m_shown = true;
    TweakContext m_context;
};

} // namespace Zph::Applications::Player
