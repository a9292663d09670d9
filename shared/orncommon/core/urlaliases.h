#pragma once

#include "orncommon/core/isettings.h"

#include <QList>
#include <QMap>
#include <QSharedPointer>
#include <QString>

#include <memory>

namespace Orn::Core {

class FilePathMgr;

/// Folders known by the scheme of a URL, so that a document names its resources without saying where they
/// are.
class UrlAliases
{
public:
    class Name
    {
    public:
        Name() = default;
        /// Takes the name as it is, unchecked.
        static Name sFixedName(const QString& name);

        const QString& toString() const { return m_name; }
        friend bool operator<(const Name& a, const Name& b) { return a.m_name < b.m_name; }
        friend bool operator==(const Name& a, const Name& b) { return a.m_name == b.m_name; }

    private:
        QString m_name;
    };

    /// An absolute directory.
    using Path = QString;

    /// Replaces or adds.
    void setAlias(const Name& name, const Path& path);
    void removeAlias(const Name& name);
    /// Empty if there is no such alias.
    Path getPath(const Name& name) const { return m_paths.value(name); }
    /// In the order of the names.
    QList<Name> getAliases() const { return m_paths.keys(); }

    /// The path in an alias's folder that the URL stands for; a text whose scheme is no alias is returned as
    /// it is.
    QString urlToAbsPath(const QString& url) const;

    /// The text to save for a path, which may be absolute, relative to `baseDir`, or a URL already: the URL
    /// with the alias of the deepest folder that holds it, else what `filePathMgr` decides (null stands for
    /// the default one). `matched`, if given, says whether an alias was found. "?himself", paths of Qt
    /// resources and texts with a scheme come back unchanged.
    QString absPathToUrl(const QString& path, const QString& baseDir,
                         const std::shared_ptr<FilePathMgr>& filePathMgr = {}, bool* matched = nullptr) const;

    /// The aliases saved in a store; entries without a name are skipped.
    static UrlAliases load(ISettings& settings);
    /// Replaces the saved aliases by these, with absolute paths; an empty path stays empty.
    void save(const QSharedPointer<ISettings>& settings) const;

private:
    QMap<Name, Path> m_paths;
};

} // namespace Orn::Core
