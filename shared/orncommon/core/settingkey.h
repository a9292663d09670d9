#pragma once

#include "orncommon/core/isettings.h"

#include <QSharedPointer>

namespace Orn::Core {

/// The store that a key lives in: the user's preferences for "preferences/", else the one of sessions. Null
/// after the end of ApplicationSettings.
QSharedPointer<ISettings> settingsForKey(const QString& key);

/// One setting: its key, its type and its default, declared once in the whole program as
///
///     inline const SettingKey<int> sizeLimit{"session/sizeLimit", 0};
///
/// T is what a QVariant holds and QSettings stores. Keys are absolute: use them with no group open.
template<class T> struct SettingKey
{
    QString key;
    T defaultValue{};

    /// The key with "%1" replaced, for settings that exist once per something.
    SettingKey arg(const QString& name) const { return {key.arg(name), defaultValue}; }

    /// The stored value; the default if there is none, or if what is stored cannot be read as a T.
    T read() const;
    T read(const ISettings& settings) const;
    void write(const T& value) const;
    void remove() const;
    bool isStored() const;
};

template<class T> T SettingKey<T>::read() const
{
    const QSharedPointer<ISettings> settings = settingsForKey(key);
    return settings ? read(*settings) : defaultValue;
}

template<class T> T SettingKey<T>::read(const ISettings& settings) const
{
    QVariant value = settings.value(key);
    return value.isValid() && value.convert(qMetaTypeId<T>()) ? value.value<T>() : defaultValue;
}

template<class T> void SettingKey<T>::write(const T& value) const
{
    if (const QSharedPointer<ISettings> settings = settingsForKey(key))
        settings->setValue(key, QVariant::fromValue(value));
}

template<class T> void SettingKey<T>::remove() const
{
    if (const QSharedPointer<ISettings> settings = settingsForKey(key))
        settings->remove(key);
}

template<class T> bool SettingKey<T>::isStored() const
{
    const QSharedPointer<ISettings> settings = settingsForKey(key);
    return settings && settings->contains(key);
}

} // namespace Orn::Core
