#include "programfixture.h"

#include "applications/player/session/static.h"
#include "applications/player/shell/errorconsole.h"
#include "applications/player/shell/startup.h"
#include "applications/player/tweaks/tweakbase.h"
#include "applications/player/tweaks/tweakslist.h"
#include "applications/player/views/picturelabel.h"
#include "common/engine/backend.h"
#include "common/engine/engineswitcher.h"
#include "orncommon/core/applicationsettings.h"

#include <vellor/linker.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QStatusBar>
#include <QTabBar>

namespace Zph::Applications::Player::Tests {

using Zph::Engine::Tests::TestInstallation;

const QString ProgramFixture::cpuEngine =
    QStringLiteral(VELLOR_TEST_BINARIES "/plugins/engines/libvellor_engine_cpu.so");

ProgramFixture::ProgramFixture()
{
    Zph::Engine::Switcher::setLinkerEnginesList(&vellorLinkerGetEnginesList);
    QObject::connect(&m_dialogTimer, &QTimer::timeout, [this] { lookForDialog(); });
    m_dialogTimer.start(5);
    Static::instance().setSizeLimit(0);
    Static::instance().remoteMode = false;
}

ProgramFixture::~ProgramFixture()
{
    m_dialogTimer.stop();
    closeWindow();
    EXPECT_TRUE(m_answers.isEmpty()) << "a dialog did not come";
}

void ProgramFixture::openWindow(const QString& engine)
{
    TestInstallation::settings()->setValue("preferences/engines/current", engine);
    window = std::make_unique<MainWindow>(Startup::makeColorEngine());
    window->show();
    engineSwitch = std::make_unique<EngineDynSwitch>(window.get());
}

void ProgramFixture::closeWindow()
{
    if (window)
        window->close();
    window.reset();
    engineSwitch.reset();
}

QString ProgramFixture::put(const QString& name, const QByteArray& bytes) const
{
    const QString path = installation.path(name);
    writeFile(path, bytes);
    return path;
}

QString ProgramFixture::putPackage(const QString& package, const QString& suffix) const
{
    return put(package + '.' + suffix, PackageFiles::get(package).form(suffix));
}

QString ProgramFixture::status() const
{
    return window->statusBar()->currentMessage();
}

QString ProgramFixture::consoleText() const
{
    const auto* console = window->findChild<ErrorConsole*>();
    return console ? console->text() : QString();
}

bool ProgramFixture::isConsoleShown() const
{
    const auto* console = window->findChild<ErrorConsole*>();
    return console && console->isVisible();
}

QAction* ProgramFixture::action(const QString& text) const
{
    for (QAction* action : window->findChildren<QAction*>() + engineSwitch->findChildren<QAction*>())
        if (action->text() == text)
            return action;
    ADD_FAILURE() << "no action " << text.toStdString();
    return nullptr;
}

TweaksList& ProgramFixture::tweaks() const
{
    return *window->findChild<TweaksList*>();
}

TweakBase* ProgramFixture::tweak(const QString& caption) const
{
    for (const auto& [uid, tweak] : tweaks().tweaks())
        if (tweak->caption() == caption)
            return tweak;
    ADD_FAILURE() << "no tweak " << caption.toStdString();
    return nullptr;
}

QStringList ProgramFixture::captions() const
{
    QStringList found;
    for (const auto& [uid, tweak] : tweaks().tweaks())
        found << tweak->caption();
    found.sort();
    return found;
}

QList<ViewOutput2D*> ProgramFixture::views() const
{
    return window->findChildren<ViewOutput2D*>();
}

QStringList ProgramFixture::outputs(const ViewOutput2D& view)
{
    const auto* tabs = view.findChild<QTabBar*>("outputTabs");
    QStringList titles;
    for (int i = 0; i < tabs->count(); ++i)
        titles << tabs->tabText(i);
    return titles;
}

void ProgramFixture::chooseOutput(const ViewOutput2D& view, const QString& title)
{
    const int index = outputs(view).indexOf(title);
    ASSERT_GE(index, 0) << title.toStdString();
    view.findChild<QTabBar*>("outputTabs")->setCurrentIndex(index);
}

QImage ProgramFixture::picture(ViewOutput2D& view)
{
    QApplication::clipboard()->clear();
    view.copyToClipboard();
    return QApplication::clipboard()->image();
}

QString ProgramFixture::shownText(const ViewOutput2D& view)
{
    return view.findChild<PictureLabel*>()->text();
}

void ProgramFixture::answerDialog(std::function<void(QDialog&)> answer)
{
    m_answers.append(std::move(answer));
}

void ProgramFixture::lookForDialog()
{
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog || m_answered.contains(dialog))
        return;
    m_answered.append(dialog);
    QObject::connect(dialog, &QObject::destroyed, [this, dialog] { m_answered.removeAll(dialog); });
    if (m_answers.isEmpty()) {
        ADD_FAILURE() << "unexpected dialog " << dialog->windowTitle().toStdString();
        dialog->reject();
        return;
    }
    m_answers.takeFirst()(*dialog);
}

bool ProgramFixture::waitFor(const std::function<bool()>& condition, int timeout)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < timeout)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
    return condition();
}

} // namespace Zph::Applications::Player::Tests
