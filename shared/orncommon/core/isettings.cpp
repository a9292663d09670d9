#include "orncommon/core/isettings.h"

namespace Orn::Core {

QMap<QString, QVariant> ISettings::getValues() const
{
    QMap<QString, QVariant> values;
    for (const QString& key : allKeys())
        values.insert(key, value(key));
    return values;
}

void ISettings::setValues(const QMap<QString, QVariant>& values)
{
    for (auto entry = values.cbegin(); entry != values.cend(); ++entry)
        setValue(entry.key(), entry.value());
}

void ISettings::copyKeysTo(ISettings& target) const
{
    for (const QString& key : allKeys())
        target.setValue(key, value(key));
}

void ISettings::removeAllKeys()
{
    for (const QString& key : allKeys())
        remove(key);
}

void ISettings::moveKeysTo(ISettings& target)
{
    copyKeysTo(target);
    removeAllKeys();
}

} // namespace Orn::Core
