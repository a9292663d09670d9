#include "applications/player/tweaks/tweaktext.h"

#include "applications/player/description/inputsink.h"

#include <QDomElement>
#include <QHBoxLayout>
#include <QTextEdit>

namespace Zph::Applications::Player {

namespace {

std::vector<quint32> unitsOf(const QString& text)
{
    std::vector<quint32> units;
    units.reserve(size_t(text.size()) + 1);
    for (const QChar c : text)
        units.push_back(c.unicode());
    units.push_back(0);
    return units;
}

} // namespace

TweakText::TweakText(const TweakContext& context, QWidget* parent)
    : TweakBase(ValueType::Text, context, parent), m_textEdit(new QTextEdit(this))
{
    m_textEdit->setAcceptRichText(false);
    m_textEdit->setLineWrapMode(QTextEdit::NoWrap);
    m_textEdit->setMaximumHeight(60);
    m_textEdit->setTabChangesFocus(true);
    firstRow()->addWidget(m_textEdit);
    connect(m_textEdit, &QTextEdit::textChanged, this, &TweakText::textUpdated);
}

QString TweakText::text() const
{
    return m_textEdit->toPlainText();
}

void TweakText::setText(const QString& text)
{
    writeWidgets([&] { m_textEdit->setPlainText(text); });
    onWidgetValue();
}

bool TweakText::isDefault() const
{
    return text() == m_defaultText;
}

void TweakText::applyToEngine(InputSink& engine)
{
    if (!isDirty())
        return;
    engine.pushInput(index(), type(), m_units.empty() ? nullptr : m_units.data());
    setDirty(false);
}

void TweakText::resetToDefault()
{
    setText(m_defaultText);
}

void TweakText::textUpdated()
{
    onWidgetValue();
}

void TweakText::parseInputGui(const QDomElement& element)
{
    if (m_units.empty()) { // a later description keeps the text
        m_defaultText = element.attribute(QStringLiteral("default"));
        m_units = unitsOf(m_defaultText);
    }
}

void TweakText::updateInputFromWidget()
{
    std::vector<quint32> units = unitsOf(text());
    if (units == m_units)
        return;
    m_units = std::move(units);
    setDirty(true);
}

void TweakText::updateWidgetFromInput()
{
    QString shown;
    for (const quint32 unit : m_units)
        if (unit != 0)
            shown.append(QChar(ushort(unit)));
    m_textEdit->setPlainText(shown);
}

} // namespace Zph::Applications::Player
