#pragma once

#include <QCoreApplication>
#include <QDate>
#include <QString>

namespace Orn::Core {

/// The version of the running program, on which the layout and the life of the settings store depend.
class ApplicationVersion
{
    Q_DECLARE_TR_FUNCTIONS(Orn::Core::ApplicationVersion)

public:
    /// The one of this process: made on first use, filled by main before anything else asks for it.
    static ApplicationVersion& getCurrent();

    ApplicationVersion();

    void setTag(const QString& tag) { m_tag = tag; }
    void setVersionNumber(int major, int minor, int patch, unsigned int build, const QString& commit);
    void setBuildDate(const QDate& date) { m_buildDate = date; }

    /// False as long as nothing was set.
    bool isDefined() const;

    const QString& getTag() const { return m_tag; }
    int getMajor() const { return m_major; }
    int getMinor() const { return m_minor; }
    int getPatch() const { return m_patch; }
    unsigned int getBuild() const { return m_build; }
    const QString& getCommit() const { return m_commit; }
    const QDate& getBuildDate() const { return m_buildDate; }

    /// QCoreApplication's names.
    static QString getOrganization();
    static QString getApplicationName();
    /// 1, for 64 bit.
    static int getArchitecture() { return 1; }

    /// "major.minor.patch", then "-tag" if there is a tag.
    QString buildVersionStr() const;
    /// Rich text for the about box.
    QString createVersionLabel() const;
    /// Logs what the label says on the channel "ApplicationVersion".
    void logInfos() const;

    /// Reads the form of a compiler's date, "Apr 10 2020", with any white space; invalid if it is not that.
    static QDate createBuildDate(const QString& compileDate);

private:
    QString m_tag;
    int m_major = 0;
    int m_minor = 0;
    int m_patch = 0;
    unsigned int m_build = 0;
    QString m_commit;
    QDate m_buildDate;
};

bool operator==(const ApplicationVersion& a, const ApplicationVersion& b);

} // namespace Orn::Core
