#pragma once

// Evaluates one kind into a picture, plainly, for tests.

#include "platform/nodes/node.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <new>
#include <string>
#include <vector>

namespace vellor::nodes::test {

/// Gives memory at multiples of 64 bytes.
template<typename T> struct LineAllocator
{
    using value_type = T;
    LineAllocator() = default;
    template<typename Other> LineAllocator(const LineAllocator<Other>&) {}
    T* allocate(std::size_t count)
    {
        return static_cast<T*>(::operator new(count * sizeof(T), std::align_val_t(64)));
    }
    void deallocate(T* block, std::size_t) { ::operator delete(block, std::align_val_t(64)); }
    bool operator==(const LineAllocator&) const { return true; }
    bool operator!=(const LineAllocator&) const { return false; }
};

/// A picture that owns its planes, aligned and padded as kernels expect.
class Picture
{
public:
    Picture() = default;
    Picture(int width, int height, int channels = 1);

    int width() const { return m_width; }
    int height() const { return m_height; }
    int channels() const { return m_channels; }
    /// Pixel (x, y) of a channel; x and y go around.
    float& at(int x, int y, int channel = 0);
    float at(int x, int y, int channel = 0) const { return const_cast<Picture*>(this)->at(x, y, channel); }
    ImageView view() const;
    MutableImage mutableView();
    bool operator==(const Picture& other) const; // byte for byte

private:
    int m_width = 0, m_height = 0, m_channels = 0, m_stride = 0;
    std::vector<float, LineAllocator<float>> m_pixels;
};

/// Fills a picture from a function of the pixel's centre, 0 to 1.
Picture drawn(int width, int height, const std::function<float(float x, float y)>& value);
/// Evenly spread random numbers.
Picture noise(int width, int height, int channels = 1, unsigned seed = 1);
/// The mean of all pixels of a channel.
double meanOf(const Picture& picture, int channel = 0);

/// One evaluation of a kind: parameters are at their defaults unless set.
class Evaluation
{
public:
    explicit Evaluation(const char* kind, int width = 64, int height = 64, int channels = 1);

    Evaluation& set(const char* name, std::initializer_list<double> components);
    Evaluation& setText(const char* name, std::u32string text);
    Evaluation& setBytes(const char* name, std::vector<std::uint8_t> blob);
    Evaluation& setBlob(const char* name, std::vector<float> values);
    Evaluation& setProgram(const char* name, const program::ValueProgram& program);
    Evaluation& operand(Picture picture);
    Evaluation& skip(); // an operand that isn't connected
    Evaluation& image(Picture picture);
    std::size_t operandCount() const { return m_operands.size(); }
    Evaluation& seed(int seed);
    /// How much one job covers: pixels of a row, and rows of a band.
    Evaluation& split(int pixels, int rows);
    /// Point kernels that put their results write them past the caches.
    Evaluation& pastCaches(bool past);

    Picture operator()();

private:
    ParameterValue& value(const char* name);
    void runRows(const NodeDeclaration& form, const State* state, Picture& result);
    Picture runPasses(const State* state, const Setup& setup);

    const NodeDeclaration& m_node;
    int m_width, m_height, m_channels;
    int m_seed = 0, m_pixels = 1 << 20, m_rows = 1 << 20;
    bool m_pastCaches = false;
    std::vector<ParameterValue> m_parameters;
    std::vector<Picture> m_operands;
    std::vector<ImageView> m_views;
    Picture m_image;
    std::map<std::string, std::u32string> m_texts;
    std::map<std::string, std::vector<std::uint8_t>> m_blobs;
    std::vector<std::uint32_t> m_inputs = std::vector<std::uint32_t>(64, 0);
};

} // namespace vellor::nodes::test
