#include "patternmenu.h"

#include <QCoreApplication>

namespace Zph::Applications::Player {

namespace {

struct Token
{
    const char* token;
    const char* meaning;
};

constexpr Token kTokens[] = {
    {"%O", QT_TRANSLATE_NOOP("Zph::Applications::Player::PatternMenu", "Output name")},
    {"%G", QT_TRANSLATE_NOOP("Zph::Applications::Player::PatternMenu", "Graph name")},
    {"%P", QT_TRANSLATE_NOOP("Zph::Applications::Player::PatternMenu", "Package name")},
    {"%F",
     QT_TRANSLATE_NOOP("Zph::Applications::Player::PatternMenu", "Full package path (includes %P and %G)")},
    {"%U", QT_TRANSLATE_NOOP("Zph::Applications::Player::PatternMenu", "Output usage")},
    {"%I",
     QT_TRANSLATE_NOOP("Zph::Applications::Player::PatternMenu", "Output unique ID (hexadecimal format)")},
    {"%R", QT_TRANSLATE_NOOP("Zph::Applications::Player::PatternMenu", "Last applied preset name")},
    {"####",
     QT_TRANSLATE_NOOP("Zph::Applications::Player::PatternMenu", "Frame number (for animation rendering)")},
};

QString lineOf(const Token& token)
{
    return QLatin1String(token.token) + QStringLiteral("  ") + PatternMenu::tr(token.meaning);
}

} // namespace

PatternMenu::PatternMenu(QWidget* parent) : QMenu(parent)
{
    addAction(tr("Reset pattern"));
    addSeparator();
    for (const Token& token : kTokens)
        addAction(lineOf(token))->setData(QString::fromLatin1(token.token));
}

QString PatternMenu::help()
{
    QStringList lines;
    for (const Token& token : kTokens)
        lines << lineOf(token);
    return lines.join('\n');
}

} // namespace Zph::Applications::Player
