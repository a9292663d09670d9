#pragma once

#include "orncommon/module/matrixdesc.h"
#include "orncommon/module/valuedata.h"

#include <vector>

namespace Orn::Module {

/// The cells of a matrix, row by row. Copying clones each.
class Matrix
{
public:
    /// All cells at the default of their type. The descriptor must not be null.
    explicit Matrix(std::shared_ptr<const MatrixDesc> desc);
    Matrix(const Matrix& other);
    Matrix(Matrix&& other) noexcept = default;
    Matrix& operator=(Matrix other) noexcept;
    ~Matrix() = default;

    const std::shared_ptr<const MatrixDesc>& desc() const { return m_desc; }
    /// Null if the item type has no default. Row and column must be inside.
    const ValueData* cell(std::size_t row, std::size_t column) const;
    /// Takes a clone. False, and nothing changes, if it is of another type or the place is outside.
    bool setCell(std::size_t row, std::size_t column, const ValueData& data);

    friend bool operator==(const Matrix& a, const Matrix& b);

private:
    std::shared_ptr<const MatrixDesc> m_desc;
    std::vector<std::unique_ptr<ValueData>> m_cells;
};

} // namespace Orn::Module
