#include "orncommon/module/matrix.h"

#include "orncommon/module/value.h"

#include <algorithm>

namespace Orn::Module {

Matrix::Matrix(std::shared_ptr<const MatrixDesc> desc) : m_desc(std::move(desc))
{
    for (std::size_t i = 0; i < m_desc->rows() * m_desc->columns(); ++i)
        m_cells.push_back(Value::createData(m_desc->itemType()));
}

Matrix::Matrix(const Matrix& other) : m_desc(other.m_desc)
{
    for (const auto& cell : other.m_cells)
        m_cells.push_back(cell ? cell->clone() : nullptr);
}

Matrix& Matrix::operator=(Matrix other) noexcept
{
    m_desc.swap(other.m_desc);
    m_cells.swap(other.m_cells);
    return *this;
}

const ValueData* Matrix::cell(std::size_t row, std::size_t column) const
{
    return m_cells[row * m_desc->columns() + column].get();
}

bool Matrix::setCell(std::size_t row, std::size_t column, const ValueData& data)
{
    if (row >= m_desc->rows() || column >= m_desc->columns() || data.type() != m_desc->itemType())
        return false;
    m_cells[row * m_desc->columns() + column] = data.clone();
    return true;
}

bool operator==(const Matrix& a, const Matrix& b)
{
    const auto sameCell = [](const auto& left, const auto& right) {
        return left && right ? *left == *right : !left && !right;
    };
    return *a.m_desc == *b.m_desc &&
           std::equal(a.m_cells.begin(), a.m_cells.end(), b.m_cells.begin(), b.m_cells.end(), sameCell);
}

} // namespace Orn::Module
