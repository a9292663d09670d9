#include "formatoptionsdialog.h"

#include "applications/player/output/picturefile.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QSlider>
#include <QSpinBox>

namespace Zph::Applications::Player {

namespace {

using Orn::Image::Codec::Action;
using Orn::Image::Codec::SurfaceCodecManager;
using Orn::Image::Codec::SurfaceCodecOptions;

constexpr int kWidth = 380;

SurfaceCodecOptions::Descs optionsOf(const QString& format)
{
    const SurfaceCodecManager& manager = SurfaceCodecManager::instance();
    SurfaceCodecOptions options;
    manager.getOptionsDescs(options, Action::Write, manager.getFormatOptionIdFromFormat(format.toLatin1()));
    return options.optionDescs();
}

} // namespace

bool FormatOptionsDialog::hasOptions(const QString& format)
{
    return !optionsOf(format).isEmpty();
}

FormatOptionsDialog::FormatOptionsDialog(const QString& format, const Values& values, QWidget* parent)
    : QDialog(parent), m_values(values)
{
    setWindowTitle(tr("Bitmap format options"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    layout->addLayout(form);
    const QString quality = qualityOption(format);
    if (!quality.isEmpty())
        addQuality(*form);
    const auto descs = optionsOf(format);
    for (auto desc = descs.begin(); desc != descs.end(); ++desc)
        if (desc.key() != quality)
            addOption(*form, desc.key(), **desc);
    layout->addStretch(1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addSpacing(4);
    layout->addWidget(buttons);
    setMinimumWidth(kWidth);
}

void FormatOptionsDialog::addQuality(QFormLayout& form)
{
    auto* label = new QLabel(tr("Compression level/quality (0:smaller file, lower quality - 100:bigger file, "
                                "high quality):"),
                             this);
    label->setWordWrap(true);
    auto* slider = new QSlider(Qt::Horizontal, this);
    auto* spin = new QSpinBox(this);
    for (QWidget* widget : {static_cast<QWidget*>(slider), static_cast<QWidget*>(spin)})
        widget->setAccessibleName(label->text());
    slider->setRange(0, 100);
    spin->setRange(0, 100);
    slider->setValue(m_values.quality);
    spin->setValue(m_values.quality);
    connect(slider, &QSlider::valueChanged, spin, &QSpinBox::setValue);
    connect(spin, qOverload<int>(&QSpinBox::valueChanged), slider, &QSlider::setValue);
    connect(spin, qOverload<int>(&QSpinBox::valueChanged), this,
            [this](int value) { m_values.quality = value; });
    auto* row = new QHBoxLayout;
    row->addWidget(slider, 1);
    row->addWidget(spin);
    form.addRow(label);
    form.addRow(row);
}

void FormatOptionsDialog::addOption(QFormLayout& form, const QString& name, const Desc& desc)
{
    QWidget* widget = makeWidget(name, desc);
    if (!widget)
        return;
    m_defaults.insert(name, desc.defaultValue);
    widget->setObjectName(name);
    widget->setToolTip(desc.tooltip);
    widget->setAccessibleName(desc.label);
    if (desc.type == QVariant::Bool)
        form.addRow(widget);
    else
        form.addRow(desc.label + ':', widget);
}

/// Null for a kind of option that no widget knows.
QWidget* FormatOptionsDialog::makeWidget(const QString& name, const Desc& desc)
{
    const QVariant value = m_values.others.value(name, desc.defaultValue);
    if (desc.type == QVariant::Bool) {
        auto* box = new QCheckBox(desc.label, this);
        box->setChecked(value.toBool());
        m_readers.insert(name, [box] { return box->isChecked(); });
        return box;
    }
    if (desc.type == QVariant::Int) {
        auto* spin = new QSpinBox(this);
        spin->setRange(desc.minimum.toInt(), desc.maximum.toInt());
        spin->setValue(value.toInt());
        m_readers.insert(name, [spin] { return spin->value(); });
        return spin;
    }
    if (desc.type != QVariant::List)
        return nullptr;
    auto* combo = new QComboBox(this);
    for (const auto& choice : desc.choices)
        combo->addItem(choice.first, choice.second);
    combo->setCurrentIndex(combo->findData(value));
    m_readers.insert(name, [combo] { return combo->currentData(); });
    return combo;
}

FormatOptionsDialog::Values FormatOptionsDialog::values() const
{
    Values values{m_values.quality, {}};
    for (auto reader = m_readers.begin(); reader != m_readers.end(); ++reader) {
        const QVariant value = (*reader)();
        if (value != m_defaults.value(reader.key()))
            values.others.insert(reader.key(), value);
    }
    return values;
}

} // namespace Zph::Applications::Player
