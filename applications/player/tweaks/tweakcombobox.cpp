#include "applications/player/tweaks/tweakcombobox.h"

#include "applications/player/description/descriptionindex.h"
#include "applications/player/tweaks/numberwidgets.h"

#include <QComboBox>
#include <QHBoxLayout>

namespace Zph::Applications::Player {

QComboBox* makeComboBox(QWidget* parent)
{
    auto* box = new QComboBox(parent);
    box->setMinimumContentsLength(10);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    return box;
}

TweakComboBox::TweakComboBox(const TweakContext& context, QWidget* parent)
    : TweakBase(ValueType::Int, context, parent), m_comboBox(makeComboBox(this))
{
    firstRow()->addWidget(m_comboBox);
    adopt(m_comboBox);
    connect(m_comboBox, qOverload<int>(&QComboBox::currentIndexChanged), this, [this] { onWidgetValue(); });
}

void TweakComboBox::parseInputGui(const QDomElement& element)
{
    writeWidgets([&] {
        m_comboBox->clear();
        const QDomElement items = inputGuiChild(element, "guicombobox");
        for (const QDomElement& item : childElements(items, QStringLiteral("guicomboboxitem")))
            m_comboBox->addItem(item.attribute(QStringLiteral("text")),
                                item.attribute(QStringLiteral("value")));
        updateWidgetFromInput();
    });
}

void TweakComboBox::updateInputFromWidget()
{
    if (m_comboBox->currentIndex() >= 0)
        setValue(m_comboBox->currentData().toString().toInt(), 0, 0, 0);
}

void TweakComboBox::updateWidgetFromInput()
{
    const QString wanted = QString::number(value().intAt(0));
    m_comboBox->setCurrentIndex(
        m_comboBox->findData(wanted, Qt::UserRole, Qt::MatchExactly | Qt::MatchCaseSensitive));
}

} // namespace Zph::Applications::Player
