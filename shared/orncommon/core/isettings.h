#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace Orn::Core {

/// A persistent store of values by '/'-separated keys. A group that is begun is state shared by all users of
/// the store: open it through ScopedSettingsBeginGroup, and close it before control returns to the event
/// loop.
class ISettings
{
public:
    virtual ~ISettings() = default;

    virtual void beginGroup(const QString& prefix) = 0;
    virtual void endGroup() = 0;
    virtual QString group() const = 0;
    /// The size of the array.
    virtual int beginReadArray(const QString& prefix) = 0;
    /// With a size of -1 the highest index written decides.
    virtual void beginWriteArray(const QString& prefix, int size) = 0;
    virtual void endArray() = 0;
    virtual void setArrayIndex(int index) = 0;

    virtual QStringList allKeys() const = 0;
    virtual QStringList childKeys() const = 0;
    virtual QStringList childGroups() const = 0;

    virtual void setValue(const QString& key, const QVariant& value) = 0;
    /// The default, if the key is missing.
    virtual QVariant value(const QString& key, const QVariant& defaultValue = {}) const = 0;
    /// Removes the key and what is below it; with an empty key, all that is in the current group.
    virtual void remove(const QString& key) = 0;
    virtual bool contains(const QString& key) const = 0;
    /// Writes what is unsaved; the store's end does so too.
    virtual void sync() = 0;
    virtual QString getFileName() const = 0;
    virtual Qt::CaseSensitivity getCaseSensitivity() const { return Qt::CaseSensitive; }

    /// Reads and writes whole groups; these and the operations below honour the current group.
    virtual QMap<QString, QVariant> getValues() const;
    virtual void setValues(const QMap<QString, QVariant>& values);

    void copyKeysTo(ISettings& target) const;
    void removeAllKeys();
    void moveKeysTo(ISettings& target);
};

} // namespace Orn::Core
