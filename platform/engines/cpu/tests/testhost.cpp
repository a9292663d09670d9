#include "platform/engines/cpu/tests/testhost.h"

#include "platform/engines/cpu/entrypoints.h"
#include "platform/engines/cpu/outputconverter.h"

#include <cstdlib>
#include <cstring>
#include <utility>

namespace vellor::cpu::testing {
namespace {

std::map<VellorHandle*, TestHost*>& hosts()
{
    static std::map<VellorHandle*, TestHost*> hosts;
    return hosts;
}

TestHost* allocating = nullptr; // the callbacks for memory are given no handle

void* allocate(std::uint64_t size, std::uint64_t alignment)
{
    void* block = nullptr;
    if (allocating)
        ++allocating->allocations;
    return posix_memalign(&block, alignment, size) == 0 ? block : nullptr;
}

void release(void* block)
{
    std::free(block);
}

template<class Function> VellorFunction function(Function* pointer)
{
    return reinterpret_cast<VellorFunction>(pointer);
}

} // namespace

TestHost::TestHost(program::Program program, Resources resources, KindLookup kinds)
{
    VellorDevice device{};
    vellorContextInitImpl(&context_, &device, VELLOR_API_VERSION, 0);
    context_->kinds = std::move(kinds);
    registerCallbacks();
    initResult_ = makeHandle(&handle_, *context_, std::move(program), resources);
    hosts()[handle_] = this;
    allocating = this;
}

TestHost::~TestHost()
{
    release();
    allocating = nullptr;
}

void TestHost::release()
{
    if (handle_) {
        hosts().erase(handle_);
        vellorHandleRelease(handle_);
    }
    handle_ = nullptr;
    if (context_)
        vellorContextRelease(context_);
    context_ = nullptr;
}

TestHost& TestHost::of(VellorHandle* handle)
{
    TestHost& host = *hosts().at(handle);
    host.foreignThread += std::this_thread::get_id() != host.thread_;
    return host;
}

void TestHost::registerCallbacks()
{
    vellorContextSetCallback(context_, VELLOR_CALLBACK_OUTPUT_COMPLETE,
                             function(+[](VellorHandle* handle, std::uint32_t output, void* user) {
                                 TestHost& host = of(handle);
                                 host.completed.push_back(output);
                                 host.fetchErrors += user != &host;
                                 host.fetch(output);
                                 if (host.onComplete)
                                     host.onComplete(output);
                             }));
    vellorContextSetCallback(context_, VELLOR_CALLBACK_PROGRESS,
                             function(+[](VellorHandle* handle, std::uint32_t current, std::uint32_t total) {
                                 TestHost& host = of(handle);
                                 host.progress.emplace_back(current, total);
                                 if (host.onProgress)
                                     host.onProgress(current);
                             }));
    vellorContextSetCallback(context_, VELLOR_CALLBACK_IMAGE_INPUT,
                             function(+[](VellorHandle* handle, std::uint32_t input, std::uint32_t,
                                          void** image, const VellorImageRequest* request) {
                                 if (of(handle).onImageInput)
                                     of(handle).onImageInput(input, image, *request);
                             }));
    auto* store = +[](VellorHandle* handle, std::uint32_t flags, std::uint32_t entry, char* buffer,
                      std::uint64_t size) {
        TestHost& host = of(handle);
        if (flags & VELLOR_CACHE_WRITE) {
            host.store[entry].assign(buffer, buffer + size);
            ++host.parked;
        } else if (flags & VELLOR_CACHE_READ) {
            const auto& kept = host.store.at(entry);
            std::memcpy(buffer, kept.data(), kept.size());
            if (host.damageStore)
                buffer[size / 2] ^= 1;
            ++host.readBack;
        }
        if (flags & VELLOR_CACHE_REMOVE) {
            host.store.erase(entry);
            ++host.removed;
        }
    };
    vellorContextSetCallback(context_, VELLOR_CALLBACK_CACHE_STORE, keepStore ? function(store) : nullptr);
    vellorContextSetCallback(context_, VELLOR_CALLBACK_ALLOCATION, function(&allocate));
    vellorContextSetCallback(context_, VELLOR_CALLBACK_RELEASE, function(&testing::release));
}

void TestHost::fetch(std::uint32_t output)
{
    VellorOutputDesc desc{};
    vellorHandleGetOutputDesc(handle_, output, &desc);
    if (desc.type != VELLOR_TYPE_IMAGE) {
        fetchErrors +=
            vellorHandleGetOutputs(handle_, VELLOR_FETCH_NUMERIC, output, 1, numbers[output].data()) != 0;
        return;
    }
    VellorTexture texture{};
    if (vellorHandleGetOutputs(handle_, 0, output, 1, &texture) != 0) {
        ++fetchErrors;
        return;
    }
    const auto* bytes = static_cast<const std::uint8_t*>(texture.buffer);
    const int levels = std::min<int>(desc.mipmapsCount, levelCount(texture.width, texture.height));
    pictures[output].assign(bytes,
                            bytes + outputBytes(texture.pixelFormat, texture.width, texture.height, levels));
    textures[output] = texture;
    std::free(texture.buffer);
}

void TestHost::setFloat(std::uint32_t input, float value)
{
    const float words[4] = {value, 0, 0, 0};
    vellorHandlePushSetInput(handle_, 0, input, VELLOR_TYPE_FLOAT, words, nullptr);
}

void TestHost::push(std::vector<std::uint32_t> uids, std::uint32_t flags)
{
    vellorHandlePushOutputs(handle_, flags, uids.data(), static_cast<std::uint32_t>(uids.size()), this);
}

std::uint32_t TestHost::compute(std::vector<std::uint32_t> uids)
{
    push(std::move(uids));
    return start();
}

std::vector<float> TestHost::floats(std::uint32_t output) const
{
    const auto& bytes = pictures.at(output);
    std::vector<float> values(bytes.size() / sizeof(float));
    std::memcpy(values.data(), bytes.data(), bytes.size());
    return values;
}

} // namespace vellor::cpu::testing
