#pragma once

#include "applications/player/output/dialog/renderhost.h"
#include "applications/player/output/exportsettingsholder.h"
#include "applications/player/session/valueorsurfaceplayer.h"

#include <QDialog>
#include <QHash>
#include <QStringList>

#include <memory>
#include <set>

class QLabel;
class QLineEdit;
class QListWidgetItem;
class QPushButton;
class QStackedWidget;

namespace Zph::Applications::Player {

class ExportRun;
class FolderEdit;
class FormatControls;
class MetadataControls;
class OutputTree;
class PackingTemplateBox;
class ProgressPage;
struct ExportChoices;
struct PackingPlan;
struct PackageOutput;
struct PictureFileError;
class TimeControls;

/// The dialog that exports the pictures of the document, modeless and only one. Its first page says what is
/// to be written and how; its second tells of the export under way and lists the files.
///
/// The export is driven frame by frame: the dialog announces a time, the window generates, asks for the
/// outputs that are required and hands over each picture. An event that the dialog posts to itself leads to
/// the next frame, so that the program stays alive between them. Within a generation the dialog's own buttons
/// go on working.
///
/// Settings are kept as long as the dialog lives; outputs that were switched off, for each package. Main
/// thread.
class Render : public QDialog, public ExportSettingsHolder
{
    Q_OBJECT

public:
    class TreeItem;

    /// The host outlives the dialog.
    explicit Render(RenderHost& host, QWidget* parent = nullptr);
    ~Render() override;

    /// What is exported from now on. An export under way is cancelled when the package is another one.
    void setDocument(const RenderDocument& document);
    /// The bytes of the package's archive, which vlrarDataRequired() asked for; they are kept for as long as
    /// the package.
    void setArchive(const QByteArray& bytes) { m_archive = bytes; }

    std::optional<ExportSettings> exportSettings() const override;
    void applyExportSettings(const ExportSettings& settings) override;

    /// By its name; an empty one for none.
    void setPackingTemplate(const QString& name);

    bool isRunning() const { return m_state == State::Exporting || m_state == State::Cancelling; }
    /// Exports with the settings of the last export. Where the dialog is hidden, it stays so unless something
    /// goes wrong.
    void exportAgain();
    /// Per cent of the generation at hand.
    void generationProgress(int percent);

signals:
    void timeChanged(float seconds);
    void vlrarDataRequired();

public slots:
    /// Adds the outputs that the export needs of the next generation.
    void getRequiredOutputs(std::set<ORNUInt32>& uids);
    void sendOutputImage(ORNUInt32 uid, Zph::Applications::Player::ValueOrSurfacePlayer result);
    void generationFinished();
    void timeUnitChanged(int unit);
    void timeModified();
    void timeCountModified();
    void browseDir();
    void formatOption();
    void actionPatternsMenu(QAction* action);
    void outputListCurrent();
    void outputListSelection();
    void cancelSlot();
    void startSlot();
    void resetBasenamePattern();
    void openResultItem(QListWidgetItem* item);
    void metaMainChanged(int index);

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    enum class State
    {
        Settings,
        Cancelling,
        Exporting,
        Done
    };

    QWidget* makeSettingsPage();
    QLayout* makeFolderRow();
    QLayout* makePatternRow();
    QLayout* makeButtons();
    void connectControls();
    QLayout* makePackingRow();
    PackingPlan packingOf(const QVector<PackageOutput>& outputs) const;
    QString usualPattern() const;
    ExportChoices choices() const;
    void describePattern();
    QStringList fileNames(const ExportChoices& wanted) const;
    ExportSettings currentSettings() const;
    QString packageKey() const;
    QVector<PackageOutput> selectedOutputs() const;
    void startOrGoBack();
    void setState(State state);

    void start(bool again);
    bool prepareRun(ExportChoices& wanted, const QVector<PackageOutput>& outputs);
    void makeRun(const ExportChoices& wanted, const QVector<PackageOutput>& outputs);
    void startFrame(int frame);
    void announceFrame();
    void postStep();
    void nextStep();
    void finish();
    void showProgress();
    void complainOfFile(const QString& path, const PictureFileError& error);
    void complainOfOutput(const QString& name);

    struct Complaint
    {
        QString title, text, reason;
    };
    void complain(const Complaint& complaint);

    RenderHost& m_host;
    RenderDocument m_document;
    QByteArray m_archive;
    QHash<QString, std::set<quint32>> m_disabledOf; // outputs, by packageKey()
    QString m_usualPattern;                         // that was offered last
    ExportSettings m_lastSettings;
    QString m_lastTemplate;
    bool m_hasLastSettings = false;
    bool m_wasTimeSet = false;

    State m_state = State::Settings;
    bool m_isReExport = false;
    std::unique_ptr<ExportRun> m_run; // stays until the next, since it may be on the stack
    int m_attempts = 0;               // at the frame at hand
    int m_percent = 0;                // of the generation at hand
    bool m_isStepPosted = false;      // since the frame was announced last
    bool m_isStepDue = false;         // once nothing is asked any more
    QVector<Complaint> m_complaints;
    bool m_isAsking = false;
    int m_failures = 0;

    QStackedWidget* m_pages;
    TimeControls* m_time;
    FolderEdit* m_folder;
    FormatControls* m_format;
    PackingTemplateBox* m_packing;
    QLineEdit* m_pattern;
    QLabel* m_example;
    OutputTree* m_tree;
    MetadataControls* m_metadata;
    ProgressPage* m_progress;
    QPushButton* m_closeButton;
    QPushButton* m_exportButton;
};

} // namespace Zph::Applications::Player
