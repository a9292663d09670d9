#pragma once

#include "applications/player/description/inputvalue.h"
#include "applications/player/description/valuetype.h"

#include <QDomElement>
#include <QString>

namespace Zph::Applications::Player {

class InputSink;

// One exposed input of a package: its engine identity, its value, and whether the engine still has to be told
// of the value. The engine's record gives uid, type and default; the description gives the names.
class Input
{
public:
    // An unbound record of a type code: uid 0, index -1, not dirty, empty texts.
    explicit Input(quint32 type);

    // True when the value equals the engine's default, word by word over the components of the type. A type
    // without components is always at its default here; its subclass knows better.
    virtual bool isDefault() const;

    // Hands a dirty value to the engine and clears the mark. Does nothing when not dirty.
    virtual void applyToEngine(InputSink& engine);

    virtual ~Input() = default;

    // Takes uid and default value of the engine's record; the value becomes the default. A null default, and
    // components that the type doesn't have, read as 0.
    void bind(const VellorInputDesc& record);

    // Takes the engine's index and, unless `element` (the description's `input`) is null, identifier and
    // package URL.
    void describe(int index, const QDomElement& element);

    // Stores a value. Returns true when it equalled the one held, over the components of the type: then
    // nothing is stored. Otherwise all sixteen bytes are, and the record is dirty.
    bool setValue(const InputValue& value);
    bool setValue(float x, float y, float z, float w);
    bool setValue(int x, int y, int z, int w);

    quint32 type() const { return m_type; }
    quint32 uid() const { return m_uid; }
    int index() const { return m_index; }
    const InputValue& value() const { return m_value; }
    const InputValue& defaultValue() const { return m_defaultValue; }
    bool isDirty() const { return m_dirty; }
    const QString& pkgurl() const { return m_pkgurl; }
    const QString& identifier() const { return m_identifier; }

protected:
    void setDirty(bool dirty) { m_dirty = dirty; }

private:
    quint32 m_type;
    quint32 m_uid = 0;
    qint32 m_index = -1;
    InputValue m_value;
    InputValue m_defaultValue;
    bool m_dirty = false;
    QString m_pkgurl;
    QString m_identifier;
};

// The package URL of an `input` element: its own attribute; or else that of the `graph` two levels up; or
// else "static" when something else stands there; or else empty.
QString packageUrlOfInput(const QDomElement& element);

} // namespace Zph::Applications::Player
