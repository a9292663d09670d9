#include "benchmarks/comparison.h"

#include <algorithm>

namespace {

double median(const std::vector<Span>& spans, double Span::*which)
{
    std::vector<double> times;
    for (const Span& span : spans)
        times.push_back(span.*which);
    const auto middle = times.begin() + std::ptrdiff_t(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

} // namespace

void Comparison::add(const Span& figure, const Span& rival)
{
    m_state.SetIterationTime(figure.clock / 1000.0);
    m_times.push_back(figure);
    m_rivals.push_back(rival);
}

void Comparison::addPart(const std::string& name, const Span& time)
{
    auto part =
        std::find_if(m_parts.begin(), m_parts.end(), [&](const Part& other) { return other.name == name; });
    if (part == m_parts.end())
        part = m_parts.insert(part, {name, {}});
    part->times.push_back(time);
}

void Comparison::report()
{
    if (m_times.empty())
        return;
    m_state.counters["ms"] = median(m_times, &Span::clock);
    m_state.counters["processor_ms"] = median(m_times, &Span::processor);
    m_state.counters["beside"] = median(m_rivals, &Span::clock);
    m_state.counters["beside_processor"] = median(m_rivals, &Span::processor);
    for (const Part& part : m_parts)
        m_state.counters["part " + part.name] = median(part.times, &Span::clock);
    m_state.SetLabel(m_rival);
}
