#include "platform/nodes/tests/noderunner.h"

#include "platform/nodes/form.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/selectivestate.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <stdexcept>

namespace vellor::nodes::test {

namespace {

constexpr int kPad = 16; // floats of one vector at most

int paddedOf(int count)
{
    return (count + kPad - 1) / kPad * kPad;
}

} // namespace

Picture::Picture(int width, int height, int channels)
    : m_width(width), m_height(height), m_channels(channels), m_stride(paddedOf(width)),
      m_pixels(std::size_t(m_stride) * height * channels, std::numeric_limits<float>::quiet_NaN())
{
}

float& Picture::at(int x, int y, int channel)
{
    const std::size_t row = std::size_t(channel) * m_height + wrapped(y, m_height);
    return m_pixels[row * m_stride + wrapped(x, m_width)];
}

ImageView Picture::view() const
{
    ImageView view;
    view.stride = m_stride;
    view.width = m_width;
    view.height = m_height;
    view.channels = m_channels;
    for (int c = 0; c < m_channels; ++c)
        view.planes[c] = m_pixels.data() + std::size_t(c) * m_height * m_stride;
    return view;
}

MutableImage Picture::mutableView()
{
    const ImageView from = view();
    MutableImage image;
    image.stride = from.stride;
    image.width = from.width;
    image.height = from.height;
    image.channels = from.channels;
    for (int c = 0; c < m_channels; ++c)
        image.planes[c] = const_cast<float*>(from.planes[c]);
    return image;
}

bool Picture::operator==(const Picture& other) const
{
    if (m_width != other.m_width || m_height != other.m_height || m_channels != other.m_channels)
        return false;
    for (int c = 0; c < m_channels; ++c)
        for (int y = 0; y < m_height; ++y)
            if (std::memcmp(view().planes[c] + y * m_stride, other.view().planes[c] + y * m_stride,
                            sizeof(float) * m_width) != 0)
                return false;
    return true;
}

Picture drawn(int width, int height, const std::function<float(float, float)>& value)
{
    Picture picture(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.at(x, y) = value((x + 0.5f) / width, (y + 0.5f) / height);
    return picture;
}

Picture noise(int width, int height, int channels, unsigned seed)
{
    std::mt19937 random(seed);
    Picture picture(width, height, channels);
    for (int c = 0; c < channels; ++c)
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                picture.at(x, y, c) = static_cast<float>(random() >> 8) / 16777216.0f;
    return picture;
}

double meanOf(const Picture& picture, int channel)
{
    double sum = 0.0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            sum += picture.at(x, y, channel);
    return sum / (double(picture.width()) * picture.height());
}

Evaluation::Evaluation(const char* kind, int width, int height, int channels)
    : m_node(findNode(std::string_view(kind)) ? *findNode(std::string_view(kind))
                                              : throw std::invalid_argument(kind)),
      m_width(width), m_height(height), m_channels(channels)
{
    if (m_node.result == ResultChannels::Colour)
        m_channels = 4;
    for (const ParameterDeclaration& declared : m_node.parameters) {
        ParameterValue parameter;
        for (int c = 0; c < 4; ++c) {
            parameter.f[c] = static_cast<float>(declared.defaultValue[c]);
            parameter.i[c] = static_cast<std::int32_t>(declared.defaultValue[c]);
        }
        m_parameters.push_back(parameter);
    }
}

ParameterValue& Evaluation::value(const char* name)
{
    for (std::size_t i = 0; i < m_parameters.size(); ++i)
        if (std::string_view(m_node.parameters[i].name) == name)
            return m_parameters[i];
    throw std::invalid_argument(std::string(m_node.name) + " has no parameter " + name);
}

Evaluation& Evaluation::set(const char* name, std::initializer_list<double> components)
{
    ParameterValue& parameter = value(name);
    int c = 0;
    for (const double component : components) {
        parameter.f[c] = static_cast<float>(component);
        parameter.i[c++] = static_cast<std::int32_t>(component);
    }
    return *this;
}

Evaluation& Evaluation::setText(const char* name, std::u32string text)
{
    m_texts[name] = std::move(text);
    value(name).text = m_texts[name];
    return *this;
}

Evaluation& Evaluation::setBytes(const char* name, std::vector<std::uint8_t> bytes)
{
    std::vector<std::uint8_t>& blob = m_blobs[name];
    blob = std::move(bytes);
    value(name).blob = blob.data();
    value(name).blobSize = blob.size();
    return *this;
}

Evaluation& Evaluation::setBlob(const char* name, std::vector<float> values)
{
    std::vector<std::uint8_t> bytes(values.size() * sizeof(float));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return setBytes(name, std::move(bytes));
}

Evaluation& Evaluation::setProgram(const char* name, const program::ValueProgram& program)
{
    value(name).program = &program;
    return *this;
}

Evaluation& Evaluation::operand(Picture picture)
{
    if (m_node.result == ResultChannels::FromOperands && m_operands.size() < m_node.operands.size() &&
        m_node.operands[m_operands.size()].channels == OperandChannels::Result)
        m_channels = std::max(m_channels, picture.channels());
    m_operands.push_back(std::move(picture));
    return *this;
}

Evaluation& Evaluation::skip()
{
    return operand(Picture());
}

Evaluation& Evaluation::image(Picture picture)
{
    m_image = std::move(picture);
    return *this;
}

Evaluation& Evaluation::seed(int seed)
{
    m_seed = seed;
    return *this;
}

Evaluation& Evaluation::pastCaches(bool past)
{
    m_pastCaches = past;
    return *this;
}

Evaluation& Evaluation::split(int pixels, int rows)
{
    m_pixels = pixels;
    m_rows = rows;
    return *this;
}

Picture Evaluation::operator()()
{
    m_views.clear();
    m_operands.resize(m_node.operands.size());
    for (const Picture& picture : m_operands)
        m_views.push_back(picture.view());
    Setup setup;
    setup.parameters = m_parameters.data();
    setup.width = m_width;
    setup.height = m_height;
    setup.channels = m_channels;
    setup.seed = m_seed;
    setup.operands = m_views.data();
    setup.operandCount = m_views.size();
    setup.inputWords = m_inputs.data();
    setup.image = m_image.view();
    const std::unique_ptr<State> state = m_node.prepare ? m_node.prepare(setup) : nullptr;
    const NodeDeclaration& form = formFor(m_node, m_parameters.data());
    if (form.area)
        return runPasses(state.get(), setup);
    Picture result(m_width, m_height, m_channels);
    runRows(form, state.get(), result);
    return result;
}

namespace {

/// What a kernel says that it hands on is in its result.
void expectHandedOn(const RowJob& job)
{
    const auto* selective = dynamic_cast<const SelectiveState*>(job.state);
    for (int c = 0; selective && c < job.channels; ++c) {
        const int plane = selective->handsOn(c);
        if (plane >= 0 && job.operands[plane] &&
            std::memcmp(job.operands[plane], job.result[c], sizeof(float) * std::size_t(job.count)) != 0)
            throw std::logic_error("Channel " + std::to_string(c) + " isn't what the kernel hands on");
    }
}

} // namespace

void Evaluation::runRows(const NodeDeclaration& form, const State* state, Picture& result)
{
    // One line for each channel of each operand and of the result, so that every job starts on an aligned
    // place.
    const int run = std::min(m_pixels, m_width);
    Picture lines(paddedOf(run), static_cast<int>(m_views.size() + 1) * kMaxChannels);
    std::vector<const float*> rows(m_views.size() * kMaxChannels, nullptr);
    for (int y = 0; y < m_height; ++y) {
        for (int x = 0; x < m_width; x += run) {
            RowJob job{state,      x,           y, std::min(run, m_width - x), m_width, m_height,
                       m_channels, rows.data(), {}};
            for (std::size_t o = 0; o < m_views.size(); ++o) {
                for (int c = 0; c < m_views[o].channels; ++c) {
                    float* line = &lines.at(0, static_cast<int>(o * kMaxChannels + c));
                    std::copy_n(rowOf(m_views[o], c, y) + x, job.count, line);
                    rows[o * kMaxChannels + c] = line;
                }
            }
            for (int c = 0; c < kMaxChannels; ++c)
                job.result[c] = &lines.at(0, static_cast<int>(m_views.size()) * kMaxChannels + c);
            job.pastCaches = m_pastCaches && form.row.puts;
            form.row(job);
            expectHandedOn(job);
            for (int c = 0; c < m_channels; ++c)
                std::copy_n(job.result[c], job.count, &result.at(x, y, c));
        }
    }
}

Picture Evaluation::runPasses(const State* state, const Setup& setup)
{
    std::vector<ScratchShape> shapes;
    if (m_node.scratch)
        shapes = m_node.scratch(state, setup);
    shapes.push_back({m_width, m_height, m_channels});
    std::vector<Picture> pictures;
    std::vector<ImageView> scratch;
    for (const ScratchShape& shape : shapes) {
        Picture result(shape.width, shape.height, shape.channels);
        AreaJob job{state,
                    static_cast<int>(pictures.size()),
                    0,
                    0,
                    m_views.data(),
                    scratch.data(),
                    result.mutableView()};
        for (job.y0 = 0; job.y0 < shape.height; job.y0 = job.y1) {
            job.y1 = std::min(job.y0 + std::min(m_rows, shape.height), shape.height);
            m_node.area(job);
        }
        pictures.push_back(std::move(result));
        scratch.push_back(pictures.back().view());
    }
    return pictures.back();
}

} // namespace vellor::nodes::test
