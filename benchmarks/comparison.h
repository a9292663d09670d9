#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <ctime>
#include <string>
#include <vector>

/// What some work took, in milliseconds: on the clock, and of all processors together. Other programs make
/// the first longer and hardly change the second.
struct Span
{
    double clock = 0, processor = 0;

    Span operator+(const Span& other) const { return {clock + other.clock, processor + other.processor}; }
};

/// A figure and what it is held against, measured turn by turn in one run, so that a busy machine slows both.
///
/// Reported are medians: the counters "ms" and "processor_ms" of the figure, "beside" and "beside_processor"
/// of its rival, and one "part ..." for each part. The label says what the rival is.
class Comparison
{
public:
    Comparison(benchmark::State& state, std::string rival) : m_state(state), m_rival(std::move(rival)) {}
    ~Comparison() { report(); }
    Comparison(const Comparison&) = delete;
    Comparison& operator=(const Comparison&) = delete;

    void add(const Span& figure, const Span& rival);
    void setRival(std::string rival) { m_rival = std::move(rival); }
    void addPart(const std::string& name, const Span& part);

    template<class Work> static Span time(Work&& work)
    {
        using Clock = std::chrono::steady_clock;
        const auto start = Clock::now();
        const std::clock_t startProcessor = std::clock();
        work();
        return {std::chrono::duration<double, std::milli>(Clock::now() - start).count(),
                1000.0 * double(std::clock() - startProcessor) / CLOCKS_PER_SEC};
    }

private:
    struct Part
    {
        std::string name;
        std::vector<Span> times;
    };
    void report();

    benchmark::State& m_state;
    std::string m_rival;
    std::vector<Span> m_times, m_rivals;
    std::vector<Part> m_parts;
};
