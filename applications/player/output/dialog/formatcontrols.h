#pragma once

#include "applications/player/output/exportsettings.h"

#include <QMap>
#include <QVariantMap>
#include <QWidget>

class QComboBox;
class QPushButton;

namespace Zph::Applications::Player {

/// The format of an export's files, and what its codec is told.
class FormatControls : public QWidget
{
    Q_OBJECT

public:
    explicit FormatControls(QWidget* parent = nullptr);

    /// An extension of pictureFormats().
    QString format() const;
    /// One that is no such extension stands for the usual format.
    void setFormat(const QString& format);
    int quality() const { return m_quality; }
    void setQuality(int quality) { m_quality = quality; }
    /// What the codec is told beside its defaults.
    QVariantMap codecOptions() const;

    /// Whether there is a choice.
    void setOpen(bool isOpen);
    /// Shows the dialog of the format's options.
    void openOptions();

signals:
    void formatChanged();
    void optionsWanted();

private:
    QByteArray optionId() const;

    int m_quality = ExportSettings().quality;
    QMap<QByteArray, QVariantMap> m_codecOptions; // by optionId()
    QComboBox* m_format;
    QPushButton* m_options;
};

} // namespace Zph::Applications::Player
