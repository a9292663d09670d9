#include "platform/program/recordpool.h"

#include "platform/program/sections.h"

#include <utility>

namespace vellor::program {

namespace {

template<typename Record>
std::int32_t add(std::map<std::string, std::int32_t>& known, std::string key, std::vector<Record>& records,
                 Record record)
{
    const auto [entry, isNew] = known.emplace(std::move(key), static_cast<std::int32_t>(records.size()));
    if (isNew)
        records.push_back(std::move(record));
    return entry->second;
}

} // namespace

std::int32_t RecordPool::value(ValueProgram value)
{
    std::string key = recordKey(value);
    return add(m_values, std::move(key), m_program.values, std::move(value));
}

std::int32_t RecordPool::blob(std::vector<std::uint8_t> bytes)
{
    std::string key(bytes.begin(), bytes.end());
    return add(m_blobs, std::move(key), m_program.blobs, std::move(bytes));
}

std::int32_t RecordPool::node(Node node)
{
    std::string key = recordKey(node);
    return add(m_nodes, std::move(key), m_program.nodes, std::move(node));
}

} // namespace vellor::program
