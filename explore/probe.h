// The probe: walks on a device, and looks after each commit whether what always has to hold does.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "explore/device_names.h"
#include "explore/walk.h"
#include "play/device.h"

/// What always has to hold.
enum Property {
  PROPERTY_LIMITS,   ///< each value that exists is one that the device would take now
  PROPERTY_REPEAT,   ///< the same commit once more changes nothing
  PROPERTY_TRIAL,    ///< "try" says what the commit does
  PROPERTY_START,    ///< what has a default is not empty when the device is up
  PROPERTY_REFUSAL,  ///< what set takes, of an instance with a range, the commit takes too
  PROPERTY_ORDER,    ///< a commit does the same before and after one that it does not depend on
};

/// Something that does not hold.
struct Fault {
  Property property = PROPERTY_LIMITS;
  std::string name = {};      ///< the full name that shows it
  std::string failed = {};    ///< the base name of the parameter whose value is not as it shall be
  std::string text = {};      ///< a sentence
  std::string value = {};     ///< of PROPERTY_LIMITS: what the instance holds
  std::string expected = {};  ///< behind the arrow of the operation that shows it
  std::optional<WalkStep> other = {};  ///< of PROPERTY_ORDER: what was tried before and after
};

/// What depends on what on a device, by base names.
class DependencyMap {
 public:
  /// Asks `device`, of which `known` is known.
  DependencyMap(Device& device, const KnownDevice& known);

  /// What `parm` depends on, also through others.
  [[nodiscard]] const std::set<std::string>& dependencies(const std::string& parm) const;
  /// Whether nothing depends on both, and neither on the other. Never where the device could not
  /// tell all dependencies, which may be too many for a reply.
  [[nodiscard]] bool areIndependent(const std::string& parm, const std::string& other) const;

 private:
  std::map<std::string, std::set<std::string>> dependencies_;
  std::map<std::string, std::set<std::string>> reached_;  // what depends on it, and itself
  bool isWhole_ = true;
};

/// Walks on one device, from its start.
class Probe {
 public:
  /// `device` has just been started; both outlive the probe.
  Probe(Device& device, const DeviceNames& names);
  Probe(const Probe&) = delete;
  Probe& operator=(const Probe&) = delete;

  /// Brings the device up. Returns what does not hold then.
  std::optional<Fault> bringUp(KnownDevice known);
  /// Stages and commits. Returns what does not hold then. Of `other`, which is independent, the
  /// outcome is tried before and after; null where that is not asked.
  std::optional<Fault> commit(const WalkStep& step, const WalkStep* other);
  /// The same, and looks at nothing.
  void bringUpOnly(KnownDevice known);
  void replay(const WalkStep& step);
  /// Looks at all instances, where they are listed.
  std::optional<Fault> look();

  /// How many steps were committed: what set refuses is not.
  [[nodiscard]] uint64_t commits() const { return commits_; }

 private:
  using Texts = std::vector<std::string>;
  struct Change {
    std::string name;  // empty where it is none that can be said
    std::string value;
  };

  Answer stage(uint32_t id, const WalkStep& step);
  Answer tryAlone(const WalkStep& step);
  std::string valueOf(const std::string& name);
  [[nodiscard]] Change changeIn(const std::string& change) const;
  void renew(uint32_t& id);
  std::optional<Fault> checkLimits(const Texts& names);
  std::optional<Fault> checkLimit(const std::string& name);
  std::optional<Fault> checkRepeat(const WalkStep& step, const Answer& done);
  std::optional<Fault> checkStart(const std::vector<std::string>& restless);

  Device& device_;
  const DeviceNames& names_;
  uint32_t work_;     // what is committed
  uint32_t scratch_;  // what is only tried
  bool isUp_ = false;
  uint64_t commits_ = 0;
};
