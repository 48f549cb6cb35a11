// The plan of a commit: which instances it evaluates, and in what order.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "database/staged_values.h"

struct PlanStep {
  uint32_t level;
  uint32_t rank;  ///< of the parameter, in name order
  StagedEntry* entry;
};

/// The steps in ascending order of level, then of base name, then of index values.
using Plan = std::vector<PlanStep>;

/// Puts the steps of a plan in order and drops repetitions.
void sortPlan(Plan& plan);

/// The steps of the plan's first level and, in `rest`, those of the levels after it.
std::span<const PlanStep> firstLevel(std::span<const PlanStep> plan,
                                     std::span<const PlanStep>& rest);

/// How many instances one commit may re-evaluate by itself. Each takes some hundred bytes and some
/// microseconds, during which nobody else is served.
constexpr uint64_t MAX_PLANNED_INSTANCES = 1'000'000;

/// Plans the commit of what is staged: each staged entry at its parameter's level, or at level 0
/// when nothing depends on the parameter, and every instance of every parameter that depends on a
/// staged one, directly or through others, at its level. Instances that nobody staged are staged
/// with their committed value. Nothing when those would be more than MAX_PLANNED_INSTANCES; nobody
/// is staged then.
std::optional<Plan> planCommit(Database& database, StagedValues& staged);
