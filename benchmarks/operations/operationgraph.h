#pragma once

// Node kinds at work in the engine's own stages, from planes to planes: what the engine does between its
// inputs and its outputs, without a package, a host or a conversion of pixels.

#include "platform/engines/cpu/imagestore.h"
#include "platform/engines/cpu/monitor.h"
#include "platform/engines/cpu/plan.h"
#include "platform/engines/cpu/resources.h"
#include "platform/engines/cpu/schedule.h"
#include "platform/engines/cpu/threadpool.h"

#include <array>
#include <atomic>
#include <functional>
#include <string>
#include <vector>

/// What a parameter is set to, by its name: numbers, or the floats of a curve or gradient.
struct Setting
{
    Setting(const char* name, double number) : name(name), numbers{number, number, number, number} {}
    Setting(const char* name, std::array<double, 4> numbers) : name(name), numbers(numbers) {}
    Setting(const char* name, std::vector<float> values) : name(name), blob(std::move(values)) {}

    std::string name;
    std::array<double, 4> numbers{};
    std::vector<float> blob;
};

/// A graph of one size. Pictures and nodes are known by the numbers that adding them gives. One thread.
class OperationGraph
{
public:
    OperationGraph(int width, int height, int threads);

    /// The value of a pixel's channel, 0 to 1 in each direction.
    using Fill = std::function<float(int x, int y, int channel)>;
    int addPicture(int channels, const Fill& fill);
    /// A raw picture of the graph's size in a host's format, which is unpacked anew in each run. A copy.
    int addPacked(std::uint8_t format, const void* pixels);
    /// What an output in a host's raw format shows: the pixels of a node. Nothing but the end of runs.
    int addOutput(std::uint8_t format, int node);
    /// A node of a kind with operands in the order of its declaration; -1 leaves one out. Unknown names end
    /// the program.
    int addNode(const char* kind, int channels, const std::vector<int>& operands,
                const std::vector<Setting>& settings = {});
    /// How many threads the next run uses; 0: one for each processor.
    void setThreads(int threads) { m_resources.threads = static_cast<std::uint32_t>(threads); }
    void setFlags(std::uint32_t flags) { m_resources.flags = flags; }

    /// Computes a node with nothing kept from before but the pictures, in memory that an earlier run has
    /// touched.
    void run(int node);
    /// Writes the result of the last run, planes or an output in this raw format, to where a host wants it.
    void fetch(std::uint8_t format, void* pixels);
    /// The same, as long as nobody calls stop; whether it came to its end.
    bool tryRun(int node);
    /// Any thread. Counts from the start of a run on.
    void stop() { m_stop = true; }
    /// The result of the last run.
    std::shared_ptr<const vellor::cpu::Image> result() const { return m_result; }

private:
    void markCompute(int node);

    vellor::cpu::Callbacks m_callbacks{};
    vellor::cpu::CacheStore m_noStore;
    std::shared_ptr<vellor::cpu::BufferPool> m_pool;
    vellor::cpu::ImageStore m_store;
    vellor::cpu::ThreadPool m_threads;
    vellor::cpu::Resources m_resources;
    vellor::cpu::Plan m_plan;
    std::vector<std::shared_ptr<const vellor::cpu::Image>> m_pictures; // by node; null: computed
    std::vector<std::unique_ptr<std::vector<float>>> m_blobs;
    std::shared_ptr<const vellor::cpu::Image> m_result;
    std::atomic<bool> m_stop{false};
    int m_width, m_height;
};
