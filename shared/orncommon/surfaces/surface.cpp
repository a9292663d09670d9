#include "orncommon/surfaces/surface.h"

#include "orncommon/surfaces/rowbands.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include <sys/mman.h>

namespace Orn::Surfaces {

namespace {

/// Bytes of all rows, or 0 where there are none or their number does not fit.
std::size_t byteCount(SurfaceDescription const& description)
{
    std::uint64_t const pitch = description.pitch;
    if (description.width == 0 || description.height == 0 || pitch == 0 || pitch < description.lineSize())
        return 0;
    std::uint64_t const limit = std::uint64_t(std::numeric_limits<std::ptrdiff_t>::max());
    return pitch > limit / description.height ? 0 : std::size_t(pitch * description.height);
}

/// Large buffers lie in large pages where the system has them: the first touch of each small page costs as
/// much as copying it.
constexpr std::size_t largePage = 2 * 1024 * 1024;
constexpr std::size_t largeBuffer = 8 * largePage;

void* allocate(std::size_t bytes, std::align_val_t alignment)
{
    void* const data = ::operator new(bytes, alignment, std::nothrow);
    if (data != nullptr && bytes >= largeBuffer)
        madvise(data, bytes / largePage * largePage, MADV_HUGEPAGE); // refused: pages are small
    return data;
}

} // namespace

Surface::Surface(SurfaceDescription const& description, unsigned int alignment) : m_description(description)
{
    if (m_description.pitch == 0)
        m_description.pitch = lineSize();
    std::size_t const bytes = getPixelSize(format()) == 0 ? 0 : byteCount(m_description);
    if (bytes == 0)
        return;
    std::align_val_t const aligned{bytes >= largeBuffer
                                       ? std::max<std::size_t>(alignment, largePage)
                                       : std::max<std::size_t>(alignment, alignof(std::max_align_t))};
    m_data = static_cast<std::uint8_t*>(allocate(bytes, aligned));
    if (m_data != nullptr)
        m_release = [data = m_data, aligned] { ::operator delete(data, aligned); };
}

Surface::Surface(void* data, SurfaceDescription const& description) : Surface(data, description, nullptr)
{
}

Surface::Surface(void* data, SurfaceDescription const& description, std::function<void()> const& release)
    : m_data(static_cast<std::uint8_t*>(data)), m_description(description), m_release(release)
{
    if (m_description.pitch == 0)
        m_description.pitch = lineSize();
}

Surface::Surface(Surface&& other) noexcept
{
    swap(other);
}

Surface& Surface::operator=(Surface&& other) noexcept
{
    Surface taken(std::move(other));
    swap(taken);
    return *this;
}

Surface::~Surface()
{
    if (m_release)
        m_release();
}

void Surface::mirror()
{
    if (isEmpty() || height() == 0)
        return;
    std::uint64_t const bytes = lineSize();
    auto const swapRows = [=](unsigned int first, unsigned int end) {
        for (unsigned int top = first; top < end; ++top)
            std::swap_ranges(row(top), row(top) + bytes, row(height() - 1 - top));
    };
    forRowBands(height() / 2, bytes * height() * 2, swapRows);
}

void Surface::swap(Surface& other) noexcept
{
    std::swap(m_data, other.m_data);
    std::swap(m_description, other.m_description);
    m_release.swap(other.m_release);
}

} // namespace Orn::Surfaces
