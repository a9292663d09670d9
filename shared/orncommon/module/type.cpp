#include "orncommon/module/type.h"

#include "orncommon/module/enum.h"
#include "orncommon/module/matrix.h"
#include "orncommon/module/struct.h"
#include "orncommon/module/valuedata.h"

#include <algorithm>
#include <vector>

namespace Orn::Module {

namespace {

constexpr const char* names[] = {
    "",         "void",      "bool",   "bool2",   "bool3",   "bool4",   "int",      "int2",
    "int3",     "int4",      "uint",   "uint2",   "uint3",   "uint4",   "float",    "float2",
    "float3",   "float4",    "double", "double2", "double3", "double4", "ColorRGB", "ColorRGBA",
    "Matrix3f", "Transform", "string", "Plugin",  "list",    "enum",    "struct",   "matrix"};
static_assert(std::size(names) == Type::Custom);

template<class T> struct ComponentsOf
{
    static constexpr std::uint32_t code = std::uint32_t(plainCodeOf<T>);
    static constexpr std::size_t count = 1;
};

template<class T, std::size_t N> struct ComponentsOf<std::array<T, N>>
{
    static constexpr std::uint32_t code = std::uint32_t(plainCodeOf<T>);
    static constexpr std::size_t count = N;
};

template<std::size_t N> struct Floats
{
    static constexpr std::uint32_t code = Type::Float;
    static constexpr std::size_t count = N;
};

template<> struct ComponentsOf<ColorRGB> : Floats<3>
{
};
template<> struct ComponentsOf<ColorRGBA> : Floats<4>
{
};
template<> struct ComponentsOf<Matrix3f> : Floats<9>
{
};
template<> struct ComponentsOf<Transform> : Floats<12>
{
};

class ListMeta : public Type::Meta
{
public:
    ListMeta(Type itemType, std::size_t itemCount) : item(std::move(itemType)), size(itemCount) {}

    bool isEqual(const Meta& other) const override
    {
        const auto* list = dynamic_cast<const ListMeta*>(&other);
        return list && list->item == item && list->size == size;
    }
    std::string typeName() const override { return names[Type::List]; }
    std::unique_ptr<ValueData> createData(const Type& type) const override
    {
        std::unique_ptr<ValueData> data;
        if (item.code() == Type::Void)
            data = std::make_unique<ValueDataT<std::vector<Value>>>(type, std::vector<Value>());
        visitPlainPayload(int(item.code()), [&](auto tag) {
            using Items = std::vector<typename decltype(tag)::Payload>;
            data = std::make_unique<ValueDataT<Items>>(type, Items());
        });
        return data;
    }

    const Type item;
    const std::size_t size;
};

// Of an enumeration, a structure or a matrix, whose payload is built from the descriptor alone.
template<class Desc, class Payload> class DescMeta : public Type::Meta
{
public:
    DescMeta(std::shared_ptr<const Desc> described, Type::Code code)
        : desc(std::move(described)), m_code(code)
    {
    }

    bool isEqual(const Meta& other) const override
    {
        const auto* same = dynamic_cast<const DescMeta*>(&other);
        return same && (same->desc == desc || *same->desc == *desc);
    }
    std::string typeName() const override { return names[m_code]; }
    std::unique_ptr<ValueData> createData(const Type& type) const override
    {
        return std::make_unique<ValueDataT<Payload>>(type, Payload(desc));
    }

    const std::shared_ptr<const Desc> desc;

private:
    const Type::Code m_code;
};

using EnumMeta = DescMeta<EnumDesc, Enum>;
using StructMeta = DescMeta<StructDesc, Struct>;
using MatrixMeta = DescMeta<MatrixDesc, Matrix>;

template<class MetaClass> auto descOf(const Type& type)
{
    const auto* meta = dynamic_cast<const MetaClass*>(type.meta().get());
    return meta ? meta->desc : nullptr;
}

} // namespace

Type::Type(std::uint32_t code, TypeModifier modifier)
{
    if (code == Invalid || code > PluginPtr)
        return;
    m_code = code;
    m_modifier = modifier;
}

Type::Type(Code code, TypeModifier modifier, std::shared_ptr<const Meta> meta)
    : m_code(code), m_modifier(modifier), m_meta(std::move(meta))
{
}

Type::Type(std::shared_ptr<const EnumDesc> desc, TypeModifier modifier)
    : Type(Enumeration, modifier, std::make_shared<EnumMeta>(std::move(desc), Enumeration))
{
}

Type::Type(std::shared_ptr<const StructDesc> desc, TypeModifier modifier)
    : Type(Structure, modifier, std::make_shared<StructMeta>(std::move(desc), Structure))
{
}

Type::Type(std::shared_ptr<const MatrixDesc> desc, TypeModifier modifier)
    : Type(MatrixOfValues, modifier, std::make_shared<MatrixMeta>(std::move(desc), MatrixOfValues))
{
}

Type Type::sCreateList(const Type& item, std::size_t size, TypeModifier modifier)
{
    return Type(List, modifier, std::make_shared<ListMeta>(item, size));
}

Type Type::sCreateCustom(std::shared_ptr<const Meta> meta, TypeModifier modifier)
{
    return Type(Custom, modifier, std::move(meta));
}

Type Type::sFromName(const std::string& name)
{
    const auto* const end = names + PluginPtr + 1;
    const auto* const found = std::find(names + Void, end, name);
    return found == end ? Type() : Type(std::uint32_t(found - names));
}

std::string Type::name() const
{
    return m_meta ? m_meta->typeName() : names[m_code];
}

std::size_t Type::getCompoundSize() const
{
    if (const auto* list = dynamic_cast<const ListMeta*>(m_meta.get()))
        return list->size;
    if (const auto desc = getStructDesc())
        return desc->members().size();
    if (const auto desc = getMatrixDesc())
        return desc->rows() * desc->columns();
    std::size_t size = 1;
    visitPlainPayload(int(m_code),
                      [&](auto tag) { size = ComponentsOf<typename decltype(tag)::Payload>::count; });
    return size;
}

Type Type::getCompoundItemType() const
{
    if (const auto* list = dynamic_cast<const ListMeta*>(m_meta.get()))
        return list->item;
    if (const auto desc = getMatrixDesc())
        return desc->itemType();
    Type item = *this;
    visitPlainPayload(int(m_code), [&](auto tag) {
        item = Type(ComponentsOf<typename decltype(tag)::Payload>::code, m_modifier);
    });
    return item;
}

std::shared_ptr<const EnumDesc> Type::getEnumDesc() const
{
    return descOf<EnumMeta>(*this);
}

std::shared_ptr<const StructDesc> Type::getStructDesc() const
{
    return descOf<StructMeta>(*this);
}

std::shared_ptr<const MatrixDesc> Type::getMatrixDesc() const
{
    return descOf<MatrixMeta>(*this);
}

bool operator==(const Type& a, const Type& b)
{
    if (a.m_code != b.m_code || a.m_modifier != b.m_modifier || !a.m_meta != !b.m_meta)
        return false;
    return a.m_meta == b.m_meta || a.m_meta->isEqual(*b.m_meta);
}

} // namespace Orn::Module
