#pragma once

#include "orncommon/gui/color/coloreditor.h"

#include <QObject>
#include <QPointer>

namespace Orn::Gui {

/// Owns the one colour editor that all colours of the program share, and knows for whom it works. GUI thread.
///
/// Use: `editor = ColorEditorMgr::instance().requestEditor(this, this)`, then setColor and connect to the
/// editor's colorChanged; on requesterChanged to someone else disconnect from it; then show it.
class ColorEditorMgr : public QObject
{
    Q_OBJECT

public:
    /// Made on first use, once the application exists, and deleted with it.
    static ColorEditorMgr& instance();

    /// The editor, from now on working for `requester`: a former one is told by requesterChanged first. The
    /// editor floats above `anchor`'s window, which owns it. If the requester is destroyed, the editor hides.
    ColorEditor* requestEditor(QObject* requester, QWidget* anchor);

    /// For whom the editor works; null if for nobody.
    QObject* requester() const { return m_requester; }
    /// Null before the first request.
    ColorEditor* editor() const { return m_editor; }

    /// Ends the work for `requester` and hides the editor, if it still works for it.
    void release(QObject* requester);

Q_SIGNALS:
    void requesterChanged(QObject* requester);

private:
    explicit ColorEditorMgr(QObject* parent);
    void setRequester(QObject* requester);

    QPointer<ColorEditor> m_editor;
    QPointer<QObject> m_requester;
    QMetaObject::Connection m_requesterDestroyed;
};

} // namespace Orn::Gui
