#include "platform/engines/cpu/handle.h"

#include "platform/engines/cpu/outputconverter.h"
#include "platform/engines/cpu/rowloop.h"
#include "platform/program/types.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vellor::cpu {

Handle::Handle(std::shared_ptr<VellorContext> context, std::unique_ptr<Package> package,
               const Resources& resources)
    : context_(std::move(context)), package_(std::move(package)), resources_(resources),
      inputs_(package_->program()), values_(*package_), cacheStore_(context_->callbacks, self()),
      store_(context_->pool, cacheStore_), results_(package_->program().outputs.size())
{
    store_.watch(&stop_);
    store_.setBudget(resources_.memoryBudget);
    store_.setTransient((resources_.flags & VELLOR_CPU_COMPUTE_ONCE) != 0);
}

VellorHandle* Handle::self()
{
    return static_cast<VellorHandle*>(this);
}

VellorDataDesc Handle::desc() const
{
    return {static_cast<std::uint32_t>(package_->program().outputs.size()),
            static_cast<std::uint32_t>(package_->program().inputs.size()), 0};
}

std::uint32_t Handle::outputDesc(std::uint32_t output, VellorOutputDesc& desc) const
{
    if (output >= results_.size())
        return VELLOR_ERROR_UNKNOWN_INDEX;
    const program::Output& source = package_->program().outputs[output];
    desc = VellorOutputDesc();
    desc.uid = source.uid;
    desc.width = source.fixedWidth;
    desc.height = source.fixedHeight;
    desc.pixelFormat = source.pixelFormat;
    desc.mipmapsCount = source.mipmaps;
    desc.type = static_cast<std::uint32_t>(source.type);
    return VELLOR_OK;
}

std::uint32_t Handle::inputDesc(std::uint32_t input, VellorInputDesc& desc) const
{
    if (input >= package_->program().inputs.size())
        return VELLOR_ERROR_UNKNOWN_INDEX;
    const program::Input& source = package_->program().inputs[input];
    desc.uid = source.uid;
    desc.type = static_cast<std::uint32_t>(source.type);
    desc.defaultValue = source.defaultValue.data();
    if (source.type == program::ValueType::String)
        desc.defaultValue = source.defaultText.c_str();
    else if (source.type == program::ValueType::Image)
        desc.defaultValue = nullptr;
    return VELLOR_OK;
}

std::uint32_t Handle::imageRequest(std::uint32_t input, VellorImageRequest& request)
{
    if (input >= package_->program().inputs.size())
        return VELLOR_ERROR_UNKNOWN_INDEX;
    if (package_->program().inputs[input].type != program::ValueType::Image)
        return VELLOR_ERROR_TYPE;
    if (running_)
        return VELLOR_ERROR_BUSY;
    const auto size = Planner(*package_, inputs_, values_, store_).pictureSize(input);
    request = VellorImageRequest();
    request.width = static_cast<std::uint32_t>(size[0]);
    request.height = static_cast<std::uint32_t>(size[1]);
    request.pixelFormat = VELLOR_FORMAT_RGBA | VELLOR_FORMAT_8BITS;
    request.mipmapsCount = 1;
    return VELLOR_OK;
}

int Handle::outputIndex(std::uint32_t flags, std::uint32_t output) const
{
    if (flags & VELLOR_PUSH_UIDS)
        return package_->outputWithUid(output);
    return output < results_.size() ? static_cast<int>(output) : -1;
}

std::uint32_t Handle::pushOutputs(std::uint32_t flags, const std::uint32_t* outputs, std::uint32_t count,
                                  void* user)
{
    if (count && !outputs)
        return VELLOR_ERROR_INVALID_ARGUMENT;
    std::vector<int> indices;
    for (std::uint32_t i = 0; i < count; ++i) {
        const int index = outputIndex(flags, outputs[i]);
        if (index < 0)
            return VELLOR_ERROR_UNKNOWN_INDEX;
        indices.push_back(index);
    }
    if ((flags & VELLOR_PUSH_HINT) == 0) {
        push(Compute{std::move(indices), user});
        return VELLOR_OK;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    hints_.outputs.insert(hints_.outputs.end(), indices.begin(), indices.end());
    return VELLOR_OK;
}

std::uint32_t Handle::pushInput(std::uint32_t flags, std::uint32_t input, std::uint32_t type,
                                const void* value, void* user)
{
    if (input >= package_->program().inputs.size())
        return VELLOR_ERROR_UNKNOWN_INDEX;
    if (flags & VELLOR_PUSH_HINT) {
        const std::lock_guard<std::mutex> lock(mutex_);
        hints_.inputs.push_back(input);
        return VELLOR_OK;
    }
    if (type != static_cast<std::uint32_t>(package_->program().inputs[input].type))
        return VELLOR_ERROR_TYPE;
    SetInput command{input, {}};
    const std::uint32_t result = makeValue(input, value, user, command.value);
    if (result == VELLOR_OK)
        push(std::move(command));
    return result;
}

std::uint32_t Handle::makeValue(std::uint32_t input, const void* value, void* user, InputValue& into) const
{
    switch (package_->program().inputs[input].type) {
    case program::ValueType::Image: {
        into.user = user;
        const auto* texture = static_cast<const VellorTexture*>(value);
        if (!texture || !texture->buffer || !texture->width || !texture->height)
            return VELLOR_OK;
        into.image = HostImage::copy(*texture);
        return into.image ? VELLOR_OK : VELLOR_ERROR_NOT_SUPPORTED;
    }
    case program::ValueType::String: {
        const auto* text = static_cast<const char32_t*>(value);
        into.text = std::make_shared<std::u32string>(text ? std::u32string(text) : std::u32string());
        return VELLOR_OK;
    }
    default:
        if (!value)
            return VELLOR_ERROR_INVALID_ARGUMENT;
        std::memcpy(into.words.data(), value,
                    sizeof(std::uint32_t) * static_cast<std::size_t>(program::componentCount(
                                                package_->program().inputs[input].type)));
        return VELLOR_OK;
    }
}

std::uint32_t Handle::pushLabel(std::uint32_t label)
{
    push(Label{label});
    return VELLOR_OK;
}

void Handle::push(Command command)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    queue_.push_back(std::move(command));
}

