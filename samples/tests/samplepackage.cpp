#include "samples/tests/samplepackage.h"

#include <vellor/cooker.h>
#include <vellor/linker.h>

#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <stdexcept>

namespace vellor::samples {

namespace {

std::string messages; // of the cooker and the linker, whose callbacks know no user

void gatherCooker(VellorCookerContext*, std::int32_t, const char* text)
{
    messages += std::string(text) + "\n";
}

void gatherLinker(VellorLinkerContext*, std::int32_t, const char* text)
{
    messages += std::string(text) + "\n";
}

void require(std::uint32_t result, const std::string& what)
{
    if (result != 0)
        throw std::runtime_error(what + " failed (" + std::to_string(result) + ")\n" + messages);
}

template<typename Handle, typename Result> struct Releaser
{
    Result (*release)(Handle*);
    void operator()(Handle* handle) const { release(handle); }
};
template<typename Handle, typename Result = std::uint32_t>
using Owner = std::unique_ptr<Handle, Releaser<Handle, Result>>;

int componentsOf(std::uint32_t type)
{
    return type <= VELLOR_TYPE_FLOAT4                                     ? static_cast<int>(type) + 1
           : type == VELLOR_TYPE_INTEGER                                  ? 1
           : type >= VELLOR_TYPE_INTEGER2 && type <= VELLOR_TYPE_INTEGER4 ? static_cast<int>(type) - 6
                                                                          : 0;
}

float valueAt(const std::uint8_t* at, unsigned depth)
{
    if (depth == VELLOR_FORMAT_8BITS)
        return static_cast<float>(*at) / 255.0f;
    if (depth == VELLOR_FORMAT_16BITS) {
        std::uint16_t word;
        std::memcpy(&word, at, sizeof word);
        return static_cast<float>(word) / 65535.0f;
    }
    if (depth != VELLOR_FORMAT_32FLOAT)
        throw std::runtime_error("an output of a depth that no sample has");
    float value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

Picture pictureOf(const VellorTexture& texture)
{
    const unsigned layout = texture.pixelFormat & VELLOR_FORMAT_LAYOUT_MASK;
    const unsigned depth = texture.pixelFormat & VELLOR_FORMAT_DEPTH_MASK;
    const std::size_t bytes = depth == VELLOR_FORMAT_8BITS ? 1 : depth == VELLOR_FORMAT_16BITS ? 2 : 4;
    Picture picture{texture.width, texture.height, layout == VELLOR_FORMAT_GRAYSCALE ? 1 : 4, {}};
    const auto* at = static_cast<const std::uint8_t*>(texture.buffer);
    const std::size_t pixels = static_cast<std::size_t>(picture.width) * picture.height;
    for (std::size_t i = 0; i < pixels; ++i) {
        for (int c = 0; c < picture.channels; ++c) {
            const unsigned from = picture.channels == 1 ? 0 : (texture.channelOrder >> (2 * c)) & 3u;
            picture.values.push_back(valueAt(at + (i * picture.channels + from) * bytes, depth));
        }
    }
    return picture;
}

} // namespace

float Picture::at(int x, int y, int channel) const
{
    const int column = (x % width + width) % width, row = (y % height + height) % height;
    return values[(static_cast<std::size_t>(row) * width + column) * channels + channel];
}

struct SamplePackage::Image
{
    std::vector<std::uint8_t> bytes;
    VellorTexture texture{};
};

/// A loaded engine library and what was opened in it.
struct SamplePackage::Engine
{
    explicit Engine(const std::string& file) : library(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL))
    {
        if (!library)
            throw std::runtime_error(dlerror());
        resolve("vellorContextInitImpl", contextInit);
        resolve("vellorContextRelease", contextRelease);
        resolve("vellorContextSetCallback", setCallback);
        resolve("vellorContextRestoreStates", restoreStates);
        resolve("vellorHandleInit", handleInit);
        resolve("vellorHandleRelease", handleRelease);
        resolve("vellorHandleGetDesc", getDesc);
        resolve("vellorHandleGetOutputDesc", getOutputDesc);
        resolve("vellorHandleGetInputDesc", getInputDesc);
        resolve("vellorHandleFlush", flush);
        resolve("vellorHandlePushSetInput", pushSetInput);
        resolve("vellorHandlePushOutputs", pushOutputs);
        resolve("vellorHandleStart", start);
        resolve("vellorHandleGetOutputs", getOutputs);
        VellorDevice device{};
        require(contextInit(&context, &device, VELLOR_API_VERSION, 0), "making a context");
        setCallback(context, VELLOR_CALLBACK_OUTPUT_COMPLETE, reinterpret_cast<VellorFunction>(complete));
        setCallback(context, VELLOR_CALLBACK_IMAGE_INPUT, reinterpret_cast<VellorFunction>(imageInput));
    }

