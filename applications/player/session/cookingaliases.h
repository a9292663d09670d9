#pragma once

#include <QString>
#include <QVector>

#include <functional>

namespace Zph::Applications::Player {

/// A name that authoring packages use for a folder.
struct CookingAlias
{
    QString name;
    QString path; ///< may be empty, or name no folder: such an alias is passed over
};

/// The aliases that packages are cooked with. Looked up at the first need and kept: the place of the presets
/// that the command line gave; else what the user stored; else what the authoring application knows. The
/// folders of the 3D view's shaders, shapes and maps always join. Main thread.
class CookingAliases
{
public:
    /// Asks the user where the authoring application is installed; an empty answer means nowhere.
    using AskForStudio = std::function<QString()>;

    /// `ask` is called at most once until forget(), and only when nothing else told; it may be empty.
    const QVector<CookingAlias>& get(const AskForStudio& ask);

    /// The next get() looks again.
    void forget() { m_isKnown = false; }

    /// Keeps the folder as the place of the authoring application if it holds packages; false if it doesn't.
    static bool rememberStudio(const QString& folder);

private:
    QVector<CookingAlias> m_aliases;
    bool m_isKnown = false;
};

} // namespace Zph::Applications::Player
