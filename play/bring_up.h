// The recipe that brings a device up, as ostrel(1) tells it. It sees the device only through what a
// client of the bus can ask and do, so that one recipe serves devices with a bus and those without.
//
//   BringUp recipe(client, known);  // asks for the dependencies
//   recipe.run();                   // writes
//   EXPECT_TRUE(recipe.restless().empty());
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

/// What a client asks of a device and does to it. Each call that writes is a commit of its own.
class DeviceClient {
 public:
  using Names = std::vector<std::string>;

  DeviceClient() = default;
  virtual ~DeviceClient() = default;
  DeviceClient(const DeviceClient&) = delete;
  DeviceClient& operator=(const DeviceClient&) = delete;

  /// get_deps of a base name: all names that it depends on, also through others.
  virtual Names dependencies(const std::string& parm) = 0;
  /// get_parm_idx of a base name: its indices that are valid now.
  virtual Names presentIndices(const std::string& parm) = 0;
  /// get_idx_range of an index: its present values, each number of a span by itself.
  virtual Names indexValues(const std::string& index) = 0;
  /// reset_status_bulk and commit. Returns whether the commit succeeded.
  virtual bool reset(const Names& names) = 0;
  /// set_status and commit. Whether they succeed is not told: the recipe goes on either way.
  virtual void set(const std::string& name, const std::string& value) = 0;
  /// get_bulk: the values in the order of `names`, as many as these.
  virtual Names values(const Names& names) = 0;
  /// Whether get_range answers with the number 0 and no other value.
  virtual bool allowsOnlyZero(const std::string& name) = 0;
};

/// What the author of a definition text knows of the device.
struct KnownDevice {
  using Names = DeviceClient::Names;
  std::map<std::string, Names> parms;    ///< base names, each with its indices in their order
  std::map<std::string, Names> indices;  ///< names, each with the values of its constant range
  /// The indices whose statements look at the index values of an instance.
  std::set<std::string> variedIndices;
  std::set<std::string> replacingZero;            ///< the parameters with a valueChange of 0
  std::map<std::string, std::string> lastValues;  ///< by full name: what is known from before
};

/// What is before the first "[" of a name.
inline std::string baseNameOf(const std::string& name) { return name.substr(0, name.find('[')); }

/// Brings one device up, once: first the parameters that depend on no others, then step by step
/// those whose dependencies are done. Parameters that depend on each other are a ring: they are
/// done in one step, and again until a round changes no value.
class BringUp {
 public:
  using Names = DeviceClient::Names;

  /// After that many rounds, a ring is taken to be one that never comes to rest.
  static constexpr size_t MOST_ROUNDS = 10;

  /// Asks `client`, which has to outlive the recipe, for the dependencies of all parameters.
  BringUp(DeviceClient& client, KnownDevice device) : client_(client), device_(std::move(device)) {
    for (const auto& [parm, indices] : device_.parms) parms_.push_back(parm);
    for (const std::string& parm : parms_) {
      dependencies_[parm] = parmsAmong(client_.dependencies(parm));
    }
  }

  /// Does all steps: resets, settles rings, sets the last values, and fills zeros at the end.
  void run() {
    std::set<std::string> done;
    while (done.size() < parms_.size()) {
      const Names step = nextStep(done);
      done.insert(step.begin(), step.end());
      ++steps_;
      resetStep(step);
      resetVaried(step);
      settleRings(step);
      setLastValues(step);
    }
    fillZeros();
  }

  /// The full names of all instances that exist now, as the index queries tell.
  Names instances() { return instancesOf(parms_); }

  /// How many steps run() took.
  [[nodiscard]] size_t steps() const { return steps_; }
  /// The most rounds that a step took for its rings, the round that changed no value included; 0
  /// without rings.
  [[nodiscard]] size_t rounds() const { return rounds_; }
  /// The parameters of rings that did not come to rest.
  [[nodiscard]] const std::set<std::string>& restless() const { return restless_; }

 private:
  [[nodiscard]] std::set<std::string> parmsAmong(const Names& names) const {
    std::set<std::string> parms;
    for (const std::string& name : names) {
      if (device_.parms.contains(baseNameOf(name))) parms.insert(baseNameOf(name));
    }
    return parms;
  }

  // Whether `parm`, which depends on `other`, is `other` itself or in a ring with it.
  [[nodiscard]] bool isRing(const std::string& parm, const std::string& other) const {
    return other == parm || dependencies_.at(other).contains(parm);
  }

  [[nodiscard]] bool isInRing(const std::string& parm) const {
    const std::set<std::string>& others = dependencies_.at(parm);
    return std::any_of(others.begin(), others.end(),
                       [&](const std::string& other) { return isRing(parm, other); });
  }

