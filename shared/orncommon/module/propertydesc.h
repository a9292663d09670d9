#pragma once

#include "orncommon/module/value.h"

#include <map>

namespace Orn::Module {

/// The description of a property, with notes for its display. The keys in use are "displayName",
/// "displayGroup", "description", "widgetName", "preferredWidgetName", "isConnected" and "is_disable".
class PropertyDesc
{
public:
    PropertyDesc(std::string name, Type type, Value defaultValue)
        : m_name(std::move(name)), m_type(std::move(type)), m_defaultValue(std::move(defaultValue))
    {
    }
    virtual ~PropertyDesc() = default;

    const std::string& name() const { return m_name; }
    const Type& type() const { return m_type; }
    const Value& defaultValue() const { return m_defaultValue; }

    /// Empty if there is no note under the key.
    std::string annotation(const std::string& key) const
    {
        const auto note = m_annotations.find(key);
        return note == m_annotations.end() ? std::string() : note->second;
    }
    void setAnnotation(const std::string& key, const std::string& text) { m_annotations[key] = text; }

private:
    std::string m_name;
    Type m_type;
    Value m_defaultValue;
    std::map<std::string, std::string> m_annotations;
};

} // namespace Orn::Module
