#include "platform/engines/cpu/planner.h"

#include "platform/engines/cpu/outputconverter.h"
#include "platform/engines/cpu/resample.h"
#include "platform/nodes/form.h"
#include "platform/nodes/kinds.h"

#include <algorithm>
#include <cstring>

namespace vellor::cpu {
namespace {

using nodes::ParameterType;
using nodes::ParameterValue;
using program::ParameterSource;

constexpr int kDefaultSide = 256;

bool isFloat(ParameterType type)
{
    return type <= ParameterType::Float4;
}

bool isFloat(program::ValueType type)
{
    return type <= program::ValueType::Float4;
}

float asFloat(std::uint32_t bits)
{
    float value;
    std::memcpy(&value, &bits, 4);
    return value;
}

std::int32_t truncated(float value)
{
    return value > -2147483904.0f && value < 2147483648.0f ? static_cast<std::int32_t>(value) : 0;
}

void setWords(ParameterValue& value, const program::Words& words, bool wordsAreFloat, bool wantFloat)
{
    for (int c = 0; c < 4; ++c) {
        const auto integer = static_cast<std::int32_t>(words[c]);
        if (wantFloat)
            value.f[c] = wordsAreFloat ? asFloat(words[c]) : static_cast<float>(integer);
        else
            value.i[c] = wordsAreFloat ? truncated(asFloat(words[c])) : integer;
    }
}

void setDefault(ParameterValue& value, const nodes::ParameterDeclaration& declared)
{
    for (int c = 0; c < 4; ++c) {
        value.f[c] = static_cast<float>(declared.defaultValue[c]);
        value.i[c] = static_cast<std::int32_t>(declared.defaultValue[c]);
    }
}

/// Bytes that are no UTF-8 become U+FFFD.
std::u32string fromUtf8(const std::vector<std::uint8_t>& bytes)
{
    std::u32string text;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::uint8_t lead = bytes[at++];
        const int more = lead < 0x80                   ? 0
                         : lead >= 0xc2 && lead < 0xe0 ? 1
                         : lead >= 0xe0 && lead < 0xf0 ? 2
                         : lead >= 0xf0 && lead < 0xf5 ? 3
                                                       : -1;
        char32_t character = more <= 0 ? lead : lead & (0x3fu >> more);
        int read = 0;
        while (read < more && at < bytes.size() && (bytes[at] & 0xc0) == 0x80) {
            character = character << 6 | (bytes[at++] & 0x3fu);
            ++read;
        }
        text.push_back(more < 0 || read < more ? U'\uFFFD' : character);
    }
    return text;
}

} // namespace

Plan Planner::make(const PlanRequest& request, const PictureSource& pictures)
{
    plan_ = Plan();
    resampled_.clear();
    plan_.inputWords = inputs_.words();
    const std::vector<bool> needed = neededBy(request.outputs);
    settleSizes(needed);
    askForPictures(needed, pictures);
    planned_.assign(needed.size(), kNoNode);
    for (std::size_t node = 0; node < needed.size(); ++node)
        if (needed[node])
            addNode(static_cast<int>(node));
    const std::vector<int> readers = readersOf();
    std::map<int, int> roots; // by output, which may be asked for twice
    for (const int output : request.outputs) {
        const auto [root, isNew] = roots.try_emplace(output, kNoNode);
        if (isNew)
            root->second = rootOf(output, readers[package_.program().outputs[output].node]);
        plan_.roots.push_back(root->second);
    }
    markCompute();
    markKept(request);
    return std::move(plan_);
}

std::array<int, 2> Planner::pictureSize(std::uint32_t input)
{
    const std::vector<bool> all(package_.program().nodes.size(), true);
    settleSizes(all);
    std::array<int, 2> size{};
    for (std::size_t node = 0; node < all.size(); ++node)
        if (imageInputOf(static_cast<int>(node)) == static_cast<int>(input))
            size = {std::max(size[0], sizes_[node].width), std::max(size[1], sizes_[node].height)};
    return size;
}

std::vector<bool> Planner::neededBy(const std::vector<int>& outputs) const
{
    const program::Program& program = package_.program();
    std::vector<bool> needed(program.nodes.size(), false);
    for (const int output : outputs)
        needed[program.outputs[output].node] = true;
    for (std::size_t node = needed.size(); node-- > 0;)
        if (needed[node])
            for (const int operand : program.nodes[node].operands)
                if (operand != program::kNone)
                    needed[operand] = true;
    return needed;
}

