#pragma once

#include "applications/player/shell/enginedynswitch.h"
#include "applications/player/shell/mainwindow.h"
#include "applications/player/views/viewoutput2d.h"
#include "common/engine/tests/testengines.h"
#include "common/engine/tests/testinstallation.h"
#include "tests/program/packagefiles.h"

#include <QImage>

#include <functional>
#include <memory>

class QAction;

namespace Zph::Applications::Player {
class TweakBase;
class TweaksList;
} // namespace Zph::Applications::Player

namespace Zph::Applications::Player::Tests {

/// The window in an installation of the test's own, with the settings of a first start and an engine that is
/// the current one. Files are made in the installation's folder.
class ProgramFixture : public testing::Test
{
protected:
    static const QString cpuEngine;

    ProgramFixture();
    ~ProgramFixture() override;

    /// As the start-up does it: the window first, then the engine.
    void openWindow(const QString& engine = cpuEngine);
    void closeWindow();
    /// The file of this form of the package, made under a name that may differ from the package's.
    QString put(const QString& name, const QByteArray& bytes) const;
    QString putPackage(const QString& package, const QString& suffix) const;

    QString status() const;
    /// Empty as long as there is no console.
    QString consoleText() const;
    bool isConsoleShown() const;
    QAction* action(const QString& text) const;
    TweaksList& tweaks() const;
    TweakBase* tweak(const QString& caption) const;
    QStringList captions() const;
    QList<ViewOutput2D*> views() const;
    /// The titles of a view's outputs.
    static QStringList outputs(const ViewOutput2D& view);
    static void chooseOutput(const ViewOutput2D& view, const QString& title);
    /// The picture that a view shows; null when it shows none.
    static QImage picture(ViewOutput2D& view);
    /// The text that it shows in place of a picture.
    static QString shownText(const ViewOutput2D& view);

    /// Runs `answer` on the next modal dialog, as soon as it is there. Several are answered in turn. A dialog
    /// that nobody expects is rejected and fails the test.
    void answerDialog(std::function<void(QDialog&)> answer);
    /// Waits until the condition holds.
    static bool waitFor(const std::function<bool()>& condition, int timeout = 10000);

    Zph::Engine::Tests::TestInstallation installation;
    Zph::Engine::Tests::TestEngineLog engineLog;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<EngineDynSwitch> engineSwitch;

private:
    void lookForDialog();

    QTimer m_dialogTimer;
    QList<std::function<void(QDialog&)>> m_answers;
    QList<QWidget*> m_answered;
};

} // namespace Zph::Applications::Player::Tests
