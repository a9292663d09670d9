#include "orncommon/core/defaultsettings.h"

#include <QFileInfo>
#include <QPointer>
#include <QSettings>
#include <QUrl>

namespace Orn::Core {

struct DefaultSettings::Private
{
    Private(QSettings* owned, Format known) : settings(owned), format(known)
    {
        if (format != Unknown)
            return;
        if (settings->format() == QSettings::NativeFormat)
            format = Native;
        else if (settings->format() == QSettings::IniFormat)
            format = Ini;
    }
    ~Private() { delete settings; }
    Private(const Private&) = delete;
    Private& operator=(const Private&) = delete;

    // Guarded, because its parent object may die first.
    QPointer<QSettings> settings;
    Format format;
};

namespace {

QSettings::Format toQtFormat(DefaultSettings::Format format)
{
    switch (format) {
    case DefaultSettings::Native:
        return QSettings::NativeFormat;
    case DefaultSettings::Ini:
        return QSettings::IniFormat;
    default:
        return QSettings::InvalidFormat;
    }
}

QString toAbsolutePath(const QString& fileName)
{
    if (fileName.isEmpty())
        return fileName;
    const QUrl url(fileName);
    return QFileInfo(url.isLocalFile() ? url.toLocalFile() : fileName).absoluteFilePath();
}

} // namespace

DefaultSettings::DefaultSettings(QObject* parent)
    : m_private(std::make_unique<Private>(new QSettings(parent), Unknown))
{
}

DefaultSettings::DefaultSettings(const QString& organization, const QString& application, QObject* parent)
    : m_private(std::make_unique<Private>(new QSettings(organization, application, parent), Unknown))
{
}

DefaultSettings::DefaultSettings(const QString& fileName, Format format, QObject* parent)
    : m_private(std::make_unique<Private>(new QSettings(toAbsolutePath(fileName), toQtFormat(format), parent),
                                          format))
{
}

DefaultSettings::~DefaultSettings() = default;

QString DefaultSettings::sGetSettingsFileExtension(Format format)
{
    switch (format) {
    case Ini:
        return QStringLiteral("ini");
    case Xml:
        return QStringLiteral("xml");
    default:
        return {};
    }
}

DefaultSettings::Format DefaultSettings::getFormat() const
{
    return m_private->format;
}

void DefaultSettings::beginGroup(const QString& prefix)
{
    m_private->settings->beginGroup(prefix);
}

void DefaultSettings::endGroup()
{
    m_private->settings->endGroup();
}

QString DefaultSettings::group() const
{
    return m_private->settings->group();
}

int DefaultSettings::beginReadArray(const QString& prefix)
{
    return m_private->settings->beginReadArray(prefix);
}

void DefaultSettings::beginWriteArray(const QString& prefix, int size)
{
    m_private->settings->beginWriteArray(prefix, size);
}

void DefaultSettings::endArray()
{
    m_private->settings->endArray();
}

void DefaultSettings::setArrayIndex(int index)
{
    m_private->settings->setArrayIndex(index);
}

QStringList DefaultSettings::allKeys() const
{
    return m_private->settings->allKeys();
}

QStringList DefaultSettings::childKeys() const
{
    return m_private->settings->childKeys();
}

QStringList DefaultSettings::childGroups() const
{
    return m_private->settings->childGroups();
}

void DefaultSettings::setValue(const QString& key, const QVariant& value)
{
    m_private->settings->setValue(key, value);
}

QVariant DefaultSettings::value(const QString& key, const QVariant& defaultValue) const
{
    return m_private->settings->value(key, defaultValue);
}

void DefaultSettings::remove(const QString& key)
{
    m_private->settings->remove(key);
}

bool DefaultSettings::contains(const QString& key) const
{
    return m_private->settings->contains(key);
}

void DefaultSettings::sync()
{
    m_private->settings->sync();
}

QString DefaultSettings::getFileName() const
{
    return QFileInfo(m_private->settings->fileName()).absoluteFilePath();
}

Qt::CaseSensitivity DefaultSettings::getCaseSensitivity() const
{
    return m_private->format == Xml ? Qt::CaseInsensitive : Qt::CaseSensitive;
}

} // namespace Orn::Core
