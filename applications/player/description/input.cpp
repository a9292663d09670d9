#include "applications/player/description/input.h"

#include "applications/player/description/inputsink.h"

namespace Zph::Applications::Player {

Input::Input(quint32 type) : m_type(type)
{
}

bool Input::isDefault() const
{
    return m_value.equals(m_defaultValue, componentCount(m_type));
}

void Input::applyToEngine(InputSink& engine)
{
    if (!m_dirty)
        return;
    engine.pushInput(m_index, m_type, m_value.words.data());
    m_dirty = false;
}

void Input::bind(const VellorInputDesc& record)
{
    m_uid = record.uid;
    m_defaultValue = InputValue();
    const size_t bytes = sizeof(quint32) * size_t(componentCount(m_type));
    if (record.defaultValue && bytes > 0)
        std::memcpy(m_defaultValue.words.data(), record.defaultValue, bytes);
    m_value = m_defaultValue;
}

void Input::describe(int index, const QDomElement& element)
{
    m_index = index;
    if (element.isNull())
        return;
    m_identifier = element.attribute(QStringLiteral("identifier"));
    m_pkgurl = packageUrlOfInput(element);
}

bool Input::setValue(const InputValue& value)
{
    if (m_value.equals(value, componentCount(m_type)))
        return true;
    m_value = value;
    m_dirty = true;
    return false;
}

bool Input::setValue(float x, float y, float z, float w)
{
    return setValue(InputValue::fromFloats(x, y, z, w));
}

bool Input::setValue(int x, int y, int z, int w)
{
    return setValue(InputValue::fromInts(x, y, z, w));
}

QString packageUrlOfInput(const QDomElement& element)
{
    const QString pkgurl = QStringLiteral("pkgurl");
    if (element.hasAttribute(pkgurl))
        return element.attribute(pkgurl);
    const QDomElement grandparent = element.parentNode().parentNode().toElement();
    if (grandparent.isNull())
        return QString();
    if (grandparent.tagName() == QLatin1String("graph"))
        return grandparent.attribute(pkgurl);
    return QStringLiteral("static");
}

} // namespace Zph::Applications::Player
