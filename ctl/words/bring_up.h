// Bringing a device up: defaults and known values, level by level.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "ctl/words/client.h"
#include "ctl/words/levels.h"

/// What became of a device.
struct BroughtUp {
  uint32_t transaction = 0;  ///< in which all was done
  size_t instances = 0;
  size_t empty = 0;  ///< that have no default and nothing that fills them
  Names restless;    ///< of rings that did not come to rest
  std::vector<Refusal> refusedDefaults;
  std::vector<Refusal> refusedValues;
};

/// Brings a device up, once. Each level is reset in a commit of its own, then gets the known values
/// in another. Parameters that depend on each other are a ring, which is on one level: they are
/// reset again, one by one, until a round changes nothing.
class BringUp {
 public:
  BringUp(Service& service, const Levels& levels, const std::vector<Assignment>& known);

  BroughtUp run();

 private:
  void resetLevel(const Names& bases);
  void reset(const Names& names);
  Names movedBy(const Names& names);
  void settleRings(const Names& bases);
  bool resetMovesAny(const Names& ring);
  Names ringsOf(const Names& bases, const Names& moved);
  void resetLateOnes();
  bool fillZeros(const std::vector<InstanceState>& empty);
  std::vector<InstanceState> emptyOnes();

  Service& service_;
  const Levels& levels_;
  const std::map<uint32_t, std::vector<Assignment>> known_;
  const OwnTransaction transaction_;
  std::set<std::string, std::less<>> refused_;  // by the last reset of all
  std::set<std::string, std::less<>> done_;     // whatever has been reset
  BroughtUp result_;
};
