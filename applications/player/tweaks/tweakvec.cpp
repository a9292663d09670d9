#include "applications/player/tweaks/tweakvec.h"

#include "applications/player/tweaks/numberwidgets.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>

namespace Zph::Applications::Player {

TweakVec::TweakVec(quint32 type, const TweakContext& context, QWidget* parent)
    : TweakBase(type, context, parent)
{
    for (int i = 0; i < componentCount(type); ++i) {
        QDoubleSpinBox* box = makeDoubleSpinBox(this, isFloatType(type) ? 3 : 0);
        box->setRange(-1e11, largestDouble);
        if (componentCount(type) > 2)
            makeNarrow(box);
        firstRow()->addWidget(box, 2);
        adopt(box);
        connect(box, qOverload<double>(&QDoubleSpinBox::valueChanged), this, [this] { valueChanged(); });
        m_boxes.push_back(box);
    }
}

void TweakVec::valueChanged()
{
    onWidgetValue();
}

void TweakVec::parseInputGui(const QDomElement&)
{
}

void TweakVec::updateInputFromWidget()
{
    InputValue edited;
    for (int i = 0; i < boxCount(); ++i) {
        if (isFloatType(type()))
            edited.setFloat(i, floatInBox(*box(i), value().floatAt(i)));
        else
            edited.setInt(i, truncated(box(i)->value()));
    }
    setValue(edited);
}

void TweakVec::updateWidgetFromInput()
{
    for (int i = 0; i < boxCount(); ++i)
        box(i)->setValue(isFloatType(type()) ? double(value().floatAt(i)) : value().intAt(i));
}

} // namespace Zph::Applications::Player
