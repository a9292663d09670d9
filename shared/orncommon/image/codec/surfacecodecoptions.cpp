#include "orncommon/image/codec/surfacecodecoptions.h"

namespace Orn::Image::Codec {

namespace {

QString const iccProfileKey = QStringLiteral("ICCProfile");

} // namespace

struct SurfaceCodecOptions::Data : QSharedData
{
    Values values;
    Descs descs;
};

using OptionDesc = SurfaceCodecOptions::OptionDesc;

OptionDesc OptionDesc::sCreateFromBool(QString const& label, bool defaultValue, QString const& tooltip)
{
    return {label, QVariant::Bool, defaultValue, {}, {}, {}, tooltip};
}

OptionDesc OptionDesc::sCreateFromInteger(QString const& label, int defaultValue, int minimum, int maximum,
                                          QString const& tooltip)
{
    return {label, QVariant::Int, defaultValue, minimum, maximum, {}, tooltip};
}

OptionDesc OptionDesc::sCreateFromMultipleChoices(QString const& label, QVariant const& defaultValue,
                                                  Choices const& choices, QString const& tooltip)
{
    return {label, QVariant::List, defaultValue, {}, {}, choices, tooltip};
}

SurfaceCodecOptions::SurfaceCodecOptions() : m_data(new Data)
{
}

SurfaceCodecOptions::SurfaceCodecOptions(SurfaceCodecOptions const&) = default;
SurfaceCodecOptions& SurfaceCodecOptions::operator=(SurfaceCodecOptions const&) = default;
SurfaceCodecOptions::~SurfaceCodecOptions() = default;

SurfaceCodecOptions::Values const& SurfaceCodecOptions::values() const
{
    return m_data->values;
}

bool SurfaceCodecOptions::contains(QString const& key) const
{
    return m_data->values.contains(key);
}

QVariant SurfaceCodecOptions::value(QString const& key) const
{
    return m_data->values.value(key);
}

void SurfaceCodecOptions::setValue(QString const& key, QVariant const& value)
{
    m_data->values.insert(key, value);
}

SurfaceCodecOptions::Descs const& SurfaceCodecOptions::optionDescs() const
{
    return m_data->descs;
}

void SurfaceCodecOptions::setOptionDescs(Descs const& descs)
{
    m_data->descs = descs;
}

void SurfaceCodecOptions::declare(QString const& key, OptionDesc const& desc)
{
    m_data->descs.insert(key, std::make_shared<OptionDesc>(desc));
    m_data->values.insert(key, desc.defaultValue);
}

void SurfaceCodecOptions::mergeValues(SurfaceCodecOptions const& other)
{
    Values const& added = other.values();
    for (auto it = added.cbegin(); it != added.cend(); ++it)
        setValue(it.key(), it.value());
}

bool SurfaceCodecOptions::hasEmbeddedICCProfile() const
{
    return !getEmbeddedICCProfileData().isEmpty();
}

QByteArray SurfaceCodecOptions::getEmbeddedICCProfileData() const
{
    return value(iccProfileKey).toByteArray();
}

} // namespace Orn::Image::Codec
