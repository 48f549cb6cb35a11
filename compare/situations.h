// Situations compared: what may be set, and what the defaults are, on devices of both texts that
// were led the same way.
#pragma once

#include <string>

#include "compare/difference.h"
#include "doc/model.h"
#include "play/device.h"

/// A text to compare, and the devices that it defines.
struct ComparedText {
  const std::string& text;
  const DocModel& model;
  const StartDevice& start;
};

/// How much is tried.
struct SituationBudget {
  size_t steps = 3000;          ///< commits on each of both devices
  size_t observations = 60000;  ///< instances that are looked at on each of them
};

/// Leads a device of each text, with `constants`, through the same situations: brought up, then
/// each parameter that others follow with each value that makes a difference in either text, then
/// several of them at random, the same each time. Adds the first difference of each kind for each
/// parameter that both have with the same indices: ranges that have become narrower, values that
/// need no longer be refused, instances that no longer exist, other defaults; each with the
/// shortest way there that was found. Raises std::bad_alloc where memory is exhausted.
void compareSituations(const ComparedText& old, const ComparedText& now,
                       const PlayConstants& constants, const SituationBudget& budget,
                       Differences& differences);
