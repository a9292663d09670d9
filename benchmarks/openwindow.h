#pragma once

#include "applications/player/shell/mainwindow.h"
#include "benchmarks/comparison.h"
#include "benchmarks/enginealone.h"
#include "benchmarks/paintwatch.h"

#include <QStringList>

#include <memory>

namespace Zph::Applications::Player {
class TweakBase;
class ViewOutput2D;
} // namespace Zph::Applications::Player

/// The player's window on a screen, with a package open, as a user would have it.
class OpenWindow
{
public:
    using TweakBase = Zph::Applications::Player::TweakBase;
    using InputValue = Zph::Applications::Player::InputValue;

    explicit OpenWindow(const QString& package);

    Zph::Applications::Player::MainWindow& window() { return *m_window; }
    /// The row of an input.
    TweakBase& tweak(const QString& identifier) const;

    /// Splits the 2D view until there is one view for each output, by label, and lets each show its own.
    void showOutputs(const QStringList& labels);
    /// What the views show.
    EngineAlone::Uids shownOutputs() const;

    /// Opens the package again, until the views have painted it.
    Span open();
    /// Changes an input, until the views have painted the pictures.
    Span change(TweakBase& tweak, const InputValue& value);

private:
    QList<Zph::Applications::Player::ViewOutput2D*> views() const;
    void watchViews();

    QString m_package;
    std::unique_ptr<Zph::Applications::Player::MainWindow> m_window;
    std::unique_ptr<PaintWatch> m_watch;
};
