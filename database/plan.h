// The plan of a commit: which instances it evaluates, and in what order.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
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

/// How many instances one commit may re-evaluate by itself. Each takes some hundred bytes.
constexpr uint64_t MAX_PLANNED_INSTANCES = 1'000'000;

/// What it takes to evaluate all instances of some parameters.
struct Extent {
  uint64_t instances = 0;
  uint64_t work = 0;  ///< in units, beside what is done to texts; at most
};
Extent extentOf(Database& database, std::span<ParmEntry* const> parms);
/// What it takes to evaluate one instance of `entry`, in units, but for the situations of indices
/// that are the same for all instances.
uint64_t workOfInstance(const ParmEntry& entry);

/// Which limit of a commit `extent` passes, MAX_PLANNED_INSTANCES or what the request may still
/// take of work, in words for the system log; empty where it passes none.
std::string limitPassedBy(const Extent& extent);

/// Every parameter that depends on one of `open`, each once, in the order of a plan.
std::vector<ParmEntry*> dependentsOf(Database& database, std::vector<ParmEntry*> open);

/// Plans the commit of what is staged: each staged entry at its parameter's level, or at level 0
/// when nothing depends on the parameter, and every instance of every parameter that depends on a
/// staged one, directly or through others, at its level. Instances that nobody staged are staged
/// with their committed value. nullopt when that passes a limit; nobody is staged then, and the
/// system log says why.
std::optional<Plan> planCommit(Database& database, StagedValues& staged);
