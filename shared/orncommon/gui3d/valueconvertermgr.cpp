#include "orncommon/gui3d/valueconvertermgr.h"

#include <utility>

namespace Orn::Gui3D {

void ValueConverterMgr::addConverter(std::unique_ptr<const ValueConverter> converter)
{
    m_converters.push_back(std::move(converter));
}

Module::Value ValueConverterMgr::convert(const Module::Value& value, const Module::Type& wanted) const
{
    for (const auto& converter : m_converters) {
        Module::Value result = converter->convert(value, wanted);
        if (result.isValid())
            return result;
    }
    return {};
}

} // namespace Orn::Gui3D
