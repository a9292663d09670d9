#include "orncommon/module/enumdesc.h"

#include <algorithm>

namespace Orn::Module {

namespace {

template<class Predicate>
const EnumDesc::Item* findItem(const std::vector<EnumDesc::Item>& items, Predicate predicate)
{
    const auto item = std::find_if(items.begin(), items.end(), predicate);
    return item == items.end() ? nullptr : &*item;
}

} // namespace

const EnumDesc::Item* EnumDesc::findValue(int value) const
{
    return findItem(m_items, [&](const Item& item) { return item.value == value; });
}

const EnumDesc::Item* EnumDesc::findKey(const std::string& key) const
{
    return findItem(m_items, [&](const Item& item) { return item.key == key; });
}

bool operator==(const EnumDesc& a, const EnumDesc& b)
{
    return a.name() == b.name() &&
           std::equal(a.items().begin(), a.items().end(), b.items().begin(), b.items().end(),
                      [](const EnumDesc::Item& left, const EnumDesc::Item& right) {
                          return left.value == right.value && left.key == right.key &&
                                 left.label == right.label;
                      });
}

} // namespace Orn::Module
