#pragma once

#include "orncommon/core/isettings.h"

#include <memory>

class QObject;

namespace Orn::Core {

/// A store in a file of QSettings, which also gives it its thread rules. Unsaved values reach the disk at the
/// latest in the destructor. A file that cannot be written keeps its values in memory.
class DefaultSettings : public ISettings
{
public:
    enum Format
    {
        Native = 0,
        Ini = 1,
        Xml = 2,
        Unknown = 3
    };

    /// The store of the running application.
    explicit DefaultSettings(QObject* parent = nullptr);
    /// The user's store for an application, in the native format.
    DefaultSettings(const QString& organization, const QString& application, QObject* parent = nullptr);
    /// A store in a file, given by path or as a local-file URL. No XML format is registered with QSettings
    /// here, so Xml gives a store that is kept in memory alone, as Unknown does.
    DefaultSettings(const QString& fileName, Format format, QObject* parent = nullptr);
    ~DefaultSettings() override;

    /// Without a dot; empty where files of the format have none.
    static QString sGetSettingsFileExtension(Format format);
    Format getFormat() const;

    void beginGroup(const QString& prefix) override;
    void endGroup() override;
    QString group() const override;
    int beginReadArray(const QString& prefix) override;
    void beginWriteArray(const QString& prefix, int size) override;
    void endArray() override;
    void setArrayIndex(int index) override;
    QStringList allKeys() const override;
    QStringList childKeys() const override;
    QStringList childGroups() const override;
    void setValue(const QString& key, const QVariant& value) override;
    QVariant value(const QString& key, const QVariant& defaultValue = {}) const override;
    void remove(const QString& key) override;
    bool contains(const QString& key) const override;
    void sync() override;
    /// Absolute.
    QString getFileName() const override;
    Qt::CaseSensitivity getCaseSensitivity() const override;

private:
    struct Private;
    std::unique_ptr<Private> m_private;
};

} // namespace Orn::Core
