#pragma once

#include "orncommon/module/payloads.h"

#include <cstdint>

namespace Orn::Module {

class EnumDesc;
class MatrixDesc;
class StructDesc;
class ValueData;

/// A word that refines a type; types with different words are different.
using TypeModifier = std::uint32_t;

/// The type of a value: a code, and for compound and custom types a shared, immutable description.
class Type
{
public:
    /// Arrays follow their scalar: Float + 2 is the code of three floats.
    enum Code : std::uint32_t
    {
        Invalid = 0,
        Void = 1,
        Bool = 2,
        Int = 6,
        UInt = 10,
        Float = 14,
        Double = 18,
        ColorRgb = 22,
        ColorRgba = 23,
        Matrix33 = 24,
        AffineTransform = 25,
        String = 26,
        PluginPtr = 27,
        List = 28,
        Enumeration = 29,
        Structure = 30,
        MatrixOfValues = 31,
        Custom = 32
    };

    /// What the code alone cannot say.
    class Meta
    {
    public:
        virtual ~Meta() = default;
        virtual bool isEqual(const Meta& other) const = 0;
        virtual std::string typeName() const = 0;
        /// The default payload of `type`, which has this description. Null if there is none.
        virtual std::unique_ptr<ValueData> createData(const Type& type) const = 0;
    };

    /// The description of a custom type with payload T; see typemetacustom.h.
    template<class T> class TypeMetaCustom;

    /// The invalid type.
    Type() = default;
    /// Codes up to PluginPtr; any other code gives the invalid type.
    explicit Type(std::uint32_t code, TypeModifier modifier = 0);
    /// Descriptors must not be null.
    explicit Type(std::shared_ptr<const EnumDesc> desc, TypeModifier modifier = 0);
    explicit Type(std::shared_ptr<const StructDesc> desc, TypeModifier modifier = 0);
    explicit Type(std::shared_ptr<const MatrixDesc> desc, TypeModifier modifier = 0);

    /// A list of `size` items. With item code Void the items are values of any type.
    static Type sCreateList(const Type& item, std::size_t size, TypeModifier modifier = 0);
    static Type sCreateCustom(std::shared_ptr<const Meta> meta, TypeModifier modifier = 0);
    /// The plain type that is written so ("float3"); invalid if there is none.
    static Type sFromName(const std::string& name);

    bool isValid() const { return m_code != Invalid; }
    std::uint32_t code() const { return m_code; }
    TypeModifier modifier() const { return m_modifier; }
    const std::shared_ptr<const Meta>& meta() const { return m_meta; }

    /// The written form; for a custom type the name that its description gives.
    std::string name() const;

    /// Components: 1 for a scalar, 2 to 4 for arrays, the floats of colours and matrices, the length of a
    /// list, the members of a structure, the cells of a matrix.
    std::size_t getCompoundSize() const;
    /// The type of one component; of what has no components or mixed ones, the type itself.
    Type getCompoundItemType() const;

    /// Null unless the type is of that kind.
    std::shared_ptr<const EnumDesc> getEnumDesc() const;
    std::shared_ptr<const StructDesc> getStructDesc() const;
    std::shared_ptr<const MatrixDesc> getMatrixDesc() const;

    friend bool operator==(const Type& a, const Type& b);
    friend bool operator!=(const Type& a, const Type& b) { return !(a == b); }

private:
    Type(Code code, TypeModifier modifier, std::shared_ptr<const Meta> meta);

    std::uint32_t m_code = Invalid;
    TypeModifier m_modifier = 0;
    std::shared_ptr<const Meta> m_meta;
};

/// The type of a plain payload class.
template<class T> Type plainTypeOf()
{
    static_assert(plainCodeOf<T> != 0, "not a plain payload");
    return Type(std::uint32_t(plainCodeOf<T>));
}

} // namespace Orn::Module
