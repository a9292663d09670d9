#pragma once

#include "orncommon/module/valuedata.h"

#include <string>

namespace Orn::Module {

/// The text form of values.
///
/// A bare text is the components, separated by commas: `true` or `false` for booleans, decimal numbers that
/// read back to the same value (independent of the locale; `inf` and `nan` too), the key of an enumeration's
/// item. A single string is its bytes as they are; in a list, strings stand in double quotes, with a
/// backslash before quotes and backslashes. A list of arrays is all components in a row. A typed text is the
/// type's name, "(", the bare text, ")". In reading, white space around components counts for nothing, and
/// booleans may be 1 and 0.
class ValueSerializer
{
public:
    static std::string sToTypedValueStr(const std::string& typeName, const std::string& valueText);
    /// Undoes it; false if the text is not of that type.
    static bool sFromTypedValueStr(const std::string& text, const std::string& typeName,
                                   std::string& valueText);

    /// False for what has no text.
    static bool sToBareText(const ValueData& data, std::string& text);
    /// Null if the text is no value of the type. A list must have the length that its type says, or be empty.
    static std::unique_ptr<ValueData> sFromBareText(const std::string& text, const Type& type);
};

} // namespace Orn::Module
