#pragma once

#include "applications/player/output/dialog/renderhost.h"
#include "applications/player/session/cache.h"
#include "applications/player/session/cookingaliases.h"
#include "applications/player/session/documentloader.h"
#include "applications/player/session/generationhost.h"
#include "applications/player/session/generationstep.h"
#include "applications/player/views/viewoutput.h"

#include <QMainWindow>
#include <QPointer>

#include <functional>
#include <memory>
#include <vector>

class QLabel;

namespace Orn::ColorManagement {
class ColorManagementEngine;
}
namespace Orn::Gui {
class LayoutManager;
}

namespace Zph::Applications::Player {

class Engine;
class ErrorConsole;
class MainActions;
struct MainMenus;
class PackageModel;
class Render;
class Timeline;
class TweaksList;
class View2D;
class View3D;

/// The one window. It owns the engine session, the cache, the views and the panel of tweaks, wires them
/// together and decides what happens when; the work is theirs. Main thread.
class MainWindow : public QMainWindow,
                   private ViewHost,
                   private DocumentHost,
                   private GenerationHost,
                   private RenderHost
{
    Q_OBJECT

public:
    using ColorEngine = std::shared_ptr<Orn::ColorManagement::ColorManagementEngine>;

    explicit MainWindow(ColorEngine colorEngine, QWidget* parent = nullptr, Qt::WindowFlags flags = {});
    ~MainWindow() override;

    const MainMenus& menus() const { return *m_menus; }
    /// Null when there is none.
    Engine* engine() const { return m_engine.get(); }
    /// Before an engine library goes: no handle outlives it. Never while isGenerating().
    void deleteEngine();
    /// The engine is on the stack: timers and sockets run inside a generation, and must not replace it there.
    bool isGenerating() const override { return m_isGenerating; }

signals:
    void loadVlrbinRemoteSignal();
    void reloadTheme();

public slots:
    bool loadFile(const QString& filepath);
    void openFile(const QString& path = QString());
    void reload();
    void openRenderDialog();
    void outputComplete(ORNUInt32 index, Zph::Applications::Player::ValueOrSurfacePlayer result);
    void viewOutputChanged(ORNUInt32 uid);
    void hiddenOutputsChanged();
    void tweakChanged(std::vector<int> indexes);
    void errorMsg(const QString& message);
    void progressMsg(int percent);
    void generationFinished(float seconds);
    bool loadVlrFile(const QStringList& filepaths);
    bool loadBinOrAsmFile(const QString& filepath);
    bool loadVlrarFile(const QString& filepath);
    /// An exported bitmap or a .vlrmeta file: its package, with its values, at its output.
    bool loadMetadataFile(const QString& filepath);
    bool loadVlrbinRemote();
    bool loadVlrbin(QIODevice& device);
    void remoteVlrbinReceived(const QByteArray& buffer);
    void openSizeLimitDialog();
    void locateStudio();
    void openAboutDialog();
    void onAboutOrnexClicked();
    void displayOnlineDocumentation();
    void onGiveFeedbackClicked();
    void onSamplesCalled();
    void initConsole();
    void dynCommonChanged();
    void onResetLayoutActionTrigerred(bool);
    void fillMenuMRU();
    void execMenuMRU(QAction* action);
    void renderWithPreviousSettings();
    void requireVlrarData();
    void onLanguageSelectionChanged(QAction* action);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // ViewHost
    void registerViewer(ViewOutput* view) override;
    void unregisterViewer(ViewOutput* view) override;
    int viewerCount() const override { return int(m_viewers.size()); }
    // DocumentHost
    void message(int level, const QString& text) override;
    void stage(const QString& text) override;
    void status(const QString& text) override;
    void setDocumentTitle(const QString& title) override;
    CookingOptions cookingOptions(const QStringList& filepaths) override;
    bool playBinary(QIODevice& binary) override { return loadVlrbin(binary); }
    void stopGeneration() override;
    bool isAutoReloadOn() const override;
    // GenerationHost
    void wantedOutputs(std::set<quint32>& uids) override;
    void requiredOutputs(std::set<quint32>& uids) override;
    void updateTimeline() override;
    void pushInputs(InputSink& engine) override;
    void pinnedInputs(std::list<std::size_t>& indexes) override;
    void generationStarts(std::size_t outputs) override;

    // RenderHost
    PresetDescription valuesOf(const QString& graphKey) override;
    InputValue valueOf(const PackageInput& input) const override;
    QString lastPreset() const override;

    void makeAreas();
    void makePanels();
    void connectPanels();
    void connectActions();
    void makeStatusBar();
    void generationStatus(const QString& text);
    void restoreLayout();
    void render(bool silent);
    void updateRenderDialog();
    void exportTimeChanged(float seconds);
    void loadTogether(const QStringList& filepaths);
    void generate();
    void dropUnfinished(const std::vector<quint32>& uids);
    bool postponed(std::function<void()> action);
    void connectEngine();
    void buildPackage();
    void tellHiddenOutputs();
    void bringBack(const PresetDescription& values, const QString& outputIdentifier);
    bool isForPanel(const QString& path, const QPoint& position) const;
    void reset();
    ErrorConsole& console();

    ColorEngine m_colorEngine;
    Cache m_cache;
    GenerationStep m_generationStep;
    CookingAliases m_aliases;
    bool m_isStudioAskedFor = false;
    std::unique_ptr<Engine> m_engine;
    std::shared_ptr<const PackageModel> m_package;
    std::vector<ViewOutput*> m_viewers;
    DocumentLoader m_loader;
    int m_loadCounter = 0;         // above 0 while the panel is being built: no generation then
    bool m_isTimeMoving = false;   // to an export's next frame: one generation follows
    bool m_archivePending = false; // the export dialog has not had the bytes of this document's archive
    bool m_isFirstPictureShown = false;
    bool m_isGenerating = false;
    std::function<void()> m_postponed; // done once the generation is over

    MainActions* m_actions;
    std::unique_ptr<MainMenus> m_menus;
    Orn::Gui::LayoutManager* m_layout;
    View2D* m_view2D = nullptr;
    View3D* m_view3D = nullptr;
    Timeline* m_timeline = nullptr;
    TweaksList* m_tweaks = nullptr;
    QPointer<ErrorConsole> m_console;
    QPointer<Render> m_render;
    QLabel* m_timeLabel = nullptr;
    QString m_generationText;
};

} // namespace Zph::Applications::Player
