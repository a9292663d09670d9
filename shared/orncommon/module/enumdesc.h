#pragma once

#include "orncommon/module/compounddesc.h"

#include <vector>

namespace Orn::Module {

/// The items of an enumeration, in the order of display.
class EnumDesc : public CompoundDesc
{
public:
    struct Item
    {
        int value = 0;
        std::string key;   ///< As written in files: lower case.
        std::string label; ///< As displayed.
    };

    EnumDesc(std::string name, std::vector<Item> items)
        : CompoundDesc(std::move(name)), m_items(std::move(items))
    {
    }

    const std::vector<Item>& items() const { return m_items; }
    /// Null if no item has it.
    const Item* findValue(int value) const;
    const Item* findKey(const std::string& key) const;

private:
    std::vector<Item> m_items;
};

bool operator==(const EnumDesc& a, const EnumDesc& b);

} // namespace Orn::Module
