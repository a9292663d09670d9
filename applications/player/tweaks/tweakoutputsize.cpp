#include "applications/player/tweaks/tweakoutputsize.h"

#include "applications/player/tweaks/sharedicon.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QToolButton>

namespace Zph::Applications::Player {

namespace {

constexpr int usualLimit = 13;
constexpr int largestLimit = 30; // 2^31 is no signed number any more

int limitOf(const TweakContext& context)
{
    return context.sizeLimit == 0 ? usualLimit : qBound(0, context.sizeLimit, largestLimit);
}

} // namespace

TweakOutputSize::TweakOutputSize(const TweakContext& context, QWidget* parent)
    : TweakBase(ValueType::Int2, context, parent, false), m_widthBox(makeSizeBox(limitOf(context))),
      m_linkButton(new QToolButton(this)), m_heightBox(makeSizeBox(limitOf(context)))
{
    m_linkButton->setIcon(sharedIcon(QStringLiteral(":/zph/applications/player/images/linked.svg")));
    m_linkButton->setToolTip(tr("Link width and height."));
    m_linkButton->setCheckable(true);
    firstRow()->addWidget(m_widthBox, 1);
    firstRow()->addWidget(m_linkButton);
    firstRow()->addWidget(m_heightBox, 1);
    adopt(m_linkButton);
    connect(m_linkButton, &QToolButton::toggled, this, &TweakOutputSize::linkToggled);
    setDirty(true);
}

QComboBox* TweakOutputSize::makeSizeBox(int limit)
{
    auto* box = new QComboBox(this);
    for (int logarithm = 0; logarithm <= limit; ++logarithm)
        box->addItem(QString::number(1 << logarithm));
    box->setMaxVisibleItems(limit);
    adopt(box);
    connect(box, qOverload<int>(&QComboBox::currentIndexChanged), this, &TweakOutputSize::sizeChosen);
    return box;
}

void TweakOutputSize::sizeChosen(int logarithm)
{
    if (m_linkButton->isChecked() && logarithm >= 0) {
        const QSignalBlocker widthBlocker(m_widthBox);
        const QSignalBlocker heightBlocker(m_heightBox);
        m_widthBox->setCurrentIndex(logarithm);
        m_heightBox->setCurrentIndex(logarithm);
    }
    onWidgetValue();
}

void TweakOutputSize::linkToggled(bool linked)
{
    if (linked)
        m_heightBox->setCurrentIndex(m_widthBox->currentIndex());
}

void TweakOutputSize::parseInputGui(const QDomElement&)
{
    setRichCaption(tr("<i>Output Size </i>"), tr("Output Size"));
    m_widthBox->setAccessibleName(tr("Width"));
    m_heightBox->setAccessibleName(tr("Height"));
    m_linkButton->setAccessibleName(tr("Link width and height."));
}

void TweakOutputSize::updateInputFromWidget()
{
    // A box without a choice stands for a size that isn't on the list.
    const int width = m_widthBox->currentIndex();
    const int height = m_heightBox->currentIndex();
    setValue(width < 0 ? value().intAt(0) : width, height < 0 ? value().intAt(1) : height, 0, 0);
}

void TweakOutputSize::updateWidgetFromInput()
{
    const auto indexOf = [](const QComboBox* box, int logarithm) {
        return logarithm >= 0 && logarithm < box->count() ? logarithm : -1;
    };
    const QSignalBlocker linkBlocker(m_linkButton);
    const QSignalBlocker widthBlocker(m_widthBox);
    const QSignalBlocker heightBlocker(m_heightBox);
    m_widthBox->setCurrentIndex(indexOf(m_widthBox, value().intAt(0)));
    m_heightBox->setCurrentIndex(indexOf(m_heightBox, value().intAt(1)));
    m_linkButton->setChecked(m_widthBox->currentIndex() == m_heightBox->currentIndex());
}

} // namespace Zph::Applications::Player
