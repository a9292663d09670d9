#include "metadatacontrols.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QStandardItemModel>

namespace Zph::Applications::Player {

MetadataControls::MetadataControls(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_main = addCombo(tr("Vellor metadata:"),
                      {tr("Enabled (embedded)"), tr("Enabled (.vlrmeta file)"), tr("Disabled")});
    m_values = addCombo(tr(" Tweaks values:"),
                        {tr("Embedded"), tr("Embedded (only once)"), tr("External (.vlrprs) file")});
    m_archive =
        addCombo(tr(" VLRAR file:"), {tr("Embedded"), tr("Embedded (only once)"), tr("Reference only")});
    layout->addStretch(1);
    connect(m_main, qOverload<int>(&QComboBox::currentIndexChanged), this, &MetadataControls::mainChanged);
    connect(m_archive, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this](int index) { m_chosenArchive = MetadataChoices::Archive(index); });
}

QComboBox* MetadataControls::addCombo(const QString& label, const QStringList& entries)
{
    auto* combo = new QComboBox(this);
    combo->addItems(entries);
    combo->setAccessibleName(label.trimmed().remove(':'));
    layout()->addWidget(new QLabel(label, this));
    layout()->addWidget(combo);
    return combo;
}

MetadataChoices MetadataControls::choices() const
{
    return {MetadataChoices::Metadata(m_main->currentIndex()),
            MetadataChoices::Values(m_values->currentIndex()), m_chosenArchive};
}

void MetadataControls::setChoices(const MetadataChoices& choices)
{
    m_main->setCurrentIndex(int(choices.metadata));
    m_values->setCurrentIndex(int(choices.values));
    m_chosenArchive = choices.archive;
    enableArchiveModes();
}

void MetadataControls::setWithoutArchive(const QString& reason)
{
    m_whyWithoutArchive = reason;
    enableArchiveModes();
}

void MetadataControls::enableArchiveModes()
{
    using Archive = MetadataChoices::Archive;
    const bool isThere = m_whyWithoutArchive.isEmpty();
    auto* model = qobject_cast<QStandardItemModel*>(m_archive->model());
    for (const Archive mode : {Archive::Embedded, Archive::EmbeddedOnce}) {
        model->item(int(mode))->setEnabled(isThere);
        model->item(int(mode))->setToolTip(m_whyWithoutArchive);
    }
    m_archive->setToolTip(m_whyWithoutArchive);
    const QSignalBlocker blocker(m_archive);
    m_archive->setCurrentIndex(int(isThere ? m_chosenArchive : Archive::Reference));
}

void MetadataControls::metaMainChanged(int index)
{
    const bool isEnabled = MetadataChoices::Metadata(index) != MetadataChoices::Metadata::Disabled;
    m_values->setEnabled(isEnabled);
    m_archive->setEnabled(isEnabled);
}

} // namespace Zph::Applications::Player
