#pragma once

#include <QIcon>
#include <QObject>

class QAction;
class QMainWindow;
class QMenu;
class QToolBar;

namespace Zph::Applications::Player {

/// An icon of the player by its bare file name.
QIcon playerIcon(const char* name);

/// Every action of the window's menus and tool bar, with text, shortcut, tooltip and start state. The window
/// connects them; actions of features that the program does not have yet are disabled and stay so.
class MainActions : public QObject
{
    Q_OBJECT

public:
    explicit MainActions(QObject* parent);

    QAction* open;
    QAction* reload;
    QAction* exportBitmap;
    QAction* autoReload;
    QAction* quit;
    QAction* reExport;
    QAction* sizeLimit;
    QAction* dynamicOutputSize;
    QAction* dynamicPixelSize;
    QAction* dynamicRandomSeed;
    QAction* locateStudio;
    QAction* setAliases;
    QAction* setTangentSpacePlugin;
    QAction* resetLayout;
    QAction* onlineDocumentation;
    QAction* samples;
    QAction* news;
    QAction* aboutMaker;
    QAction* welcomeScreen;
    QAction* about;

    /// The three choices as bits 0 to 2: Output Size, Pixel Size, Random Seed.
    int dynamicChoices() const;
    void setDynamicChoices(int mask);
};

/// The window's menus, left to right, and its tool bar, made from the actions. The menus that are filled as
/// they open are left empty here.
struct MainMenus
{
    MainMenus(QMainWindow& window, MainActions& actions, const QStringList& stockPackages);

    QToolBar* toolBar;
    QMenu* openMenu = nullptr; ///< only with stock packages; entries carry the file as data
    QMenu* recentFiles;
    QMenu* options;
    QMenu* language;
    QMenu* windows;
};

} // namespace Zph::Applications::Player
