#pragma once

#include "orncommon/surfaces/surfacedescription.h"

#include <functional>

namespace Orn::Surfaces {

/// Alignment of pixel buffers, for vector code; in bytes.
constexpr unsigned int surfaceAlignment = 64;

/// A rectangle of pixels in one format, rows from top to bottom.
///
/// It owns its pixels, or borrows them. A surface whose data pointer is null is empty: no picture.
/// The pitch may exceed `lineSize()`, so rows are walked with `row(y)`. There is no lock: many threads
/// may read one surface, and several may write disjoint rows.
class Surface
{
public:
    Surface() = default;

    /// Allocates pixels, uninitialised, the first byte aligned to `alignment` (a power of two). A pitch of 0
    /// becomes `lineSize()`. Stays empty when the format is none, a side is 0, the pitch is too small, or the
    /// memory is not to be had.
    explicit Surface(SurfaceDescription const& description, unsigned int alignment = surfaceAlignment);

    /// Wraps memory that stays the caller's and must outlive the surface.
    Surface(void* data, SurfaceDescription const& description);

    /// Wraps memory; `release` is called once, when the surface dies.
    Surface(void* data, SurfaceDescription const& description, std::function<void()> const& release);

    Surface(Surface&& other) noexcept;
    Surface& operator=(Surface&& other) noexcept;
    Surface(Surface const&) = delete;
    Surface& operator=(Surface const&) = delete;
    ~Surface();

    bool isEmpty() const { return m_data == nullptr; }
    std::uint8_t* data() { return m_data; }
    std::uint8_t const* data() const { return m_data; }
    SurfaceDescription const& description() const { return m_description; }

    unsigned int width() const { return m_description.width; }
    unsigned int height() const { return m_description.height; }
    std::uint64_t pitch() const { return m_description.pitch; }
    PixelFormat format() const { return m_description.format; }

    /// First byte of row `y`, which must be below `height()`.
    std::uint8_t* row(unsigned int y) { return m_data + y * m_description.pitch; }
    std::uint8_t const* row(unsigned int y) const { return m_data + y * m_description.pitch; }

    /// Width times pixel size, in bytes.
    std::uint64_t lineSize() const { return m_description.lineSize(); }

    /// States whether the picture's alpha means something: a value of SurfaceDescription::alphaUse.
    void setAlphaUse(std::uint32_t alphaUse) { m_description.alphaUse = alphaUse; }

    /// Flips the rows, in place.
    void mirror();

    void swap(Surface& other) noexcept;

private:
    std::uint8_t* m_data = nullptr;
    SurfaceDescription m_description;
    std::function<void()> m_release;
};

} // namespace Orn::Surfaces
