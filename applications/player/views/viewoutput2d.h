#pragma once

#include "applications/player/views/viewoutput.h"

#include <map>

class QAction;
class QComboBox;
class QFrame;
class QHBoxLayout;
class QLabel;
class QMenu;
class QTabBar;

namespace Zph::Applications::Player {

class PictureArea;
class PictureLabel;

/// Shows one output of the current graph: a picture at a zoom, or the numbers of a numeric output as text.
class ViewOutput2D : public ViewOutput
{
    Q_OBJECT

public:
    explicit ViewOutput2D(ViewHost& host, QWidget* parent = nullptr);

    void setPackage(std::shared_ptr<const PackageModel> package) override;
    std::vector<quint32> currentOutputs() const override;
    void setDisplay(const ValueOrSurfacePlayer& display, quint32 uid) override;
    void outputComplete(const VellorOutputDesc& desc, const ValueOrSurfacePlayer& result) override;
    void outputsChanged(const std::set<quint32>& hidden) override;
    void clearView() override;

    /// Goes to an output of the package and its graph, unless the output is hidden.
    void showOutput(quint32 uid);
    /// Shows or hides the tab of an output.
    void setOutputShown(quint32 uid, bool shown);
    float zoomFactor() const { return m_zoomFactor; }

public slots:
    void closeView() override;
    void onGraphChanged(int index);
    void outputChanged(int tabIndex);
    void splitVert();
    void splitHorz();
    void toggleAlpha(bool displayed);
    void toggleHQ(bool smooth);
    void toggleFreeze(bool frozen);
    void zoomChanged(int index);
    void zoomEdit();
    void pickColor(const QPoint& point);
    void saveImage();
    void showMenu(const QPoint& position);
    void showMenuFromButton();
    void copyToClipboard();

private:
    struct OutputRecord
    {
        QString tabLabel, text, toolTip;
        bool isBoolean = false;
        bool shown = true;
    };

    void makeToolbar();
    void makeZoomCombo();
    void makeMenu();
    void makePictureArea();
    void updateMenu();
    void split(Qt::Orientation orientation);
    void clearContent();
    void rebuildTabs(quint32 preferred);
    quint32 bestDefaultOutput(const QString& graphKey) const;
    quint32 currentUid() const;
    void redisplay();
    void showPicture();
    void showNumbers();
    void setZoom(double factor);
    void zoomByWheel(int steps, const QPoint& anchor);

    QFrame* m_toolbar = nullptr;
    QHBoxLayout* m_toolbarLayout = nullptr;
    QLabel* m_graphsLabel = nullptr;
    QComboBox* m_graphCombo = nullptr;
    QTabBar* m_outputTabs = nullptr;
    QLabel* m_outputInfoLabel = nullptr;
    QComboBox* m_zoomCombo = nullptr;
    QMenu* m_viewMenu = nullptr;
    QAction* m_saveAction = nullptr;
    QAction* m_copyAction = nullptr;
    QAction* m_closeAction = nullptr;
    PictureArea* m_scrollArea = nullptr;
    PictureLabel* m_imageLabel = nullptr;

    bool m_hqZoom = false;
    bool m_hideAlpha = false;
    bool m_fits = false; // the zoom follows the size of the view
    float m_zoomFactor = 1.0f;
    QString m_zoomText; // of the zoom in force
    ValueOrSurfacePlayer m_display;
    quint32 m_displayUid = 0; // whose result that is
    std::shared_ptr<const PackageModel> m_package;
    std::map<quint32, OutputRecord> m_outputs;
    QString m_graphName;
    QString m_outputName; // label of the tab last chosen, so that a reload comes back to it
};

} // namespace Zph::Applications::Player
