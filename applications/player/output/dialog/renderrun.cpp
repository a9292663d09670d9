// An export of the dialog, from "Export" to the list of files.

#include "render.h"

#include "applications/player/description/packagemodel.h"
#include "applications/player/metadata/exportplan.h"
#include "applications/player/output/dialog/exportdialogsettings.h"
#include "applications/player/output/dialog/exportrun.h"
#include "applications/player/output/dialog/folderedit.h"
#include "applications/player/output/dialog/inputgate.h"
#include "applications/player/output/dialog/metadatacontrols.h"
#include "applications/player/output/dialog/packingtemplatebox.h"
#include "applications/player/output/dialog/progresspage.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

constexpr auto kStep = QEvent::Type(1001);
constexpr int kAttempts = 2; // a generation may be stopped for another one's sake

} // namespace

void Render::exportAgain()
{
    if (isRunning() || !m_document.package)
        return;
    if (m_hasLastSettings) {
        setPackingTemplate(m_lastTemplate);
        applyExportSettings(m_lastSettings);
    }
    start(true);
}

void Render::startSlot()
{
    start(false);
}

void Render::start(bool again)
{
    if (isRunning())
        return;
    const QVector<PackageOutput> outputs = selectedOutputs();
    if (outputs.isEmpty()) {
        QMessageBox::warning(isVisible() ? this : parentWidget(), windowTitle(),
                             tr("At least one output to export must be selected."));
        return;
    }
    if (m_folder->folder().isEmpty())
        m_folder->setFolder(ExportDialogSettings::rendersPath.read());
    m_folder->setFolder(m_folder->folder());
    ExportChoices wanted = choices();
    if (!prepareRun(wanted, outputs))
        return;
    ExportDialogSettings::rendersPath.write(m_folder->folder());
    m_lastSettings = currentSettings();
    m_lastTemplate = m_packing->name();
    m_hasLastSettings = true;
    m_progress->clear();
    m_complaints.clear();
    m_failures = 0;
    m_isReExport = again;
    setState(State::Exporting);
    if (m_metadata->choices().needsArchive() && m_document.whyWithoutArchive.isEmpty())
        emit vlrarDataRequired();
    makeRun(wanted, outputs);
    QDir().mkpath(m_lastSettings.dir);
    startFrame(0);
}

/// False, after a word to the user, where the template can't be followed.
bool Render::prepareRun(ExportChoices& wanted, const QVector<PackageOutput>& outputs)
{
    QString problem;
    if (m_packing->content()) {
        wanted.packing = packingOf(outputs);
        problem =
            wanted.packing.files.isEmpty()
                ? tr("The template '%1' takes none of the selected outputs.").arg(m_packing->currentText())
                : wanted.packing.settle(wanted.picture.format, PictureDepth::OfPicture);
    }
    if (!problem.isEmpty())
        QMessageBox::warning(isVisible() ? this : parentWidget(), windowTitle(), problem);
    return problem.isEmpty();
}

void Render::makeRun(const ExportChoices& wanted, const QVector<PackageOutput>& outputs)
{
    ExportRun::abandon(std::move(m_run), this);
    m_run = std::make_unique<ExportRun>(
        m_document.package, outputs, wanted,
        MetadataWriter::Package{m_document.archiveFileName,
                                wanted.metadata.needsArchive() ? m_archive : QByteArray(),
                                [this](const QString& url) { return m_host.valuesOf(url); }});
    m_run->onWait = [this] { InputGate::processEvents(*this); };
    connect(m_run.get(), &ExportRun::written, this, [this](const QString& path) {
        if (m_state == State::Exporting)
            m_progress->addResult(path);
    });
    connect(m_run.get(), &ExportRun::failed, this, &Render::complainOfFile);
    connect(m_run.get(), &ExportRun::invalid, this, &Render::complainOfOutput);
    connect(m_run.get(), &ExportRun::fileDone, this, [this] {
        showProgress();
        if (m_run->isGenerated() && m_run->waitingFiles() == 0)
            postStep();
    });
}

// ---- Frame by frame

void Render::startFrame(int frame)
{
    m_run->startFrame(frame);
    m_attempts = 0;
    announceFrame();
}

/// The window generates at once, or after the generation that it is in.
void Render::announceFrame()
{
    ++m_attempts;
    m_percent = 0;
    m_isStepPosted = false;
    showProgress();
    emit timeChanged(m_run->seconds());
    if (m_state == State::Exporting && !m_isStepPosted && !m_host.isGenerating())
        postStep(); // there is no engine that would tell
}

void Render::getRequiredOutputs(std::set<ORNUInt32>& uids)
{
    if (m_state == State::Exporting)
        m_run->required(uids);
}

void Render::sendOutputImage(ORNUInt32 uid, ValueOrSurfacePlayer result)
{
    if (m_state != State::Exporting)
        return;
    m_run->take(uid, result);
    showProgress();
    InputGate::processEvents(*this);
}

