#include "formatcontrols.h"

#include "applications/player/output/dialog/fieldlabel.h"
#include "applications/player/output/dialog/formatoptionsdialog.h"
#include "applications/player/output/picturefile.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace Zph::Applications::Player {

namespace {

using Orn::Image::Codec::SurfaceCodecManager;

void fillFormats(QComboBox& combo)
{
    QMap<QString, QString> descriptions;
    for (const auto& format : SurfaceCodecManager::instance().getWritableFormats())
        descriptions.insert(format.extension.toLower(), format.description);
    for (const QString& extension : pictureFormats()) {
        combo.addItem(extension, extension);
        combo.setItemData(combo.count() - 1, descriptions.value(extension), Qt::ToolTipRole);
    }
}

} // namespace

FormatControls::FormatControls(QWidget* parent) : QWidget(parent)
{
    m_format = new QComboBox(this);
    fillFormats(*m_format);
    m_options = new QPushButton(tr("Options..."), this);
    connect(m_format, qOverload<int>(&QComboBox::currentIndexChanged), this, &FormatControls::formatChanged);
    connect(m_options, &QPushButton::clicked, this, &FormatControls::optionsWanted);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(fieldLabel(m_format, tr(" Format:"), this));
    row->addWidget(m_format);
    row->addWidget(m_options);
}

QString FormatControls::format() const
{
    return m_format->currentData().toString();
}

void FormatControls::setFormat(const QString& format)
{
    const int place = m_format->findData(format);
    m_format->setCurrentIndex(place >= 0 ? place : m_format->findData(ExportSettings().format));
}

QByteArray FormatControls::optionId() const
{
    return SurfaceCodecManager::instance().getFormatOptionIdFromFormat(format().toLatin1());
}

QVariantMap FormatControls::codecOptions() const
{
    QVariantMap options = withQuality(m_quality);
    const QVariantMap chosen = m_codecOptions.value(optionId());
    for (auto option = chosen.begin(); option != chosen.end(); ++option)
        options.insert(option.key(), option.value());
    return options;
}

void FormatControls::setOpen(bool isOpen)
{
    m_format->setEnabled(isOpen);
    m_options->setEnabled(isOpen && FormatOptionsDialog::hasOptions(format()));
}

void FormatControls::openOptions()
{
    FormatOptionsDialog dialog(format(), {m_quality, m_codecOptions.value(optionId())}, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_quality = dialog.values().quality;
    m_codecOptions[optionId()] = dialog.values().others;
}

} // namespace Zph::Applications::Player
