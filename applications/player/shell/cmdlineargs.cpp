#include "cmdlineargs.h"

#include "orncommon/core/channellogger.h"

#include <QCoreApplication>

namespace Zph::Applications::Player {

namespace {

const Orn::Core::Log::ChannelLogger logger("CmdLineArgs");

QCommandLineOption shortStyle(QCommandLineOption option)
{
    option.setFlags(QCommandLineOption::ShortOptionStyle);
    return option;
}

} // namespace

CmdLineArgs::CmdLineArgs()
    : m_help(m_parser.addHelpOption()),
      m_input(shortStyle({"input",
                          QObject::tr("Input Vellor Studio file(s) (authoring files .vlr). <input_file>."),
                          "input_file"})),
      m_developer(shortStyle({"dev", QObject::tr("Enable developer mode.")})),
      m_autoReload(
          shortStyle({"auto-reload", QObject::tr("Enable automatic reload of file(s) when modified.")})),
      m_version({"v", "version"}, QObject::tr("Print version information.")),
      m_presetsPath("presets-path", QObject::tr("Set presets path."), "presets-path")
{
    m_parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    m_parser.setApplicationDescription(QCoreApplication::applicationName());
    m_parser.addOptions({m_input, m_developer, m_autoReload, m_version, m_presetsPath});
}

void CmdLineArgs::parse(const QStringList& arguments)
{
    logger.info("Arguments to parse:");
    for (const QString& argument : arguments)
        logger.info(QStringLiteral("   %1").arg(argument));
    m_parser.parse(arguments);
}

bool CmdLineArgs::isHelpSet() const
{
    return m_parser.isSet(m_help) || m_parser.isSet("help-all"); // the help text offers both
}

bool CmdLineArgs::isDeveloperSet() const
{
    return m_parser.isSet(m_developer);
}

bool CmdLineArgs::isAutoReloadSet() const
{
    return m_parser.isSet(m_autoReload);
}

bool CmdLineArgs::isVersionSet() const
{
    return m_parser.isSet(m_version);
}

QByteArray CmdLineArgs::helpText() const
{
    return m_parser.helpText().toUtf8();
}

QString CmdLineArgs::presetsPath() const
{
    return m_parser.value(m_presetsPath);
}

QStringList CmdLineArgs::inputFiles() const
{
    return m_parser.positionalArguments() + m_parser.values(m_input);
}

} // namespace Zph::Applications::Player
