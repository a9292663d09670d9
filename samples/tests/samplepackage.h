#pragma once

#include <vellor/engine.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vellor::samples {

/// A picture as an engine gave it, in floats: rows from the top, channels interleaved, 0 to 1 in the nominal
/// range.
struct Picture
{
    int width = 0, height = 0, channels = 0; // 1 or 4
    std::vector<float> values;

    /// Goes around at the edges.
    float at(int x, int y, int channel) const;
};

struct PackageInput
{
    std::string identifier, widget, group, visibleIf, unit; // of its graph's description
    std::uint32_t index = 0, type = 0;                      // the engine's
};

struct PackageOutput
{
    std::string identifier, graph, usage;
    std::uint32_t index = 0, uid = 0, type = 0; // the engine's
    bool isBoolean = false;
};

/// Pictures and numbers of one generation, by "graph/identifier".
struct Results
{
    std::map<std::string, Picture> pictures;
    std::map<std::string, std::vector<std::uint32_t>> numbers; // four words each
};

/// A package cooked from its authoring file, linked and opened in an engine, all through the C interfaces
/// alone. Whatever goes wrong throws std::runtime_error with the words of whoever failed.
class SamplePackage
{
public:
    SamplePackage(const std::string& authoringFile, const std::string& engineFile);
    ~SamplePackage();
    SamplePackage(const SamplePackage&) = delete;
    SamplePackage& operator=(const SamplePackage&) = delete;

    const std::vector<PackageInput>& inputs() const { return m_inputs; }
    const std::vector<PackageOutput>& outputs() const { return m_outputs; }
    const std::string& description() const { return m_description; }

    /// Sets an input of any graph that has it: components of a number, by their type floats or rounded to
    /// integers.
    void set(const std::string& identifier, const std::vector<double>& components);
    void setText(const std::string& identifier, const std::string& ascii);
    /// Copies the picture, of four channels. Null takes the image away.
    void setImage(const std::string& identifier, const Picture* picture);
    /// Width and height as powers of two.
    void setSize(int log2Side);

    /// All outputs, or those of one graph.
    Results generate(const std::string& graph = {});

private:
    struct Engine;
    struct Image;

    void cook(const std::string& authoringFile);
    void link();
    void describe();
    std::vector<const PackageInput*> named(const std::string& identifier) const;
    void push(const PackageInput& input, const void* value, void* user = nullptr);

    std::unique_ptr<Engine> m_engine;
    std::vector<std::uint8_t> m_assembly;
    std::string m_description;
    std::vector<std::uint64_t> m_image; // the binary image, aligned
    std::uint64_t m_imageSize = 0;
    std::vector<PackageInput> m_inputs;
    std::vector<PackageOutput> m_outputs;
    std::map<std::string, std::unique_ptr<Image>> m_images;
};

} // namespace vellor::samples
