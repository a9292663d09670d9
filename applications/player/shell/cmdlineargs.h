#pragma once

#include <QByteArray>
#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QStringList>

namespace Zph::Applications::Player {

/// The command line of the player: every option is declared here once, the help text comes from the
/// declarations. Unknown options are ignored: they never keep the program from starting.
class CmdLineArgs
{
public:
    CmdLineArgs();

    /// Takes the arguments with the program's name first. Logs them.
    void parse(const QStringList& arguments);

    bool isHelpSet() const;
    bool isDeveloperSet() const;
    bool isAutoReloadSet() const;
    bool isVersionSet() const;
    QByteArray helpText() const;
    QString presetsPath() const;
    /// Positional arguments first, then the values of the option `input`.
    QStringList inputFiles() const;

private:
    QCommandLineParser m_parser;
    QCommandLineOption m_help;
    QCommandLineOption m_input;
    QCommandLineOption m_developer;
    QCommandLineOption m_autoReload;
    QCommandLineOption m_version;
    QCommandLineOption m_presetsPath;
};

} // namespace Zph::Applications::Player
