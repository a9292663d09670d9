#include "applications/tool/engineloader.h"
#include "applications/tool/package.h"
#include "applications/tool/packageinfo.h"
#include "applications/tool/sharedoptions.h"

#include <QJsonDocument>

#include <cstdio>

namespace vellor::tool {

namespace {

int runInfo(const Arguments& arguments)
{
    const QString file = onlyFile(arguments);
    const QVector<Zph::Applications::Player::CookingAlias> aliases = readAliases(arguments);
    loadEngine(QString::fromStdString(arguments.value("--engine")));
    const Package package(file, {aliases, {}});
    const QByteArray text = arguments.has("--json") ? QJsonDocument(packageJson(package)).toJson()
                                                    : packageText(package).toUtf8();
    return printOut(text);
}

} // namespace

const Command infoCommand{
    "info",
    "FILE",
    "Lists what a package holds: graphs, inputs with their types, defaults, ranges and choices, "
    "outputs with usage and format, presets. FILE is a .vlr, .vlrar, .vlrasm or .vlrbin.",
    {{"--json", nullptr, nullptr, "for machines, on standard output"}, kAlias, kEngine},
    runInfo};

} // namespace vellor::tool
