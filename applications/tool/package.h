#pragma once

#include "applications/player/description/packagemodel.h"
#include "applications/player/presets/presetdescription.h"
#include "applications/player/session/cookingaliases.h"
#include "applications/player/session/engine.h"

#include <memory>

namespace vellor::tool {

/// A package of any kind, opened as the window opens it: cooked and linked as far as it needs that, held by a
/// session of the loaded engine, and described. An engine is loaded before. Main thread.
class Package
{
public:
    struct Options
    {
        QVector<Zph::Applications::Player::CookingAlias> aliases;
        Zph::Applications::Player::EngineOptions engine;
    };

    /// `file` is an authoring file (.vlr), an archive (.vlrar), an assembly (.vlrasm) or a binary (.vlrbin);
    /// the description of the last two lies beside them, if there is one. Throws Failure, after the reasons
    /// were printed.
    Package(const QString& file, const Options& options);

    /// As it was given.
    const QString& file() const { return m_file; }
    Zph::Applications::Player::Engine& engine() const { return *m_engine; }
    const Zph::Applications::Player::PackageModel& model() const { return m_model; }
    /// Those of the package itself, of all graphs.
    const QVector<Zph::Applications::Player::PresetDescription>& presets() const { return m_presets; }
    /// The package as an archive: its file's bytes, or what its assembly and description give. Empty for a
    /// binary, which can't go back to one.
    QByteArray archive() const;
    /// The file name of archive(), beside the package's file.
    QString archiveFileName() const;

private:
    void readPresets();

    QString m_file;
    QByteArray m_archive; // of a .vlrar
    QByteArray m_assembly, m_descriptionText;
    std::unique_ptr<Zph::Applications::Player::Engine> m_engine;
    Zph::Applications::Player::PackageModel m_model;
    QVector<Zph::Applications::Player::PresetDescription> m_presets;
};

} // namespace vellor::tool
