#include "benchmarks/openwindow.h"

#include "applications/player/shell/startup.h"
#include "applications/player/tweaks/tweakbase.h"
#include "applications/player/tweaks/tweakslist.h"
#include "applications/player/views/picturelabel.h"
#include "applications/player/views/viewoutput2d.h"

#include <QApplication>
#include <QTabBar>

using namespace Zph::Applications::Player;

namespace {

const QSize kWindowSize(1600, 1000);

} // namespace

OpenWindow::OpenWindow(const QString& package)
    : m_package(package), m_window(std::make_unique<MainWindow>(Startup::makeColorEngine()))
{
    m_window->resize(kWindowSize);
    m_window->show();
    watchViews();
    open();
}

Span OpenWindow::open()
{
    m_watch->restart();
    return Comparison::time([this] {
        if (!m_window->loadFile(m_package))
            qFatal("Cannot open '%s'", qPrintable(m_package));
        m_watch->wait();
    });
}

TweakBase& OpenWindow::tweak(const QString& identifier) const
{
    for (const auto& [uid, tweak] : m_window->findChild<TweaksList*>()->tweaks())
        if (tweak->identifier() == identifier)
            return *tweak;
    qFatal("The package has no input '%s'", qPrintable(identifier));
}

QList<ViewOutput2D*> OpenWindow::views() const
{
    return m_window->findChildren<ViewOutput2D*>();
}

void OpenWindow::watchViews()
{
    QList<QWidget*> labels;
    for (const ViewOutput2D* view : views())
        labels << view->findChild<PictureLabel*>();
    m_watch = std::make_unique<PaintWatch>(labels);
}

void OpenWindow::showOutputs(const QStringList& labels)
{
    while (views().size() < labels.size())
        views().first()->splitHorz();
    for (int i = 0; i < labels.size(); ++i) {
        auto* tabs = views().at(i)->findChild<QTabBar*>("outputTabs");
        int tab = 0;
        while (tab < tabs->count() && tabs->tabText(tab) != labels.at(i))
            ++tab;
        if (tab == tabs->count())
            qFatal("The package has no output '%s'", qPrintable(labels.at(i)));
        tabs->setCurrentIndex(tab);
    }
    watchViews();
    QCoreApplication::processEvents();
}

EngineAlone::Uids OpenWindow::shownOutputs() const
{
    EngineAlone::Uids uids;
    for (const ViewOutput2D* view : views())
        for (quint32 uid : view->currentOutputs())
            uids.push_back(uid);
    return uids;
}

Span OpenWindow::change(TweakBase& tweak, const InputValue& value)
{
    m_watch->restart();
    return Comparison::time([&] {
        tweak.applyValue(value);
        m_watch->wait();
    });
}