std::uint32_t Handle::flush()
{
    dropQueue();
    return VELLOR_OK;
}

/// Drops all but the values of inputs. While a generation runs these wait in the queue: it must not see them.
void Handle::dropQueue()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    hints_ = Hints();
    std::deque<Command> values;
    for (Command& command : queue_)
        if (std::holds_alternative<SetInput>(command))
            values.push_back(std::move(command));
    queue_ = std::move(values);
}

std::uint32_t Handle::start()
{
    if (running_.exchange(true))
        return VELLOR_ERROR_BUSY;
    stop_ = abandoned_.load();
    struct Idle
    {
        Handle& handle;
        ~Idle()
        {
            handle.profiler_ = nullptr;
            handle.running_ = false;
        }
    } const idle{*this};
    nodes::limitInstructionSet(resources_.instructionSet());
    Profiler profiler(self(), profile_, profileUser_);
    profiler_ = profile_ ? &profiler : nullptr;
    return runQueue();
}

std::uint32_t Handle::runQueue()
{
    Hints hints;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        hints = std::exchange(hints_, Hints());
    }
    std::uint32_t result = VELLOR_OK;
    for (;;) {
        if (stop_ || result != VELLOR_OK)
            dropQueue();
        Command command = Label{label_};
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            if (queue_.empty())
                return result;
            command = std::move(queue_.front());
            queue_.pop_front();
        }
        if (auto* set = std::get_if<SetInput>(&command))
            inputs_.set(set->input, std::move(set->value));
        else if (auto* compute = std::get_if<Compute>(&command))
            result = execute(*compute, hints);
        else
            label_ = std::get<Label>(command).label;
    }
}

std::uint32_t Handle::execute(const Compute& compute, const Hints& hints)
{
    Monitor monitor(stop_, [this](std::uint32_t current, std::uint32_t total) { report(current, total); });
    const GenerationContext context{
        *package_,
        inputs_,
        values_,
        store_,
        *context_->pool,
        context_->threads,
        monitor,
        resources_,
        [this](std::uint32_t input, int width, int height) { return picture(input, width, height); },
        [this, &compute](int output, Result result) { deliver(output, std::move(result), compute.user); },
        profiler_};
    return Generation(context, hints).run(compute.outputs);
}

std::shared_ptr<const HostImage> Handle::picture(std::uint32_t input, int width, int height)
{
    Asked& asked = asked_[input];
    if (asked.serial == inputs_.serial(input) && asked.width == width && asked.height == height)
        return asked.image;
    const InputValue& value = inputs_.value(input);
    asked = {inputs_.serial(input), width, height, value.image};
    if (context_->callbacks.imageInput && !abandoned_) {
        VellorImageRequest request{};
        request.width = static_cast<std::uint32_t>(width);
        request.height = static_cast<std::uint32_t>(height);
        request.pixelFormat = VELLOR_FORMAT_RGBA | VELLOR_FORMAT_8BITS;
        request.mipmapsCount = 1;
        void* slot = value.user;
        context_->callbacks.imageInput(self(), input, package_->program().inputs[input].uid, &slot, &request);
        // Left alone, the slot is the host's own data, which means nothing here.
        if (slot && slot != value.user)
            asked.image = HostImage::copy(*static_cast<const VellorTexture*>(slot), &stop_);
        if (stop_) // it may be missing for that alone: ask again next time
            asked.serial = 0;
    }
    return asked.image;
}

void Handle::report(std::uint32_t current, std::uint32_t total)
{
    if (!context_->callbacks.progress || abandoned_ || reporting_)
        return;
    reporting_ = true;
    context_->callbacks.progress(self(), current, total);
    reporting_ = false;
}

void Handle::deliver(int output, Result result, void* user)
{
    results_[output] = std::move(result);
    if (context_->callbacks.outputComplete && !abandoned_)
        context_->callbacks.outputComplete(self(), static_cast<std::uint32_t>(output), user);
    results_[output].image.reset();
}

