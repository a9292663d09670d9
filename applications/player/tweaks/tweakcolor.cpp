#include "applications/player/tweaks/tweakcolor.h"

#include "orncommon/gui/color/coloreditormgr.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QToolButton>

namespace Zph::Applications::Player {

using Orn::Core::ColorRGBAf;
using Orn::Gui::ColorEditor;
using Orn::Gui::ColorEditorMgr;

TweakColor::TweakColor(quint32 type, const TweakContext& context, QWidget* parent)
    : TweakVec(type, context, parent), m_swatch(new QToolButton(this))
{
    m_swatch->setToolTip(tr("Open color chooser."));
    m_swatch->setIconSize(QSize(20, 20));
    firstRow()->addWidget(m_swatch, 1);
    adopt(m_swatch);
    connect(m_swatch, &QToolButton::clicked, this, &TweakColor::openEditor);
}

TweakColor::~TweakColor()
{
    if (m_editor)
        ColorEditorMgr::instance().release(this); // which ends in leaveEditor()
}

void TweakColor::valueChanged()
{
    updateSwatch();
    TweakVec::valueChanged();
}

void TweakColor::openEditor()
{
    ColorEditorMgr& manager = ColorEditorMgr::instance();
    ColorEditor* editor = manager.requestEditor(this, this);
    if (editor != m_editor) {
        leaveEditor();
        m_editor = editor;
        connect(editor, &ColorEditor::colorChanged, this, &TweakColor::onEditColorChanged);
        connect(editor, &ColorEditor::editBegun, this, &TweakColor::beginUserInteract);
        connect(editor, &ColorEditor::editEnded, this, &TweakColor::endUserInteract);
        connect(&manager, &ColorEditorMgr::requesterChanged, this,
                &TweakColor::onColorEditorMgrRequesterChanged);
    }
    editor->setAlphaEnabled(hasAlpha());
    editor->setColor(shownColor());
    editor->setWindowTitle(caption());
    editor->show();
    editor->raise();
}

void TweakColor::onEditColorChanged(const ColorRGBAf& color)
{
    const float components[] = {color.r, color.g, color.b, color.a};
    writeWidgets([&] {
        for (int i = 0; i < boxCount(); ++i)
            box(i)->setValue(double(components[i] * scale()));
    });
    updateSwatch();
    onWidgetValue();
}

void TweakColor::onColorEditorMgrRequesterChanged(QObject* requester)
{
    if (requester != this)
        leaveEditor();
}

void TweakColor::leaveEditor()
{
    if (!m_editor)
        return;
    disconnect(m_editor, nullptr, this, nullptr);
    disconnect(&ColorEditorMgr::instance(), nullptr, this, nullptr);
    m_editor.clear();
}

void TweakColor::parseInputGui(const QDomElement&)
{
    static const char* const names[] = {QT_TR_NOOP("red"), QT_TR_NOOP("green"), QT_TR_NOOP("blue"),
                                        QT_TR_NOOP("alpha")};
    for (int i = 0; i < boxCount(); ++i)
        box(i)->setToolTip(tr(names[i]));
}

void TweakColor::updateWidgetFromInput()
{
    TweakVec::updateWidgetFromInput();
    updateSwatch();
    if (m_editor)
        m_editor->setColor(shownColor());
}

ColorRGBAf TweakColor::shownColor() const
{
    const auto component = [this](int i) { return float(box(i)->value()) / scale(); };
    return {component(0), component(1), component(2), hasAlpha() ? component(3) : 1.0f};
}

void TweakColor::updateSwatch()
{
    const double factor = isFloatType(type()) ? 1.0 : 0.003921568859368563;
    const auto component = [&](int i) { return qBound(0.0, box(i)->value() * factor, 1.0); };
    QPixmap pixmap(32, 32);
    pixmap.fill(QColor::fromRgbF(component(0), component(1), component(2)));
    m_swatch->setIcon(pixmap);
}

} // namespace Zph::Applications::Player