  // The parameters whose dependencies are all done, or in a ring with them.
  [[nodiscard]] Names nextStep(const std::set<std::string>& done) const {
    Names step;
    for (const auto& [parm, others] : dependencies_) {
      const auto isReady = [&, &name = parm](const std::string& other) {
        return done.contains(other) || isRing(name, other);
      };
      if (!done.contains(parm) && std::all_of(others.begin(), others.end(), isReady)) {
        step.push_back(parm);
      }
    }
    return step;
  }

  // Resets all instances at once. Where that fails, resets each alone, so that no instance keeps
  // another from its default.
  void resetStep(const Names& step) {
    const Names names = instancesOf(step);
    if (!names.empty() && !client_.reset(names)) resetAlone(names);
  }

  void resetAlone(const Names& names) {
    for (const std::string& name : names) client_.reset({name});
  }

  // Whether one of the parameter's indices looks at index values. The index queries judge each
  // index without the values of others, so they may list too many instances of `parm`, or too few.
  [[nodiscard]] bool isVaried(const std::string& parm) const {
    const Names& indices = device_.parms.at(parm);
    return std::any_of(indices.begin(), indices.end(), [&](const std::string& index) {
      return device_.variedIndices.contains(index);
    });
  }

  void resetVaried(const Names& step) {
    for (const std::string& parm : step) {
      if (isVaried(parm)) resetAlone(possibleInstancesOf({parm}));
    }
  }

  // Resets the rings of a step until they rest: the first reset judged each parameter of a ring
  // while the others had not followed yet.
  void settleRings(const Names& step) {
    Names ring;
    std::copy_if(step.begin(), step.end(), std::back_inserter(ring),
                 [&](const std::string& parm) { return isInRing(parm); });
    if (ring.empty()) return;
    for (size_t round = 1; round <= MOST_ROUNDS; ++round) {
      rounds_ = std::max(rounds_, round);
      if (!resetMovesAny(ring)) return;
    }
    restless_.insert(ring.begin(), ring.end());
  }

  // Resets each instance alone, and compares all values after each reset, because one reset may
  // take back what another did. What a ring holds may decide which of its instances exist, so all
  // that may ever exist are named.
  bool resetMovesAny(const Names& ring) {
    const Names names = possibleInstancesOf(ring);
    bool isMoved = false;
    Names before = client_.values(names);
    for (const std::string& name : names) {
      client_.reset({name});
      Names after = client_.values(names);
      isMoved = isMoved || after != before;
      before = std::move(after);
    }
    return isMoved;
  }

  void setLastValues(const Names& step) {
    for (const auto& [name, value] : device_.lastValues) {
      const bool isInStep = std::find(step.begin(), step.end(), baseNameOf(name)) != step.end();
      if (isInStep) client_.set(name, value);
    }
  }

  // Sets 0 where a value is still empty and 0 is all that is allowed: a reset leaves the empty
  // value, which counts as 0, as it is.
  void fillZeros() {
    for (const std::string& parm : parms_) {
      const bool isForeseeable = !isVaried(parm) && !isInRing(parm);
      const Names names = isForeseeable ? instancesOf({parm}) : possibleInstancesOf({parm});
      if (!device_.replacingZero.contains(parm)) fillZeros(names);
    }
  }

  void fillZeros(const Names& names) {
    const Names values = client_.values(names);
    for (size_t i = 0; i < names.size(); ++i) {
      if (values[i].empty() && client_.allowsOnlyZero(names[i])) client_.set(names[i], "0");
    }
  }

  Names instancesOf(const Names& parms) {
    Names all;
    for (const std::string& parm : parms) {
      const Names present = client_.presentIndices(parm);
      addInstances(all, parm, [&](const std::string& index) {
        const bool isThere = std::find(present.begin(), present.end(), index) != present.end();
        return isThere ? client_.indexValues(index) : Names{};
      });
    }
    return all;
  }

  // The full names of all instances that may exist at one time or another.
  [[nodiscard]] Names possibleInstancesOf(const Names& parms) const {
    Names all;
    for (const std::string& parm : parms) {
      addInstances(all, parm, [&](const std::string& index) { return device_.indices.at(index); });
    }
    return all;
  }

  // Adds the full names of a parameter, with all combinations of the values of its indices.
  template <typename ValuesOf>
  void addInstances(Names& all, const std::string& parm, ValuesOf valuesOf) const {
    Names names = {parm};
    for (const std::string& index : device_.parms.at(parm)) names = crossed(names, valuesOf(index));
    all.insert(all.end(), names.begin(), names.end());
  }

  // Each of `names` with each of `values` in brackets behind it.
  static Names crossed(const Names& names, const Names& values) {
    Names result;
    for (const std::string& name : names) {
      for (const std::string& value : values) {
        result.push_back(std::string(name).append("[").append(value).append("]"));
      }
    }
    return result;
  }

  DeviceClient& client_;
  KnownDevice device_;
  Names parms_;
  std::map<std::string, std::set<std::string>> dependencies_;  // by base name, base names
  size_t steps_ = 0;
  size_t rounds_ = 0;
  std::set<std::string> restless_;
};
