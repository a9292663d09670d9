#include "orncommon/gui/color/coloreditormgr.h"

#include <QApplication>

namespace Orn::Gui {

ColorEditorMgr& ColorEditorMgr::instance()
{
    static QPointer<ColorEditorMgr> manager;
    if (!manager)
        manager = new ColorEditorMgr(qApp);
    return *manager;
}

ColorEditorMgr::ColorEditorMgr(QObject* parent) : QObject(parent)
{
}

ColorEditor* ColorEditorMgr::requestEditor(QObject* requester, QWidget* anchor)
{
    QWidget* window = anchor ? anchor->window() : nullptr;
    if (m_editor && m_editor->parentWidget() != window)
        delete m_editor;
    if (!m_editor)
        m_editor = new ColorEditor(window);
    setRequester(requester);
    return m_editor;
}

void ColorEditorMgr::release(QObject* requester)
{
    if (m_requester != requester)
        return;
    setRequester(nullptr);
    if (m_editor)
        m_editor->hide();
}

void ColorEditorMgr::setRequester(QObject* requester)
{
    if (m_requester == requester)
        return;
    disconnect(m_requesterDestroyed);
    m_requester = requester;
    if (requester) {
        m_requesterDestroyed = connect(requester, &QObject::destroyed, this, [this] {
            m_requester = nullptr;
            if (m_editor)
                m_editor->hide();
            Q_EMIT requesterChanged(nullptr);
        });
    }
    Q_EMIT requesterChanged(requester);
}

} // namespace Orn::Gui
