// The recipe that brings a device up, as ostrel(1) tells it. It sees the device only through what a
// client of the bus can ask and do, so that one recipe serves devices with a bus and those without.
//
//   BringUp recipe(client, known);
//   recipe.run();  // asks for the dependencies, and writes
//   EXPECT_TRUE(recipe.restless().empty());
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "play/bring_up_steps.h"

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
  std::map<std::string, Names> parms;  ///< base names, each with its indices in their order
  /// Names, each with the values of its constant range; none where these are too many to list.
  std::map<std::string, Names> indices;
  /// The indices whose statements look at the index values of an instance.
  std::set<std::string> variedIndices;
  std::set<std::string> replacingZero;            ///< the parameters with a valueChange of 0
  std::map<std::string, std::string> lastValues;  ///< by full name: what is known from before
};

/// Each of `names` with each of `values` in brackets behind it.
DeviceClient::Names crossed(const DeviceClient::Names& names, const DeviceClient::Names& values);

/// Brings one device up, once: first the parameters that depend on no others, then step by step
/// those whose dependencies are done. Parameters that depend on each other are a ring: they are
/// done in one step, and again until a round changes no value.
class BringUp {
 public:
  using Names = DeviceClient::Names;

  /// After that many rounds, a ring is taken to be one that never comes to rest.
  static constexpr size_t MOST_ROUNDS = 10;

  /// `client` has to outlive the recipe.
  BringUp(DeviceClient& client, KnownDevice device);

  /// Asks for the dependencies of all parameters, and does all steps: resets, settles rings, sets
  /// the last values, and fills zeros at the end.
  void run();

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
  [[nodiscard]] ParmDependencies dependencies();
  [[nodiscard]] Names namesOf(const std::vector<uint32_t>& parms) const;
  [[nodiscard]] bool isInRing(const std::string& parm) const { return rings_.contains(parm); }
  void resetStep(const Names& step);
  void resetAlone(const Names& names);
  [[nodiscard]] bool isVaried(const std::string& parm) const;
  void resetVaried(const Names& step);
  void settleRings(const Names& step);
  bool resetMovesAny(const Names& ring);
  void setLastValues(const Names& step);
  void fillZeros();
  void fillZeros(const Names& names);
  Names instancesOf(const Names& parms);
  [[nodiscard]] Names possibleInstancesOf(const Names& parms) const;
  template <typename ValuesOf>
  void addInstances(Names& all, const std::string& parm, ValuesOf valuesOf) const;

  DeviceClient& client_;
  KnownDevice device_;
  Names parms_;
  std::set<std::string> rings_;             // the parameters that are in one
  std::map<std::string, Names> lastNames_;  // the full names of the last values, by base name
  size_t steps_ = 0;
  size_t rounds_ = 0;
  std::set<std::string> restless_;
};
