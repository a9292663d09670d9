#include "platform/cooker/pngreader.h"

#include "platform/nodes/pictureblob.h"

#include <png.h>

#include <csetjmp>
#include <cstring>

namespace vellor::cooker {
namespace {

// Deflate makes at most about 1032 bytes out of one; a header that promises more lies.
constexpr std::uint64_t kBestCompression = 1040;

/// One file under way. libpng leaves by longjmp, past frames that own nothing: what owns memory lives here.
class Decoder
{
public:
    explicit Decoder(const std::string& bytes) : m_bytes(bytes)
    {
        m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, &fail, &warn);
        m_info = m_png ? png_create_info_struct(m_png) : nullptr;
    }
    ~Decoder() { png_destroy_read_struct(&m_png, &m_info, nullptr); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    bool run()
    {
        if (!m_info) {
            std::strcpy(m_error, "out of memory");
            return false;
        }
        return readHeader() && makeRoom() && readRows();
    }

    std::vector<std::uint8_t> blob() const
    {
        return nodes::PictureBlob::make(static_cast<int>(m_width), static_cast<int>(m_height), m_channels,
                                        m_bits, m_rows);
    }
    const char* error() const { return m_error; }

private:
    static void fail(png_structp png, png_const_charp text)
    {
        auto* self = static_cast<Decoder*>(png_get_error_ptr(png));
        std::strncpy(self->m_error, text, sizeof m_error - 1);
        std::longjmp(self->m_exit, 1);
    }
    static void warn(png_structp, png_const_charp) {}
    static void read(png_structp png, png_bytep to, png_size_t count)
    {
        auto* self = static_cast<Decoder*>(png_get_io_ptr(png));
        if (count > self->m_bytes.size() - self->m_at)
            png_error(png, "the file is cut off");
        std::memcpy(to, self->m_bytes.data() + self->m_at, count);
        self->m_at += count;
    }

    bool readHeader()
    {
        if (setjmp(m_exit))
            return false;
        png_set_read_fn(m_png, this, &read);
        png_set_user_limits(m_png, nodes::PictureBlob::kMaxSide, nodes::PictureBlob::kMaxSide);
        png_read_info(m_png, m_info);
        m_width = png_get_image_width(m_png, m_info);
        m_height = png_get_image_height(m_png, m_info);
        const int type = png_get_color_type(m_png, m_info);
        const bool transparent = png_get_valid(m_png, m_info, PNG_INFO_tRNS) != 0;
        png_set_expand(m_png);
        m_bits = png_get_bit_depth(m_png, m_info) == 16 ? 16 : 8;
        if (m_bits == 16)
            png_set_swap(m_png);
        m_channels = type == PNG_COLOR_TYPE_GRAY && !transparent ? 1 : 4;
        if (m_channels == 4) {
            png_set_gray_to_rgb(m_png);
            png_set_add_alpha(m_png, 0xffff, PNG_FILLER_AFTER);
        }
        png_set_interlace_handling(m_png);
        png_read_update_info(m_png, m_info);
        return true;
    }

    bool makeRoom()
    {
        m_rowBytes = static_cast<std::size_t>(m_width) * m_channels * (m_bits / 8);
        // An index of one bit becomes four bytes: 32 times as much.
        if (std::uint64_t(m_rowBytes) * m_height / 32 > kBestCompression * m_bytes.size()) {
            std::strcpy(m_error, "the file is too short for its size in pixels");
            return false;
        }
        if (png_get_rowbytes(m_png, m_info) != m_rowBytes) {
            std::strcpy(m_error, "this form of PNG is not served");
            return false;
        }
        m_rows.resize(m_rowBytes * m_height);
        for (std::size_t y = 0; y < m_height; ++y)
            m_pointers.push_back(&m_rows[y * m_rowBytes]);
        return true;
    }

    bool readRows()
    {
        if (setjmp(m_exit))
            return false;
        png_read_image(m_png, m_pointers.data());
        return true;
    }

    const std::string& m_bytes;
    std::size_t m_at = 0, m_rowBytes = 0;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    std::jmp_buf m_exit;
    char m_error[128] = {};
    png_uint_32 m_width = 0, m_height = 0;
    int m_channels = 0, m_bits = 0;
    std::vector<std::uint8_t> m_rows;
    std::vector<png_bytep> m_pointers;
};

} // namespace

std::vector<std::uint8_t> pictureOfPng(const std::string& bytes, std::string& error)
{
    if (bytes.size() < 8 || png_sig_cmp(reinterpret_cast<png_const_bytep>(bytes.data()), 0, 8) != 0) {
        error = "it is no PNG file";
        return {};
    }
    Decoder decoder(bytes);
    if (decoder.run())
        return decoder.blob();
    error = decoder.error();
    return {};
}

} // namespace vellor::cooker
