#pragma once

#include "applications/player/images/imageoptions.h"
#include "orncommon/surfaces/surface.h"

#include <QDialog>
#include <QSharedPointer>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QSpinBox;
class QVBoxLayout;

namespace Zph::Applications::Player {

class CropPreview;

// Lets the user say how a picture fits the place where an engine wants it.
class ImageRescale : public QDialog
{
    Q_OBJECT

public:
    explicit ImageRescale(const ImageOptions& options, QWidget* parent = nullptr);

    // As the widgets say. A cropping that was not set stays so as long as nothing is cut off.
    ImageOptions options() const;

    // Shows what a cropping leaves of a picture, and its size; null: no picture.
    void setPicture(const QSharedPointer<Orn::Surfaces::Surface>& picture);

    // Shows the panel of an image server, too, and tells it when what it shows is to count. The panel becomes
    // the dialog's own.
    void setPanel(QWidget* panel);

public slots:
    void accept() override;
    void modeActivated(int index);
    void repeatToggled(bool on);
    void requireColorDialog();

private:
    QWidget* makeCropping();
    QSpinBox* makeSpinBox(int value, const QString& name);
    quint32 mode() const;
    void updateEnabled();
    void updateColorIcon();
    void updatePreview();

    ImageOptions m_initial;
    QColor m_paddingColor;
    QVBoxLayout* m_layout;
    QComboBox* m_modeCombo;
    QCheckBox* m_mosaicCheck;
    QPushButton* m_colorButton;
    QLabel* m_keptSize;
    CropPreview* m_preview = nullptr;
    QSpinBox* m_cropTop = nullptr;
    QSpinBox* m_cropLeft = nullptr;
    QSpinBox* m_cropRight = nullptr;
    QSpinBox* m_cropBottom = nullptr;
    QWidget* m_panel = nullptr;
    int m_buttonsPlace = 0; // in the layout
};

} // namespace Zph::Applications::Player
