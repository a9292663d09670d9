#include "applications/player/images/widgets/imagerescale.h"

#include "applications/player/images/widgets/croppreview.h"
#include "applications/player/images/widgets/imageserverbase.h"
#include "orncommon/gui/color/checkerboard.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

constexpr int mostCropped = 8192; // pixels
constexpr int colorButtonHeight = 20;
constexpr int margin = 12;
constexpr QSize colorIconSize(48, 14);
constexpr int checkSize = 7; // a square of the board that shows through a padding with alpha

QPixmap swatch(const QColor& color, const QSize& size)
{
    QPixmap pixmap(size);
    QPainter painter(&pixmap);
    painter.fillRect(pixmap.rect(), Orn::Gui::checkerboardBrush(checkSize));
    painter.fillRect(pixmap.rect(), color);
    return pixmap;
}

} // namespace

ImageRescale::ImageRescale(const ImageOptions& options, QWidget* parent)
    : QDialog(parent), m_initial(options), m_paddingColor(options.paddingColor),
      m_layout(new QVBoxLayout(this)), m_modeCombo(new QComboBox(this)),
      m_mosaicCheck(new QCheckBox(tr(" Mosaic filling"), this)), m_colorButton(new QPushButton(this)),
      m_keptSize(new QLabel(this))
{
    setWindowTitle(tr("Image rescale options"));
    m_modeCombo->addItem(tr("Rescale (ignore aspect ratio)"), ImageOptions::Stretch);
    m_modeCombo->addItem(tr("Rescale (keep aspect ratio)"), ImageOptions::KeepAspect);
    m_modeCombo->addItem(tr("No rescale"), ImageOptions::Exact);
    m_modeCombo->setAccessibleName(tr("Rescale"));
    m_modeCombo->setCurrentIndex(
        std::max(0, m_modeCombo->findData(options.flags & quint32(ImageOptions::ModeMask))));
    m_mosaicCheck->setChecked(options.flags & ImageOptions::Mosaic);
    m_mosaicCheck->setToolTip(tr("Fill the space around the image with copies of it."));
    m_colorButton->setMinimumHeight(colorButtonHeight);
    m_colorButton->setIconSize(colorIconSize);
    m_colorButton->setAutoDefault(false); // Enter applies, wherever it is pressed
    m_colorButton->setToolTip(tr("Choose the color of the space around the image."));

    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(m_modeCombo);
    form->addRow(m_mosaicCheck);
    form->addRow(tr("Padding color:"), m_colorButton);
    m_colorButton->setAccessibleName(tr("Padding color"));
    m_layout->setContentsMargins(margin, margin, margin, margin);
    m_layout->setSpacing(margin);
    m_layout->setSizeConstraint(QLayout::SetFixedSize);
    m_layout->addLayout(form);
    auto* head = new QHBoxLayout;
    head->addWidget(new QLabel(tr("Source image cropping:"), this), 1);
    head->addWidget(m_keptSize);
    m_layout->addLayout(head);
    m_layout->addWidget(makeCropping());
    m_buttonsPlace = m_layout->count();
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    buttons->addButton(tr("Apply"), QDialogButtonBox::AcceptRole)->setDefault(true);
    m_layout->addWidget(buttons);

    connect(m_modeCombo, qOverload<int>(&QComboBox::activated), this, &ImageRescale::modeActivated);
    connect(m_mosaicCheck, &QCheckBox::toggled, this, &ImageRescale::repeatToggled);
    connect(m_colorButton, &QPushButton::clicked, this, &ImageRescale::requireColorDialog);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    updateColorIcon();
    updateEnabled();
    setPicture({});
}

QSpinBox* ImageRescale::makeSpinBox(int value, const QString& name)
{
    auto* box = new QSpinBox(this);
    box->setRange(0, mostCropped);
    box->setValue(value);
    box->setSuffix(tr(" px"));
    box->setAccessibleName(name);
    box->setToolTip(name);
    connect(box, qOverload<int>(&QSpinBox::valueChanged), this, &ImageRescale::updatePreview);
    return box;
}