void Render::generationProgress(int percent)
{
    if (m_state != State::Exporting || !m_run->isAsked())
        return;
    m_percent = percent;
    showProgress();
    InputGate::processEvents(*this);
}

void Render::generationFinished()
{
    if (m_state == State::Exporting && m_run->isAsked()) {
        m_run->setUnasked();
        postStep();
    } else if (m_state == State::Cancelling) {
        postStep();
    }
}

void Render::postStep()
{
    m_isStepPosted = true;
    QCoreApplication::postEvent(this, new QEvent(kStep));
}

bool Render::event(QEvent* event)
{
    if (event->type() != kStep)
        return QDialog::event(event);
    nextStep();
    return true;
}

void Render::nextStep()
{
    if (m_state == State::Cancelling) {
        setState(State::Settings);
        m_host.status(tr("Export cancelled."));
        return;
    }
    if (m_state != State::Exporting || m_run->isAsked())
        return;
    if (m_isAsking) {
        m_isStepDue = true;
        return;
    }
    if (m_run->missing() && m_attempts < kAttempts) {
        announceFrame();
        return;
    }
    if (m_run->missing()) {
        for (const QString& name : m_run->giveUp())
            complainOfOutput(name);
        if (m_state != State::Exporting)
            return;
    }
    if (!m_run->isGenerated())
        startFrame(m_run->frame() + 1);
    else if (m_run->waitingFiles() == 0)
        finish();
}

void Render::finish()
{
    setState(State::Done);
    m_progress->setDone(1.0);
    const QString text = m_failures == 0
                             ? tr("Export complete.")
                             : tr("Export complete. %1 of the files could not be written.").arg(m_failures);
    m_progress->setText(text);
    m_host.status(text);
    if (m_isReExport)
        hide();
}

void Render::cancelSlot()
{
    if (m_state == State::Cancelling)
        return;
    if (m_state != State::Exporting) {
        hide();
        return;
    }
    m_run->cancel();
    setState(State::Cancelling);
    m_progress->setText(tr("Cancelling..."));
    if (m_host.isGenerating())
        m_host.stopGeneration();
    else
        postStep();
}

// ---- What is told

void Render::showProgress()
{
    if (m_state != State::Exporting)
        return;
    const int frames = m_run->frameCount(), outputs = m_run->outputCount();
    const int output = std::min(m_run->delivered() + 1, outputs);
    QString text;
    if (frames == 1)
        text = tr("Rendering output %1/%2...").arg(output).arg(outputs);
    else if (outputs == 1)
        text = tr("Rendering frame %1/%2...").arg(m_run->frame() + 1).arg(frames);
    else
        text = tr("Rendering frame %1/%2, output %3/%4...")
                   .arg(m_run->frame() + 1)
                   .arg(frames)
                   .arg(output)
                   .arg(outputs);
    m_progress->setText(text);
    if (!isVisible())
        m_host.status(text);
    // Half of the work is generation, half of it encoding.
    const double inFrame = std::max(m_run->delivered() / double(outputs), m_percent * 0.01);
    const double generated = m_run->frame() + inFrame;
    const double encoded = m_run->finishedFiles() / double(m_run->fileCount());
    m_progress->setDone((generated + encoded) / (2.0 * frames));
}

void Render::complainOfFile(const QString& path, const PictureFileError& error)
{
    const QString shown = QDir::toNativeSeparators(path);
    if (error.isFormatUnknown)
        complain(
            {tr("Bitmap Codec Error"), tr("'%1' format not handled.").arg(QFileInfo(path).suffix()), shown});
    else
        complain({tr("Bitmap I/O Error"), tr("Cannot save bitmap '%1'.").arg(shown), error.text});
}

void Render::complainOfOutput(const QString& name)
{
    complain({tr("Bitmap Internal Error"), tr("Invalid output '%1'.").arg(name), {}});
}

/// Asks whether to go on; complaints that come meanwhile wait for their turn.
void Render::complain(const Complaint& complaint)
{
    if (m_state != State::Exporting)
        return;
    ++m_failures;
    m_complaints.append(complaint);
    if (m_isAsking)
        return;
    m_isAsking = true;
    if (m_isReExport)
        show();
    m_isReExport = false;
    while (!m_complaints.isEmpty()) {
        const Complaint next = m_complaints.takeFirst();
        QMessageBox box(QMessageBox::Warning, next.title, next.text, QMessageBox::Ignore | QMessageBox::Abort,
                        this);
        box.setInformativeText(next.reason);
        if (box.exec() == QMessageBox::Abort) {
            m_complaints.clear();
            cancelSlot();
        }
    }
    m_isAsking = false;
    if (m_isStepDue)
        postStep();
    m_isStepDue = false;
}

} // namespace Zph::Applications::Player