std::uint32_t Handle::outputs(std::uint32_t flags, std::uint32_t output, std::uint32_t count, void* out)
{
    if (count != 1)
        return VELLOR_ERROR_INVALID_ARGUMENT;
    if (output >= results_.size())
        return VELLOR_ERROR_UNKNOWN_INDEX;
    const program::ValueType type = package_->program().outputs[output].type;
    const bool numeric = (flags & VELLOR_FETCH_NUMERIC) != 0;
    if (numeric != (type != program::ValueType::Image))
        return VELLOR_ERROR_TYPE;
    const Result& result = results_[output];
    if (!result.available)
        return VELLOR_ERROR_NOT_COMPUTED;
    if (!numeric)
        return fetchImage(static_cast<int>(output), *static_cast<VellorTexture*>(out));
    std::memcpy(out, result.words.data(),
                sizeof(std::uint32_t) * static_cast<std::size_t>(program::componentCount(type)));
    return VELLOR_OK;
}

std::uint32_t Handle::fetchImage(int output, VellorTexture& texture)
{
    const program::Output& described = package_->program().outputs[output];
    std::shared_ptr<const Image> image = results_[output].image;
    if (!image)
        image = store_.get(results_[output].key);
    if (!image)
        return VELLOR_ERROR_NOT_COMPUTED;
    const int levels = std::clamp<int>(described.mipmaps, 1, levelCount(image->width(), image->height()));
    const std::size_t size = outputBytes(described.pixelFormat, image->width(), image->height(), levels);
    void* buffer = context_->callbacks.allocate(size);
    if (!buffer)
        return VELLOR_ERROR_OUT_OF_MEMORY;
    const Stopwatch watch;
    std::uint64_t scratchBytes = 0;
    bool whole = false;
    try {
        whole = writeLevels(described, image, levels, static_cast<std::uint8_t*>(buffer), scratchBytes);
    } catch (...) {
        context_->callbacks.free(buffer);
        throw;
    }
    if (!whole) {
        context_->callbacks.free(buffer);
        return VELLOR_ERROR_NOT_COMPUTED;
    }
    if (profiler_)
        profiler_->output(*image, size, scratchBytes, watch, store_.liveBytes());
    texture = VellorTexture();
    texture.buffer = buffer;
    texture.width = static_cast<std::uint16_t>(image->width());
    texture.height = static_cast<std::uint16_t>(image->height());
    texture.pixelFormat = described.pixelFormat;
    texture.channelOrder = VELLOR_ORDER_RGBA;
    return VELLOR_OK;
}

/// False: stopped before the end.
bool Handle::writeLevels(const program::Output& output, std::shared_ptr<const Image> image, int levels,
                         std::uint8_t* out, std::uint64_t& scratchBytes)
{
    const std::atomic<bool> never{false};
    Monitor silent(running_ ? stop_ : never, [](std::uint32_t, std::uint32_t) {});
    Resources resources = resources_;
    if (reporting_)
        resources.threads = 1;
    const auto overRows = [&](const Image& rowsOf, const RowBody& body) {
        return RowLoop{context_->threads, silent, resources, rowsOf.height(), rowsOf.width(), 0}.run(body);
    };
    if (image->shape().packed)
        return overRows(*image, [&](int y0, int y1, int) { copyPixels(*image, y0, y1, out); });
    for (int level = 0; level < levels; ++level) {
        if (level > 0) {
            const auto half = store_.make(
                {std::max(1, image->width() / 2), std::max(1, image->height() / 2), image->channels()});
            scratchBytes += half->byteSize();
            if (!overRows(*half, [&](int y0, int y1, int) {
                    halveRows(image->view(), y0, y1, half->mutableView());
                }))
                return false;
            image = half;
        }
        if (!overRows(*image, [&](int y0, int y1, int) {
                convertRows(image->view(), output.pixelFormat, y0, y1, out);
            }))
            return false;
        out += outputBytes(output.pixelFormat, image->width(), image->height(), 1);
    }
    return true;
}

std::uint32_t Handle::setProfile(VellorProfileCallback callback, void* user)
{
    if (running_)
        return VELLOR_ERROR_BUSY;
    profile_ = callback;
    profileUser_ = user;
    return VELLOR_OK;
}

std::uint32_t Handle::switchHard(const Resources& resources)
{
    if (running_)
        return VELLOR_ERROR_BUSY;
    resources_ = resources;
    store_.setBudget(resources_.memoryBudget);
    store_.setTransient((resources_.flags & VELLOR_CPU_COMPUTE_ONCE) != 0);
    return VELLOR_OK;
}

std::uint32_t Handle::transferCache(Handle& from)
{
    if (&from == this || from.context_ != context_)
        return VELLOR_ERROR_INVALID_ARGUMENT;
    if (running_ || from.running_)
        return VELLOR_ERROR_BUSY;
    store_.takeFrom(from.store_);
    return VELLOR_OK;
}

void Handle::abandon()
{
    abandoned_ = true;
    stop_ = true;
}

} // namespace vellor::cpu