// The boxes stand around a frame that stands for the picture.
QWidget* ImageRescale::makeCropping()
{
    auto* cropping = new QWidget(this);
    m_cropTop = makeSpinBox(m_initial.cropTop, tr("Pixels cut off at the top"));
    m_cropLeft = makeSpinBox(m_initial.cropLeft, tr("Pixels cut off at the left"));
    m_cropRight = makeSpinBox(m_initial.cropRight, tr("Pixels cut off at the right"));
    m_cropBottom = makeSpinBox(m_initial.cropBottom, tr("Pixels cut off at the bottom"));
    m_preview = new CropPreview(tr("Cropping"), cropping);
    m_preview->setObjectName(QStringLiteral("croppedPicture"));
    auto* grid = new QGridLayout(cropping);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(m_cropTop, 0, 1, Qt::AlignHCenter);
    grid->addWidget(m_cropLeft, 1, 0, Qt::AlignVCenter);
    grid->addWidget(m_preview, 1, 1);
    grid->addWidget(m_cropRight, 1, 2, Qt::AlignVCenter);
    grid->addWidget(m_cropBottom, 2, 1, Qt::AlignHCenter);
    grid->setColumnStretch(1, 1);
    return cropping;
}

void ImageRescale::setPicture(const QSharedPointer<Orn::Surfaces::Surface>& picture)
{
    m_preview->setPicture(picture);
    m_keptSize->setVisible(picture != nullptr);
    updatePreview();
}

void ImageRescale::updatePreview()
{
    m_preview->setCropping(
        {m_cropLeft->value(), m_cropTop->value(), m_cropRight->value(), m_cropBottom->value()});
    const QSize kept = m_preview->kept().size();
    m_keptSize->setText(kept.isEmpty() ? tr("nothing is left")
                                       : tr("%1x%2 px").arg(kept.width()).arg(kept.height()));
}

void ImageRescale::setPanel(QWidget* panel)
{
    m_panel = panel;
    auto* line = new QFrame(this);
    line->setObjectName(QStringLiteral("line"));
    line->setFixedHeight(1);
    m_layout->insertWidget(m_buttonsPlace, line);
    m_layout->insertWidget(m_buttonsPlace + 1, panel);
    // Given the panel, Qt would place that alone, and leave its widget behind the buttons.
    setTabOrder(m_cropBottom, panel->focusProxy() ? panel->focusProxy() : panel);
}

ImageOptions ImageRescale::options() const
{
    ImageOptions options = m_initial;
    options.flags = mode() | (m_mosaicCheck->isChecked() ? quint32(ImageOptions::Mosaic) : 0u);
    options.paddingColor = m_paddingColor;
    const auto isUntouched = [](int initial, const QSpinBox* box) {
        return initial == box->value() || (initial < 0 && box->value() == 0);
    };
    if (isUntouched(m_initial.cropLeft, m_cropLeft) && isUntouched(m_initial.cropTop, m_cropTop) &&
        isUntouched(m_initial.cropRight, m_cropRight) && isUntouched(m_initial.cropBottom, m_cropBottom))
        return options;
    options.cropLeft = m_cropLeft->value();
    options.cropTop = m_cropTop->value();
    options.cropRight = m_cropRight->value();
    options.cropBottom = m_cropBottom->value();
    return options;
}

void ImageRescale::accept()
{
    if (m_panel) {
        QEvent apply{QEvent::Type(ImageServerBase::applyPanel)};
        QCoreApplication::sendEvent(m_panel, &apply);
    }
    QDialog::accept();
}

quint32 ImageRescale::mode() const
{
    return m_modeCombo->currentData().toUInt();
}

void ImageRescale::modeActivated(int)
{
    updateEnabled();
}

void ImageRescale::repeatToggled(bool)
{
    updateEnabled();
}

void ImageRescale::updateEnabled()
{
    const bool hasCanvas = mode() != ImageOptions::Stretch;
    m_mosaicCheck->setEnabled(hasCanvas);
    m_colorButton->setEnabled(hasCanvas && !m_mosaicCheck->isChecked());
}

void ImageRescale::requireColorDialog()
{
    const QPointer<ImageRescale> alive(this);
    const QColor color = QColorDialog::getColor(m_paddingColor, this, tr("Choose padding color"),
                                                QColorDialog::ShowAlphaChannel);
    if (!alive || !color.isValid())
        return;
    m_paddingColor = color;
    updateColorIcon();
}

void ImageRescale::updateColorIcon()
{
    m_colorButton->setIcon(swatch(m_paddingColor, m_colorButton->iconSize()));
}

} // namespace Zph::Applications::Player
