#include "orncommon/core/applicationversion.h"

#include "orncommon/core/channellogger.h"

#include <QLocale>

#include <tuple>

namespace Orn::Core {

namespace {

const Log::ChannelLogger logger("ApplicationVersion");

auto fields(const ApplicationVersion& version)
{
    return std::make_tuple(version.getTag(), version.getMajor(), version.getMinor(), version.getPatch(),
                           version.getBuild(), version.getCommit(), version.getBuildDate());
}

} // namespace

ApplicationVersion& ApplicationVersion::getCurrent()
{
    static ApplicationVersion current;
    return current;
}

ApplicationVersion::ApplicationVersion() : m_buildDate(createBuildDate(QStringLiteral(__DATE__)))
{
}

void ApplicationVersion::setVersionNumber(int major, int minor, int patch, unsigned int build,
                                          const QString& commit)
{
    m_major = major;
    m_minor = minor;
    m_patch = patch;
    m_build = build;
    m_commit = commit;
}

bool ApplicationVersion::isDefined() const
{
    return !(*this == ApplicationVersion());
}

QString ApplicationVersion::getOrganization()
{
    return QCoreApplication::organizationName();
}

QString ApplicationVersion::getApplicationName()
{
    return QCoreApplication::applicationName();
}

QString ApplicationVersion::buildVersionStr() const
{
    const QString numbers = QStringLiteral("%1.%2.%3").arg(m_major).arg(m_minor).arg(m_patch);
    return m_tag.isEmpty() ? numbers : numbers + QLatin1Char('-') + m_tag;
}

QString ApplicationVersion::createVersionLabel() const
{
    QString label = tr("<strong>%1.%2.%3</strong>").arg(m_major).arg(m_minor).arg(m_patch);
    if (!m_tag.isEmpty())
        label += tr("<strong>-%1</strong>").arg(m_tag.toHtmlEscaped());
    if (m_build != 0)
        label += tr(" build %1").arg(m_build);
    if (!m_commit.isEmpty())
        label += tr(" commit 0x%1").arg(m_commit.toHtmlEscaped());
    if (m_buildDate.isValid())
        label += tr(" (%1)").arg(m_buildDate.toString(Qt::ISODate));
    return label;
}

void ApplicationVersion::logInfos() const
{
    QString line = QStringLiteral("Version %1").arg(buildVersionStr());
    if (m_build != 0)
        line += QStringLiteral(" build %1").arg(m_build);
    if (!m_commit.isEmpty())
        line += QStringLiteral(" commit 0x%1").arg(m_commit);
    if (m_buildDate.isValid())
        line += QStringLiteral(" (%1)").arg(m_buildDate.toString(QStringLiteral("yyyy-MM-dd")));
    logger.info(line);
}

QDate ApplicationVersion::createBuildDate(const QString& compileDate)
{
    return QLocale(QLocale::English).toDate(compileDate.simplified(), QStringLiteral("MMM d yyyy"));
}

bool operator==(const ApplicationVersion& a, const ApplicationVersion& b)
{
    return fields(a) == fields(b);
}

} // namespace Orn::Core
