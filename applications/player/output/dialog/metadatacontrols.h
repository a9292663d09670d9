#pragma once

#include "applications/player/metadata/metadatachoices.h"

#include <QWidget>

class QComboBox;

namespace Zph::Applications::Player {

/// The three combo boxes of an export's metadata.
class MetadataControls : public QWidget
{
    Q_OBJECT

public:
    explicit MetadataControls(QWidget* parent = nullptr);

    MetadataChoices choices() const;
    void setChoices(const MetadataChoices& choices);

    /// Takes away the modes that need an archive, or, with an empty reason, gives them back with the choice
    /// that there was.
    void setWithoutArchive(const QString& reason);

public slots:
    void metaMainChanged(int index);

signals:
    void mainChanged(int index);

private:
    QComboBox* addCombo(const QString& label, const QStringList& entries);
    void enableArchiveModes();

    QComboBox* m_main;
    QComboBox* m_values;
    QComboBox* m_archive;
    MetadataChoices::Archive m_chosenArchive = {}; // also while there is none
    QString m_whyWithoutArchive;
};

} // namespace Zph::Applications::Player
