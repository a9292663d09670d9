// The window's side of the export dialog.

#include "mainwindow.h"

#include "applications/player/output/dialog/render.h"
#include "applications/player/session/engine.h"
#include "applications/player/session/static.h"
#include "applications/player/shell/mainactions.h"
#include "applications/player/timeline/timeline.h"
#include "applications/player/tweaks/presets/presets.h"
#include "applications/player/tweaks/tweakbase.h"
#include "applications/player/tweaks/tweakslist.h"

#include <QAction>

namespace Zph::Applications::Player {

void MainWindow::openRenderDialog()
{
    render(false);
}

void MainWindow::renderWithPreviousSettings()
{
    render(true);
}

/// Shows the dialog, or has it export once more; that only if it has been there.
void MainWindow::render(bool silent)
{
    if (!m_engine || !m_engine->handleOrNull() || (silent && !m_render))
        return;
    if (!m_render) {
        m_render = new Render(*this, this);
        connect(m_render, &Render::timeChanged, this, &MainWindow::exportTimeChanged);
        connect(m_render, &Render::vlrarDataRequired, this, &MainWindow::requireVlrarData);
        updateRenderDialog();
        m_tweaks->presets().setExportSettings(m_render);
    }
    if (silent) {
        m_render->exportAgain();
        return;
    }
    if (m_tweaks->anyTimeDependent())
        exportTimeChanged(0.0f); // where an export begins, as a rule
    m_render->show();
    m_render->raise();
    m_render->activateWindow();
}

/// Gives the dialog the document that is open now, if it is one to export.
void MainWindow::updateRenderDialog()
{
    const bool isExportable = m_package && !Static::instance().remoteMode;
    m_actions->exportBitmap->setEnabled(isExportable);
    m_actions->reExport->setEnabled(isExportable && m_render);
    if (!m_render)
        return;
    RenderDocument document;
    if (isExportable)
        document.package = m_package;
    document.isTimeDependent = m_package && m_tweaks->anyTimeDependent();
    document.archiveFileName = m_loader.archiveFileName();
    if (!m_loader.hasArchive())
        document.whyWithoutArchive =
            tr("An engine binary has no package that could be embedded. Open the .vlr or the .vlrar.");
    m_render->setDocument(document);
}

void MainWindow::requireVlrarData()
{
    if (!m_archivePending || !m_render)
        return;
    m_render->setArchive(m_loader.archive());
    m_archivePending = false;
}

/// A frame of an export: the inputs take their time, then there is one generation, whether they changed or
/// not.
void MainWindow::exportTimeChanged(float seconds)
{
    m_isTimeMoving = true;
    m_timeline->setCurrentTime(seconds);
    m_tweaks->setTimeChanged(seconds);
    m_isTimeMoving = false;
    generate();
}

PresetDescription MainWindow::valuesOf(const QString& graphKey)
{
    PresetDescription values;
    values.pkgurl = graphKey;
    values.inputs = collectValues(m_tweaks->presets().tweaksOfGraph(graphKey));
    return values;
}

InputValue MainWindow::valueOf(const PackageInput& input) const
{
    const auto tweak = m_tweaks->tweaks().find(input.uid);
    return tweak == m_tweaks->tweaks().end() ? input.defaultValue : tweak->second->value();
}

QString MainWindow::lastPreset() const
{
    return m_tweaks->presets().lastAppliedPreset();
}

} // namespace Zph::Applications::Player