void Planner::settleSizes(const std::vector<bool>& needed)
{
    sizes_.assign(needed.size(), Size());
    for (std::size_t node = 0; node < needed.size(); ++node) {
        if (!needed[node])
            continue;
        const int program = package_.program().nodes[node].size;
        if (program == program::kNone) {
            sizes_[node] = sizeOf(static_cast<int>(node));
            continue;
        }
        const program::Words& log2 = values_.get(program, inputs_);
        const auto side = [&](int c) {
            return 1 << std::clamp<std::int32_t>(static_cast<std::int32_t>(log2[c]), 0,
                                                 program::kMaxLog2Size);
        };
        sizes_[node] = {side(0), side(1)};
    }
}

/// A node with no size of its own has that of its first operand.
Planner::Size Planner::sizeOf(int node) const
{
    for (const int operand : package_.program().nodes[node].operands)
        if (operand != program::kNone)
            return sizes_[operand];
    return {kDefaultSide, kDefaultSide};
}

int Planner::imageInputOf(int node) const
{
    const nodes::NodeDeclaration& kind = package_.kind(node);
    for (const nodes::ParameterDeclaration& declared : kind.parameters) {
        if (declared.type != ParameterType::ImageInput)
            continue;
        const std::uint32_t id = program::stableId(declared.name);
        for (const program::Parameter& parameter : package_.program().nodes[node].parameters)
            if (parameter.id == id && parameter.source == ParameterSource::Input)
                return parameter.index;
    }
    return program::kNone;
}

/// The host is asked once for each image input that is read, for the largest size.
void Planner::askForPictures(const std::vector<bool>& needed, const PictureSource& pictures)
{
    std::map<std::uint32_t, Size> wanted;
    for (std::size_t node = 0; node < needed.size(); ++node) {
        const int input = needed[node] ? imageInputOf(static_cast<int>(node)) : program::kNone;
        if (input == program::kNone)
            continue;
        Size& size = wanted[static_cast<std::uint32_t>(input)];
        size = {std::max(size.width, sizes_[node].width), std::max(size.height, sizes_[node].height)};
    }
    pictures_.clear();
    unpacked_.clear();
    for (const auto& [input, size] : wanted)
        pictures_[input] = pictures(input, size.width, size.height);
}

/// The node with the planes of an image input, at the size of its picture, for all who sample it; kNoNode
/// where there is no picture.
int Planner::unpacked(std::uint32_t input)
{
    const std::shared_ptr<const HostImage>& image = pictures_.at(input);
    if (!image)
        return kNoNode;
    const auto [found, isNew] = unpacked_.try_emplace(input, static_cast<int>(plan_.nodes.size()));
    if (!isNew)
        return found->second;
    PlanNode planned;
    planned.kind = &pictureKind();
    planned.width = image->width();
    planned.height = image->height();
    planned.channels = image->channels();
    Hasher hasher(0x756e7061636bull);
    hasher.add(image->key());
    planned.key = hasher.key();
    planned.source = image;
    plan_.nodes.push_back(std::move(planned));
    return found->second;
}

/// A node that shows a picture of its own size has the picture's pixels: they are unpacked where they are
/// read, and nothing is sampled.
bool Planner::showPicture(PlanNode& planned, std::uint32_t input) const
{
    const std::shared_ptr<const HostImage>& image = pictures_.at(input);
    if (planned.kind != &nodes::imageinputNode || !image || !image->isRaw() ||
        image->width() != planned.width || image->height() != planned.height)
        return false;
    planned.kind = &pictureRowKind();
    planned.source = image;
    Hasher hasher(0x70696374757265ull);
    hasher.add(image->key());
    hasher.add(static_cast<std::uint64_t>(planned.channels));
    planned.key = hasher.key();
    return true;
}

void Planner::addNode(int node)
{
    const program::Node& source = package_.program().nodes[node];
    PlanNode planned;
    planned.kind = &package_.kind(node);
    planned.origin = node;
    planned.width = sizes_[node].width;
    planned.height = sizes_[node].height;
    planned.channels = source.channels;
    if (source.seed != program::kNone)
        planned.seed = static_cast<std::int32_t>(values_.get(source.seed, inputs_)[0]);
    planned.operands.assign(planned.kind->operands.size(), kNoNode);
    for (std::size_t i = 0; i < source.operands.size(); ++i)
        if (source.operands[i] != program::kNone)
            planned.operands[i] = resampled(planned_[source.operands[i]], planned.width, planned.height);
    addParameters(node, planned);
    const int input = imageInputOf(node);
    if (input == program::kNone || !showPicture(planned, static_cast<std::uint32_t>(input))) {
        if (input != program::kNone)
            planned.picture = unpacked(static_cast<std::uint32_t>(input));
        planned.kind = &nodes::formFor(*planned.kind, planned.parameters.data());
        planned.key = keyOf(node, planned);
    }
    planned_[node] = static_cast<int>(plan_.nodes.size());
    plan_.nodes.push_back(std::move(planned));
}

