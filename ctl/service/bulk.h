// Bulk: values and defaults by the thousand, each list staged and committed in one round trip.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ctl/service/service.h"

/// What the service said to a list; no text where it had nothing to say against it.
struct BulkAnswer {
  std::optional<std::string> staging;  ///< of the first that was not staged; the others are
  std::optional<std::string> commit;

  [[nodiscard]] bool isDone() const { return !staging && !commit; }
};

/// Stages the defaults and commits. What a transaction has staged is gone afterwards.
BulkAnswer commitDefaults(Service& service, uint32_t transaction, const Names& names,
                          bool isStatus);
/// Stages the values and commits.
BulkAnswer commitValues(Service& service, uint32_t transaction,
                        const std::vector<Assignment>& assignments, bool isStatus);

/// Stages the values, and returns those that are refused at once.
std::vector<Refusal> stageValues(Service& service, uint32_t transaction,
                                 const std::vector<Assignment>& assignments, bool isStatus);

/// Stages those of the values that are not refused at once.
void stageTaken(Service& service, uint32_t transaction, const std::vector<Assignment>& assignments,
                bool isStatus);

/// Commits each of the defaults by itself, so that none keeps another from it. Returns those that
/// are refused.
std::vector<Refusal> commitDefaultsAlone(Service& service, uint32_t transaction,
                                         const Names& names);
