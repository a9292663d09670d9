#pragma once

#include "orncommon/image/codec/surfacecodecoptions.h"

#include <QDialog>

#include <functional>

class QFormLayout;

namespace Zph::Applications::Player {

/// The options of an image format: the level of quality where it has one, and a widget for whatever else its
/// codec declares.
class FormatOptionsDialog : public QDialog
{
    Q_OBJECT

public:
    struct Values
    {
        int quality = 75;   ///< 0 to 100
        QVariantMap others; ///< by name, those that aren't the codec's defaults
    };

    /// Whether the format has anything to choose.
    static bool hasOptions(const QString& format);

    FormatOptionsDialog(const QString& format, const Values& values, QWidget* parent = nullptr);

    Values values() const;

private:
    using Desc = Orn::Image::Codec::SurfaceCodecOptions::OptionDesc;

    void addQuality(QFormLayout& form);
    void addOption(QFormLayout& form, const QString& name, const Desc& desc);
    QWidget* makeWidget(const QString& name, const Desc& desc);

    Values m_values;
    QMap<QString, QVariant> m_defaults;
    QMap<QString, std::function<QVariant()>> m_readers; // of the widgets, by name
};

} // namespace Zph::Applications::Player
