#pragma once

// How a plan is carried out: in stages, each of which reads whole pictures and writes whole pictures.
//
// A stage is one area node, or a group of point nodes of one size that are connected and run together strip
// by strip. In a group only those results become whole pictures that somebody outside it reads; the others
// live for a row in cache.
//
// Grouping never makes a cycle: each node has a level, which rises behind every area node, and a group holds
// nodes of one level. A path that left a group and came back would have risen on the way. Nodes that read
// nothing have no such path behind them: they take the level of their first reader.

#include "platform/engines/cpu/plan.h"

#include <cstdint>
#include <vector>

namespace vellor::cpu {

struct Stage
{
    std::vector<int>
        nodes; // of the plan, in dependency order; a single one that is no point node, or point nodes
    std::vector<int> reads;  // nodes whose whole pictures the stage reads, each once
    std::vector<int> writes; // nodes of the stage that become whole pictures
    std::uint64_t work = 0;  // units for the monitor
};

struct Schedule
{
    std::vector<Stage> stages;     // in an order that finishes the plan's roots one after the other
    std::vector<int> stagesBefore; // by root: how many of the stages must be done before it is there
    std::vector<int> uses;         // by node of the plan: how many stages and roots read its whole picture
    std::uint64_t work = 0;
};

/// `fuse`: whether point nodes share stages at all.
Schedule makeSchedule(const Plan& plan, bool fuse);

/// The measure of work that stages and monitor share.
std::uint64_t workOf(const PlanNode& node);

} // namespace vellor::cpu
