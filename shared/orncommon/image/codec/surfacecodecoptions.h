#pragma once

#include <QList>
#include <QMap>
#include <QPair>
#include <QSharedData>
#include <QString>
#include <QVariant>

#include <memory>

namespace Orn::Image::Codec {

/// Named values that travel with a read or a write, and the descriptions from which a dialog is made of them.
/// A value with shared data: copies are cheap.
///
/// Keys that are not options but travel here too: "ICCProfile", a QByteArray with the file's colour profile;
/// "Description", the file's description; "physical_size", on writing, a QSizeF in centimetres.
class SurfaceCodecOptions
{
public:
    struct OptionDesc
    {
        using Choices = QList<QPair<QString, QVariant>>; ///< label and value

        QString label;
        QVariant::Type type = QVariant::Invalid; ///< Bool, Int, or List for a list of choices
        QVariant defaultValue;
        QVariant minimum;
        QVariant maximum;
        Choices choices;
        QString tooltip;

        static OptionDesc sCreateFromBool(QString const& label, bool defaultValue, QString const& tooltip);
        static OptionDesc sCreateFromInteger(QString const& label, int defaultValue, int minimum, int maximum,
                                             QString const& tooltip);
        static OptionDesc sCreateFromMultipleChoices(QString const& label, QVariant const& defaultValue,
                                                     Choices const& choices, QString const& tooltip);
    };
    using Values = QMap<QString, QVariant>;
    using Descs = QMap<QString, std::shared_ptr<OptionDesc>>;

    SurfaceCodecOptions();
    SurfaceCodecOptions(SurfaceCodecOptions const&);
    SurfaceCodecOptions& operator=(SurfaceCodecOptions const&);
    ~SurfaceCodecOptions();

    Values const& values() const;
    bool contains(QString const& key) const;
    QVariant value(QString const& key) const; ///< invalid when not set
    void setValue(QString const& key, QVariant const& value);

    Descs const& optionDescs() const;
    void setOptionDescs(Descs const& descs);

    /// Declares an option and sets its default value.
    void declare(QString const& key, OptionDesc const& desc);

    /// Sets the values of `other` over those that are here.
    void mergeValues(SurfaceCodecOptions const& other);

    bool hasEmbeddedICCProfile() const;
    QByteArray getEmbeddedICCProfileData() const;

private:
    struct Data;
    QSharedDataPointer<Data> m_data;
};

} // namespace Orn::Image::Codec
