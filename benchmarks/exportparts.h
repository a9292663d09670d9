#pragma once

#include "applications/player/description/packagemodel.h"
#include "benchmarks/comparison.h"
#include "benchmarks/enginealone.h"
#include "benchmarks/packages.h"
#include "orncommon/surfaces/surface.h"

#include <QSharedPointer>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector>

#include <functional>

namespace Zph::Applications::Player {
class Engine;
}

/// What is exported, whoever does it.
struct ExportJob
{
    const char* name;
    const char* package; ///< of Packages
    QStringList outputs; ///< identifiers; none for all
    int side;            ///< pixels, a power of two
    int frames;          ///< of an animation at the usual rate; 1 for stills, at time 0
    const char* format;

    int sizeExponent() const;
};

/// The two things that an export comes to, each by itself.
class ExportParts
{
public:
    /// `flags` are the engine's.
    explicit ExportParts(const ExportJob& job, quint32 flags = 0);

    const Zph::Applications::Player::PackageModel& package() const { return m_package; }
    const EngineAlone::Uids& uids() const { return m_uids; }
    /// Computes all pictures, in an engine that has computed `before` at this size, and nothing else.
    Span generate(const EngineAlone::Uids& before = {});
    /// Writes all pictures with so many encoders at once; 0: between all else.
    Span encode(std::size_t encoders);

private:
    using Push = std::function<void(const Zph::Applications::Player::PackageInput& input,
                                    const Zph::Applications::Player::InputValue& value)>;

    void readPackage(Zph::Applications::Player::Engine& engine);
    void keepPictures(Zph::Applications::Player::Engine& engine);
    void setSize(const Push& push) const;
    void eachFrame(const Push& push, const std::function<void()>& generate) const;

    const ExportJob& m_job;
    Packages::Linked m_linked;
    EngineAlone m_alone;
    Zph::Applications::Player::PackageModel m_package;
    EngineAlone::Uids m_uids;
    QVector<QSharedPointer<Orn::Surfaces::Surface>> m_pictures;
    QTemporaryDir m_folder;
};