void Planner::addParameters(int node, PlanNode& planned)
{
    const auto& given = package_.program().nodes[node].parameters;
    planned.parameters.resize(planned.kind->parameters.size());
    for (std::size_t i = 0; i < planned.parameters.size(); ++i) {
        const nodes::ParameterDeclaration& declared = planned.kind->parameters[i];
        const std::uint32_t id = program::stableId(declared.name);
        setDefault(planned.parameters[i], declared);
        for (const program::Parameter& parameter : given)
            if (parameter.id == id)
                setParameter(parameter, declared.type, planned.parameters[i]);
    }
}

void Planner::setParameter(const program::Parameter& parameter, ParameterType type, ParameterValue& value)
{
    const program::Program& program = package_.program();
    switch (parameter.source) {
    case ParameterSource::Constant:
        setWords(value, parameter.words, isFloat(type), isFloat(type));
        break;
    case ParameterSource::Program:
        if (type == ParameterType::PixelProgram)
            value.program = &program.values[parameter.index];
        else
            setWords(value, values_.get(parameter.index, inputs_),
                     isFloat(program.values[parameter.index].type), isFloat(type));
        break;
    case ParameterSource::Blob:
        value.blob = program.blobs[parameter.index].data();
        value.blobSize = program.blobs[parameter.index].size();
        if (type == ParameterType::Text)
            value.text = plan_.texts.emplace_back(fromUtf8(program.blobs[parameter.index]));
        break;
    case ParameterSource::Input:
        if (const auto& text = inputs_.value(parameter.index).text) {
            plan_.inputTexts.push_back(text);
            value.text = *text;
        }
        break;
    }
}

/// The node itself, or one that brings it to another size.
int Planner::resampled(int planNode, int width, int height)
{
    const PlanNode& from = plan_.nodes[planNode];
    if (from.width == width && from.height == height)
        return planNode;
    const auto [found, isNew] =
        resampled_.try_emplace({planNode, width, height}, static_cast<int>(plan_.nodes.size()));
    if (!isNew)
        return found->second;
    PlanNode planned;
    planned.kind = &resampleKind();
    planned.width = width;
    planned.height = height;
    planned.channels = from.channels;
    planned.operands = {planNode};
    Hasher hasher(0x726573616d706cull);
    hasher.add(from.key);
    hasher.add(std::uint64_t(width) << 32 | std::uint64_t(height));
    planned.key = hasher.key();
    plan_.nodes.push_back(std::move(planned));
    return found->second;
}

/// Everything that the pixels follow from, and nothing else: values of parameters, not where they come from.
Key Planner::keyOf(int node, const PlanNode& planned) const
{
    const program::Node& source = package_.program().nodes[node];
    Hasher hasher(source.kind);
    hasher.add(std::uint64_t(planned.width) << 32 | std::uint64_t(planned.height) << 8 |
               std::uint64_t(planned.channels));
    hasher.add(static_cast<std::uint32_t>(planned.seed));
    for (const int operand : planned.operands)
        hasher.add(operand == kNoNode ? Key() : plan_.nodes[operand].key);
    hasher.add(planned.picture == kNoNode ? Key() : plan_.nodes[planned.picture].key);
    for (std::size_t i = 0; i < planned.parameters.size(); ++i) {
        const ParameterValue& value = planned.parameters[i];
        hasher.add(value.f.data(), sizeof value.f);
        hasher.add(value.i.data(), sizeof value.i);
        hasher.add(value.text.data(), value.text.size() * sizeof(char32_t));
    }
    for (const program::Parameter& parameter : source.parameters) {
        if (parameter.source == ParameterSource::Blob) {
            hasher.add(parameter.id);
            hasher.add(package_.keyOfBlob(parameter.index));
        }
        if (parameter.source != ParameterSource::Program ||
            !package_.program().values[parameter.index].perPixel)
            continue;
        hasher.add(parameter.id);
        hasher.add(package_.keyOfValue(parameter.index));
        for (const std::uint32_t input : package_.inputsOf(parameter.index))
            hasher.add(plan_.inputWords.data() + 4 * std::size_t(input), 4 * sizeof(std::uint32_t));
    }
    return hasher.key();
}

