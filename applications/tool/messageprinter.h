#pragma once

#include "applications/player/session/packagelistener.h"

namespace vellor::tool {

/// Prints what cooking and linking find wrong on standard error, one line each, with the file's name ahead of
/// those lines that don't begin with one. What merely tells how far the work has come goes nowhere.
class MessagePrinter : public Zph::Applications::Player::PackageListener
{
public:
    explicit MessagePrinter(const QString& file) : m_file(file) {}

    void message(int level, const QString& text) override;
    void stage(const QString&) override {}
    void status(const QString&) override {}

    /// Whether a reason was printed.
    bool hasErrors() const { return m_hasErrors; }

private:
    QString m_file;
    bool m_hasErrors = false;
};

} // namespace vellor::tool