    ~Engine()
    {
        if (handle)
            handleRelease(handle);
        if (context)
            contextRelease(context);
        if (library)
            dlclose(library);
    }

    template<typename Function> void resolve(const char* name, Function& function)
    {
        function = reinterpret_cast<Function>(dlsym(library, name));
        if (!function)
            throw std::runtime_error(std::string("the engine has no ") + name);
    }

    void open(const void* data, std::uint64_t size)
    {
        VellorHardResources resources{};
        resources.memoryBudget = std::uint64_t{1} << 30;
        require(handleInit(&handle, context, data, size, &resources), "opening the package");
    }

    static void complete(VellorHandle*, std::uint32_t index, void* user)
    {
        static_cast<Engine*>(user)->fetch(index);
    }

    static void imageInput(VellorHandle*, std::uint32_t, std::uint32_t, void**, const VellorImageRequest*) {}

    void fetch(std::uint32_t index)
    {
        const auto found =
            std::find_if(wanted.begin(), wanted.end(), [&](const auto& o) { return o.index == index; });
        if (found == wanted.end())
            return;
        const std::string name = found->graph + "/" + found->identifier;
        if (found->type != VELLOR_TYPE_IMAGE) {
            std::vector<std::uint32_t> words(4);
            if (getOutputs(handle, VELLOR_FETCH_NUMERIC, index, 1, words.data()) == VELLOR_OK)
                results.numbers[name] = words;
            return;
        }
        VellorTexture texture{};
        if (getOutputs(handle, 0, index, 1, &texture) != VELLOR_OK)
            return;
        results.pictures[name] = pictureOf(texture);
        std::free(texture.buffer);
    }

    void* library = nullptr;
    VellorContext* context = nullptr;
    VellorHandle* handle = nullptr;
    std::vector<PackageOutput> wanted;
    Results results;