/// By node of the package: how many nodes and image outputs read it.
std::vector<int> Planner::readersOf() const
{
    const program::Program& program = package_.program();
    std::vector<int> readers(program.nodes.size(), 0);
    for (const program::Node& node : program.nodes)
        for (const int operand : node.operands)
            if (operand != program::kNone)
                ++readers[operand];
    for (const program::Output& output : program.outputs)
        if (output.type == program::ValueType::Image)
            ++readers[output.node];
    return readers;
}

/// What an output is delivered from. The end of a chain that nothing else in the package reads is packed
/// where it is computed, if pixels are smaller than planes: nobody will miss the planes. Mipmaps are made
/// from planes.
int Planner::rootOf(int output, int readers)
{
    const program::Output& described = package_.program().outputs[output];
    const int node = planned_[described.node];
    const PlanNode& from = plan_.nodes[node];
    PlanNode planned;
    planned.kind = &packKind();
    planned.origin = from.origin;
    planned.width = from.width;
    planned.height = from.height;
    planned.channels = from.channels;
    planned.operands = {node};
    planned.packs = true;
    planned.format = described.pixelFormat;
    if (readers > 1 || described.mipmaps > 1 || !from.isPoint() || store_.holds(from.key) ||
        !RawFormat::isRaw(described.pixelFormat) || planned.shape().byteSize() >= from.shape().byteSize())
        return node;
    Hasher hasher(0x7061636bull);
    hasher.add(from.key);
    hasher.add(static_cast<std::uint64_t>(planned.format));
    planned.key = hasher.key();
    plan_.nodes.push_back(std::move(planned));
    return static_cast<int>(plan_.nodes.size()) - 1;
}

void Planner::markCompute()
{
    std::vector<bool> wanted(plan_.nodes.size(), false);
    for (const int root : plan_.roots)
        wanted[root] = true;
    for (std::size_t i = plan_.nodes.size(); i-- > 0;) {
        PlanNode& node = plan_.nodes[i];
        if (!wanted[i] || store_.holds(node.key))
            continue;
        node.compute = true;
        for (const int operand : node.operands)
            if (operand != kNoNode)
                wanted[operand] = true;
        if (node.picture != kNoNode)
            wanted[node.picture] = true;
    }
}

/// Kept is what a changing input doesn't touch, where something that it touches reads it.
void Planner::markKept(const PlanRequest& request)
{
    std::vector<bool> counts(plan_.nodes.size(), request.hintedOutputs.empty());
    for (const int output : request.hintedOutputs) {
        const int node = planned_[package_.program().outputs[output].node];
        if (node != kNoNode)
            counts[node] = true;
    }
    for (std::size_t i = counts.size(); i-- > 0;)
        if (counts[i])
            for (const int operand : plan_.nodes[i].operands)
                if (operand != kNoNode)
                    counts[operand] = true;
    std::vector<bool> touched(plan_.nodes.size(), false);
    for (std::size_t i = 0; i < plan_.nodes.size(); ++i) {
        const PlanNode& node = plan_.nodes[i];
        touched[i] = plan_.nodes[i].origin != kNoNode && touches(plan_.nodes[i].origin, request.changing);
        for (const int operand : node.operands)
            touched[i] = touched[i] || (operand != kNoNode && touched[operand]);
        for (const int operand : node.operands)
            // Unpacking a picture again takes no longer than reading its planes.
            if (touched[i] && counts[i] && operand != kNoNode && !touched[operand] &&
                plan_.nodes[operand].kind != &pictureRowKind())
                plan_.nodes[operand].keep = true;
    }
}

/// Whether the node itself, not its operands, follows from an input that changes.
bool Planner::touches(int node, const std::vector<bool>& changing) const
{
    const auto reads = [&](int value) {
        if (value == program::kNone)
            return false;
        const auto& read = package_.inputsOf(value);
        return std::any_of(read.begin(), read.end(), [&](std::uint32_t input) { return changing[input]; });
    };
    const program::Node& source = package_.program().nodes[node];
    if (reads(source.size) || reads(source.seed))
        return true;
    for (const program::Parameter& parameter : source.parameters) {
        if (parameter.source == ParameterSource::Program && reads(parameter.index))
            return true;
        if (parameter.source == ParameterSource::Input && changing[parameter.index])
            return true;
    }
    return false;
}

} // namespace vellor::cpu
