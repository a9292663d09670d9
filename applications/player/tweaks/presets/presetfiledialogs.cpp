// What presets ask the user for: files to read and to write.

#include "applications/player/output/exportsettingsholder.h"
#include "applications/player/presets/mayapreset.h"
#include "applications/player/presets/presetfile.h"
#include "applications/player/tweaks/presets/presets.h"
#include "applications/player/tweaks/presets/presetsave.h"
#include "applications/player/tweaks/presets/presetsettings.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

namespace Zph::Applications::Player {

namespace {

QString presetsFilter()
{
    return Presets::tr("Vellor Presets file") + QLatin1String(" (*.vlrprs)");
}

QString mayaFilter()
{
    return Presets::tr("Maya Presets file") + QLatin1String(" (*.mel)");
}

struct FileQuestion
{
    QString title;
    QString filter;
    const Orn::Core::SettingKey<QString>& folder;
    QString suffix;
    bool isUpdate = false; // an existing file is not written over
};

// The absolute path of a file to write, which has the suffix; empty when the user changed their mind. A
// dialog of our own, because it appends the suffix before it asks whether to write over a file.
QString askForFileToWrite(QWidget* parent, const FileQuestion& question)
{
    QFileDialog dialog(parent, question.title, question.folder.read(), question.filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(question.suffix);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, question.isUpdate);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    QFileInfo file(dialog.selectedFiles().first());
    if (file.suffix().compare(question.suffix, Qt::CaseInsensitive) != 0)
        file.setFile(file.filePath() + '.' + question.suffix);
    question.folder.write(file.absolutePath());
    return file.absoluteFilePath();
}

void warnUnwritable(QWidget* parent, const QString& fileName)
{
    QMessageBox::warning(parent, Presets::tr("Presets saving"),
                         Presets::tr("Cannot create '%1' file: I/O Error.").arg(fileName));
}

} // namespace

std::optional<QVector<PresetDescription>> Presets::readFile(QWidget* parent, const QString& fileName) const
{
    QString reason;
    const auto presets = readPresetFile(fileName, inputLookUp(), reason);
    if (!presets)
        QMessageBox::warning(parent, tr("Presets loading"),
                             tr("Cannot open '%1' file: invalid XML format.").arg(fileName));
    return presets;
}

void Presets::loadPresetsFile(QWidget* parent)
{
    const QString chosen = QFileDialog::getOpenFileName(parent, tr("Open Vellor Presets file"),
                                                        PresetSettings::presetsPath.read(), presetsFilter());
    if (chosen.isEmpty())
        return;
    const QFileInfo file(chosen);
    PresetSettings::presetsPath.write(file.absolutePath());
    if (const auto presets = readFile(parent, file.absoluteFilePath()))
        replaceFile(file.absoluteFilePath(), *presets);
}

void Presets::savePresetIntoFile(QWidget* parent, const QString& graphKey, QString fileName)
{
    PresetDescription preset;
    preset.pkgurl = graphKey;
    preset.inputs = collectValues(tweaksOfGraph(graphKey));
    if (fileName.isEmpty())
        fileName =
            askForFileToWrite(parent, {tr("Save as/Update existing Vellor Presets file"), presetsFilter(),
                                       PresetSettings::presetsPath, QStringLiteral("vlrprs"), true});
    if (fileName.isEmpty())
        return;
    QVector<PresetDescription> existing;
    if (QFileInfo::exists(fileName)) {
        const auto read = readFile(parent, fileName);
        if (!read)
            return;
        existing = *read;
    }
    const auto exported = m_exportSettings ? m_exportSettings->exportSettings() : std::nullopt;
    PresetSave dialog(fileName, existing, exported.has_value(), parent);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QVector<PresetDescription> presets = dialog.presetsWith(preset, exported);
    if (writePresetFile(fileName, presets).isEmpty())
        replaceFile(fileName, presets);
    else
        warnUnwritable(parent, fileName);
}

void Presets::exportToMaya(QWidget* parent, const QString& graphKey)
{
    const QVector<PresetInput> values = collectValues(tweaksOfGraph(graphKey));
    const QString fileName =
        askForFileToWrite(parent, {tr("Export as maya preset file"), mayaFilter(),
                                   PresetSettings::mayaExportPath, QStringLiteral("mel")});
    if (!fileName.isEmpty() && !writeMayaPreset(fileName, values).isEmpty())
        warnUnwritable(parent, fileName);
}

} // namespace Zph::Applications::Player
