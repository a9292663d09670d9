#include "mainactions.h"

#include <QAction>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

namespace Zph::Applications::Player {

namespace {

QAction* checkable(QAction* action)
{
    action->setCheckable(true);
    return action;
}

QAction* unavailable(QAction* action)
{
    action->setEnabled(false);
    return action;
}

void explain(QAction* action, const QKeySequence& shortcut, const QString& toolTip)
{
    action->setShortcut(shortcut);
    action->setToolTip(toolTip);
}

void fillStockPackages(QMenu& menu, const QStringList& files)
{
    for (const QString& file : files) {
        QString name = QFileInfo(file).completeBaseName().replace('_', ' ');
        name[0] = name[0].toUpper();
        menu.addAction(name)->setData(file);
    }
}

} // namespace

QIcon playerIcon(const char* name)
{
    return QIcon(QStringLiteral(":/zph/applications/player/images/%1.svg").arg(QLatin1String(name)));
}

MainActions::MainActions(QObject* parent)
    : QObject(parent), open(new QAction(playerIcon("open"), tr("Open..."), this)),
      reload(unavailable(new QAction(playerIcon("reload"), tr("Reload"), this))),
      exportBitmap(unavailable(new QAction(playerIcon("export"), tr("Export as Bitmap..."), this))),
      autoReload(new QAction(tr("Auto-reload"), this)), quit(new QAction(tr("Quit"), this)),
      reExport(unavailable(new QAction(tr("Re-Export (w/ previous settings)"), this))),
      sizeLimit(new QAction(tr("Set size limit..."), this)),
      dynamicOutputSize(checkable(new QAction(tr("Dynamic 'Output Size'"), this))),
      dynamicPixelSize(checkable(new QAction(tr("Dynamic 'Pixel Size'"), this))),
      dynamicRandomSeed(checkable(new QAction(tr("Dynamic 'Random Seed'"), this))),
      locateStudio(new QAction(tr("Locate Vellor Studio..."), this)),
      setAliases(unavailable(new QAction(tr("Set Aliases..."), this))),
      setTangentSpacePlugin(unavailable(new QAction(tr("Set Tangent Space Plugin..."), this))),
      resetLayout(new QAction(tr("Reset Layout"), this)),
      onlineDocumentation(new QAction(tr("Online Documentation..."), this)),
      samples(new QAction(tr("Samples / &Data..."), this)),
      news(unavailable(new QAction(tr("News..."), this))),
      aboutMaker(new QAction(tr("More About Vellor..."), this)),
      welcomeScreen(unavailable(new QAction(tr("Welcome Screen..."), this))),
      about(new QAction(tr("About"), this))
{
    explain(open, QKeySequence(Qt::CTRL | Qt::Key_O),
            tr("Open .vlr .vlrasm .vlrar or .vlrbin file... Shortcut: [Ctrl+O]."));
    explain(reload, QKeySequence(Qt::Key_F5), tr("Reload current file(s). Shortcut: [F5]."));
    explain(exportBitmap, QKeySequence(Qt::Key_F10),
            tr("Open render dialog (bitmap export). Shortcut: [F10]."));
    explain(autoReload, QKeySequence(Qt::CTRL | Qt::Key_F5),
            tr("Automatic reload of file(s) when modified. Shortcut: [Ctrl+F5]."));
    explain(reExport, QKeySequence(Qt::CTRL | Qt::Key_F10),
            tr("Export as Bitmap(s) with previous settings. Shortcut: [Ctrl+F10]."));
    reload->setPriority(QAction::LowPriority);
    exportBitmap->setPriority(QAction::HighPriority);
    onlineDocumentation->setShortcut(QKeySequence::HelpContents);
}

int MainActions::dynamicChoices() const
{
    return int(dynamicOutputSize->isChecked()) | int(dynamicPixelSize->isChecked()) << 1 |
           int(dynamicRandomSeed->isChecked()) << 2;
}

void MainActions::setDynamicChoices(int mask)
{
    dynamicOutputSize->setChecked(mask & 1);
    dynamicPixelSize->setChecked(mask & 2);
    dynamicRandomSeed->setChecked(mask & 4);
}

MainMenus::MainMenus(QMainWindow& window, MainActions& actions, const QStringList& stockPackages)
    : toolBar(window.addToolBar(QObject::tr("Main")))
{
    toolBar->setObjectName("main-toolbar");
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolBar->addActions({actions.open, actions.reload, actions.exportBitmap});

    QMenuBar& bar = *window.menuBar();
    QMenu* file = bar.addMenu(QObject::tr("File"));
    file->setToolTipsVisible(true);
    if (stockPackages.isEmpty()) {
        file->addAction(actions.open);
    } else {
        openMenu = file->addMenu(QObject::tr("Open"));
        openMenu->addAction(actions.open);
        openMenu->addSeparator();
        fillStockPackages(*openMenu, stockPackages);
    }
    recentFiles = file->addMenu(QObject::tr("Recent Files"));
    file->addActions({actions.reload, actions.autoReload});
    file->addSeparator();
    file->addAction(actions.quit);

    QMenu* exports = bar.addMenu(QObject::tr("Export"));
    exports->setToolTipsVisible(true);
    exports->addActions({actions.exportBitmap, actions.reExport});

    options = bar.addMenu(QObject::tr("Options"));
    options->setToolTipsVisible(true);
    options->addAction(actions.sizeLimit);
    options->addMenu(QObject::tr("Cooking Options"))
        ->addActions({actions.dynamicOutputSize, actions.dynamicPixelSize, actions.dynamicRandomSeed});
    options->addActions({actions.locateStudio, actions.setAliases, actions.setTangentSpacePlugin});
    language = options->addMenu(QObject::tr("Language"));

    windows = bar.addMenu(QObject::tr("Window"));

    QMenu* help = bar.addMenu(QObject::tr("Help"));
    help->addActions({actions.onlineDocumentation, actions.samples, actions.news, actions.aboutMaker,
                      actions.welcomeScreen});
    help->addSeparator();
    help->addAction(actions.about);
}

} // namespace Zph::Applications::Player