    VellorContextInitImplFn contextInit = nullptr;
    VellorContextReleaseFn contextRelease = nullptr;
    VellorContextSetCallbackFn setCallback = nullptr;
    VellorContextRestoreStatesFn restoreStates = nullptr;
    VellorHandleInitFn handleInit = nullptr;
    VellorHandleReleaseFn handleRelease = nullptr;
    VellorHandleGetDescFn getDesc = nullptr;
    VellorHandleGetOutputDescFn getOutputDesc = nullptr;
    VellorHandleGetInputDescFn getInputDesc = nullptr;
    VellorHandleFlushFn flush = nullptr;
    VellorHandlePushSetInputFn pushSetInput = nullptr;
    VellorHandlePushOutputsFn pushOutputs = nullptr;
    VellorHandleStartFn start = nullptr;
    VellorHandleGetOutputsFn getOutputs = nullptr;
};

SamplePackage::SamplePackage(const std::string& authoringFile, const std::string& engineFile)
{
    messages.clear();
    cook(authoringFile);
    link();
    m_engine = std::make_unique<Engine>(engineFile);
    m_engine->open(m_image.data(), m_imageSize);
    describe();
}

SamplePackage::~SamplePackage() = default;

void SamplePackage::cook(const std::string& authoringFile)
{
    VellorCookerContext* rawContext = nullptr;
    require(vellorCookerContextInit(&rawContext, VELLOR_COOKER_API_VERSION), "starting the cooker");
    const Owner<VellorCookerContext> context(rawContext, {vellorCookerContextRelease});
    vellorCookerContextSetCallback(rawContext, VELLOR_COOKER_CALLBACK_MESSAGE,
                                   reinterpret_cast<VellorFunction>(gatherCooker));
    vellorCookerContextSetOption(rawContext, VELLOR_COOKER_OPTION_DYNAMIC,
                                 VELLOR_COOKER_DYNAMIC_OUTPUT_SIZE | VELLOR_COOKER_DYNAMIC_RANDOM_SEED |
                                     VELLOR_COOKER_DYNAMIC_PIXEL_SIZE);
    VellorCookerHandle* rawHandle = nullptr;
    require(vellorCookerHandleInit(&rawHandle, rawContext), "starting the cooker");
    const Owner<VellorCookerHandle> handle(rawHandle, {vellorCookerHandleRelease});
    std::vector<std::uint32_t> path(authoringFile.begin(), authoringFile.end());
    path.push_back(0);
    require(vellorCookerHandlePushPackageFileW(rawHandle, path.data()), "reading " + authoringFile);
    require(vellorCookerHandleCook(rawHandle), "cooking " + authoringFile);
    const void* data = nullptr;
    std::uint64_t size = 0;
    const char* description = nullptr;
    require(vellorCookerHandleGetAssembly(rawHandle, &data, &size), "taking the assembly");
    require(vellorCookerHandleGetIODesc(rawHandle, &description), "taking the description");
    const auto* first = static_cast<const std::uint8_t*>(data);
    m_assembly.assign(first, first + size);
    m_description = description;
}

void SamplePackage::link()
{
    VellorLinkerContext* rawContext = nullptr;
    require(vellorLinkerContextInit(&rawContext, VELLOR_LINKER_API_VERSION, VELLOR_ENGINE_SSE2),
            "starting the linker");
    const Owner<VellorLinkerContext> context(rawContext, {vellorLinkerContextRelease});
    vellorLinkerContextSetCallback(rawContext, VELLOR_LINKER_CALLBACK_MESSAGE,
                                   reinterpret_cast<VellorFunction>(gatherLinker));
    VellorLinkerHandle* rawHandle = nullptr;
    require(vellorLinkerHandleInit(&rawHandle, rawContext), "starting the linker");
    const Owner<VellorLinkerHandle> handle(rawHandle, {vellorLinkerHandleRelease});
    require(vellorLinkerHandlePushAssemblyMemory(rawHandle, m_assembly.data(), m_assembly.size()),
            "reading the assembly");
    const void* data = nullptr;
    require(vellorLinkerHandleLink(rawHandle, &data, &m_imageSize), "linking");
    m_image.resize(m_imageSize / 8 + 3);
    std::memcpy(m_image.data(), data, m_imageSize);
}

void SamplePackage::describe()
{
    pugi::xml_document document;
    if (!document.load_string(m_description.c_str()))
        throw std::runtime_error("the description is no XML");
    std::map<std::uint32_t, pugi::xml_node> inputs;
    std::map<std::uint32_t, pugi::xml_node> outputs;
    for (const pugi::xml_node graph : document.first_child().child("graphs").children("graph")) {
        for (const pugi::xml_node input : graph.child("inputs").children("input"))
            inputs[input.attribute("uid").as_uint()] = input;
        for (const pugi::xml_node output : graph.child("outputs").children("output"))
            outputs[output.attribute("uid").as_uint()] = output;
    }
    VellorDataDesc desc{};
    require(m_engine->getDesc(m_engine->handle, &desc), "reading the package");
    for (std::uint32_t i = 0; i < desc.inputsCount; ++i) {
        VellorInputDesc input{};
        require(m_engine->getInputDesc(m_engine->handle, i, &input), "reading an input");
        const pugi::xml_node gui = inputs[input.uid].child("inputgui");
        m_inputs.push_back({inputs[input.uid].attribute("identifier").value(),
                            gui.attribute("widget").value(), gui.attribute("group").value(),
                            gui.attribute("visibleif").value(),
                            gui.child("guiangle").attribute("unit").value(), i, input.type});
    }
    for (std::uint32_t i = 0; i < desc.outputsCount; ++i) {
        VellorOutputDesc output{};
        require(m_engine->getOutputDesc(m_engine->handle, i, &output), "reading an output");
        const pugi::xml_node node = outputs[output.uid];
        const std::string url = node.parent().parent().attribute("pkgurl").value();
        const bool isBoolean = std::string(node.child("outputgui").attribute("typegui").value()) == "boolean";
        m_outputs.push_back({node.attribute("identifier").value(), url.substr(url.rfind('/') + 1),
                             node.attribute("usage").value(), i, output.uid, output.type, isBoolean});
    }
}

std::vector<const PackageInput*> SamplePackage::named(const std::string& identifier) const
{
    std::vector<const PackageInput*> found;
    for (const PackageInput& input : m_inputs) {
        if (input.identifier == identifier)
            found.push_back(&input);
    }
    if (found.empty())
        throw std::runtime_error("there is no input '" + identifier + "'");
    return found;
}

void SamplePackage::push(const PackageInput& input, const void* value, void* user)
{
    require(m_engine->pushSetInput(m_engine->handle, 0, input.index, input.type, value, user),
            "setting " + input.identifier);
}

void SamplePackage::set(const std::string& identifier, const std::vector<double>& components)
{
    for (const PackageInput* input : named(identifier)) {
        std::uint32_t words[4] = {};
        for (int i = 0; i < componentsOf(input->type); ++i) {
            const double value = components[std::min<std::size_t>(i, components.size() - 1)];
            const auto asFloat = static_cast<float>(value);
            const auto asInt = static_cast<std::int32_t>(std::lround(value));
            std::memcpy(&words[i],
                        input->type <= VELLOR_TYPE_FLOAT4 ? static_cast<const void*>(&asFloat) : &asInt, 4);
        }
        push(*input, words);
    }
}

void SamplePackage::setText(const std::string& identifier, const std::string& ascii)
{
    std::vector<std::uint32_t> text(ascii.begin(), ascii.end());
    text.push_back(0);
    for (const PackageInput* input : named(identifier))
        push(*input, text.data());
}

void SamplePackage::setImage(const std::string& identifier, const Picture* picture)
{
    for (const PackageInput* input : named(identifier)) {
        if (!picture) {
            push(*input, nullptr);
            continue;
        }
        auto image = std::make_unique<Image>();
        for (const float value : picture->values)
            image->bytes.push_back(
                static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255.0f)));
        image->texture = {image->bytes.data(),
                          static_cast<std::uint16_t>(picture->width),
                          static_cast<std::uint16_t>(picture->height),
                          VELLOR_FORMAT_RGBA,
                          VELLOR_ORDER_RGBA,
                          {}};
        push(*input, &image->texture);
        m_images[identifier] = std::move(image);
    }
}

void SamplePackage::setSize(int log2Side)
{
    set("$outputsize", {static_cast<double>(log2Side)});
}

Results SamplePackage::generate(const std::string& graph)
{
    Engine& engine = *m_engine;
    engine.results = {};
    engine.wanted.clear();
    std::vector<std::uint32_t> uids;
    for (const PackageOutput& output : m_outputs) {
        if (!graph.empty() && output.graph != graph)
            continue;
        engine.wanted.push_back(output);
        uids.push_back(output.uid);
    }
    require(engine.flush(engine.handle), "flushing");
    require(engine.pushOutputs(engine.handle, VELLOR_PUSH_UIDS, uids.data(),
                               static_cast<std::uint32_t>(uids.size()), &engine),
            "asking for outputs");
    engine.restoreStates(engine.context);
    require(engine.start(engine.handle, 0), "generating");
    return std::move(engine.results);
}

} // namespace vellor::samples
