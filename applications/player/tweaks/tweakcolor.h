#pragma once

#include "applications/player/tweaks/tweakvec.h"
#include "orncommon/core/colorrgbaf.h"

#include <QPointer>

class QToolButton;

namespace Orn::Gui {
class ColorEditor;
}

namespace Zph::Applications::Player {

// A colour of three or four components: 0 to 1 for floats, 0 to 255 for integers. The swatch opens the one
// colour editor of the program, which works for this row until another asks for it.
class TweakColor : public TweakVec
{
    Q_OBJECT

public:
    TweakColor(quint32 type, const TweakContext& context, QWidget* parent);
    ~TweakColor() override;

    WidgetCode widgetKind() const override { return WidgetCode::Color; }

public slots:
    void valueChanged() override;
    void openEditor();
    void onEditColorChanged(const Orn::Core::ColorRGBAf& color);
    void onColorEditorMgrRequesterChanged(QObject* requester);

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateWidgetFromInput() override;

private:
    bool hasAlpha() const { return boxCount() == 4; }
    float scale() const { return isFloatType(type()) ? 1.0f : 255.0f; }
    Orn::Core::ColorRGBAf shownColor() const;
    void updateSwatch();
    void leaveEditor();

    QToolButton* m_swatch;
    QPointer<Orn::Gui::ColorEditor> m_editor; // while it works for this row
};

} // namespace Zph::Applications::Player
