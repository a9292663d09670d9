#pragma once

#include "applications/player/session/packagelinker.h"
#include "applications/player/session/packagelistener.h"

#include <QString>

/// The packages that are measured: samples, and those of this folder.
namespace Packages {

/// The archive of a sample or of a package of this folder.
QString path(const QString& name);

/// Says nothing to anybody, but ends the program with the words of a failure.
class Silent : public Zph::Applications::Player::PackageListener
{
public:
    void message(int level, const QString& text) override;
    void stage(const QString&) override {}
    void status(const QString&) override {}
};

/// What an archive links to.
class Linked
{
public:
    explicit Linked(const QString& archive);
    QByteArray binary() const { return m_linker.binary(); }
    const Zph::Applications::Player::PackageLinker& linker() const { return m_linker; }

private:
    Silent m_listener;
    Zph::Applications::Player::PackageLinker m_linker;
};

} // namespace Packages
