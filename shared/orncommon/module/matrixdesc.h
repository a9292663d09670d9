#pragma once

#include "orncommon/module/compounddesc.h"
#include "orncommon/module/type.h"

namespace Orn::Module {

/// Rows x columns of one type.
class MatrixDesc : public CompoundDesc
{
public:
    MatrixDesc(std::string name, Type itemType, std::size_t rows, std::size_t columns)
        : CompoundDesc(std::move(name)), m_itemType(std::move(itemType)), m_rows(rows), m_columns(columns)
    {
    }

    const Type& itemType() const { return m_itemType; }
    std::size_t rows() const { return m_rows; }
    std::size_t columns() const { return m_columns; }

    friend bool operator==(const MatrixDesc& a, const MatrixDesc& b)
    {
        return a.name() == b.name() && a.m_itemType == b.m_itemType && a.m_rows == b.m_rows &&
               a.m_columns == b.m_columns;
    }

private:
    Type m_itemType;
    std::size_t m_rows;
    std::size_t m_columns;
};

} // namespace Orn::Module
