#include "applications/player/tweaks/tweakrandom.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QUuid>

namespace Zph::Applications::Player {

namespace {

bool parseSeed(const QString& text, quint32& seed)
{
    const QString number = text.trimmed().toLower();
    bool valid = false;
    seed =
        number.startsWith(QLatin1String("0x")) ? number.mid(2).toUInt(&valid, 16) : number.toUInt(&valid, 10);
    return valid;
}

} // namespace

TweakRandom::TweakRandom(const TweakContext& context, QWidget* parent)
    : TweakBase(ValueType::Int, context, parent, false), m_lineEdit(new QLineEdit(this))
{
    auto* button = new QPushButton(tr("Randomize"), this);
    button->setToolTip(tr("Draw another seed."));
    firstRow()->addWidget(m_lineEdit, 1);
    firstRow()->addWidget(button);
    adopt(m_lineEdit);
    adopt(button);
    connect(m_lineEdit, &QLineEdit::editingFinished, this, &TweakRandom::editingFinished);
    connect(button, &QPushButton::clicked, this, &TweakRandom::drawRandom);
}

void TweakRandom::drawRandom()
{
    // "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}" ends in random digits and a brace.
    const QString digits = QUuid::createUuid().toString().right(9).left(8);
    m_lineEdit->setText(QLatin1String("0x") + digits.toUpper());
    m_seenText = m_lineEdit->text();
    onWidgetValue();
}

void TweakRandom::editingFinished()
{
    // Also comes when the focus just passes by.
    if (m_lineEdit->text() == m_seenText)
        return;
    quint32 seed = 0;
    if (parseSeed(m_lineEdit->text(), seed)) {
        m_seenText = m_lineEdit->text();
        onWidgetValue();
        return;
    }
    m_lineEdit->clear();
    m_seenText.clear();
    QApplication::beep();
}

void TweakRandom::parseInputGui(const QDomElement&)
{
    setRichCaption(tr("<i>Random Seed </i>"), tr("Random Seed"));
}

void TweakRandom::updateInputFromWidget()
{
    quint32 seed = 0;
    if (parseSeed(m_lineEdit->text(), seed))
        setValue(int(seed), 0, 0, 0);
}

void TweakRandom::updateWidgetFromInput()
{
    m_lineEdit->setText(QLatin1String("0x") + QString::number(value().words[0], 16).toUpper());
    m_seenText = m_lineEdit->text();
}

} // namespace Zph::Applications::Player
