// The service: its methods as functions.
//
// A call that cannot be made ends the program, with STATUS_NO_SERVICE; so does one that is refused
// where the comment says nothing else, with the service's own text. Names and values are valid
// UTF-8 without NUL bytes.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ctl/service/answers.h"
#include "ctl/service/bus.h"

using Names = std::vector<std::string>;

class Service {
 public:
  /// `bus` outlives it.
  explicit Service(Bus& bus) : bus_(bus) {}

  [[nodiscard]] Bus& bus() { return bus_; }

  // What there is. `transaction` may be COMMITTED.
  [[nodiscard]] std::vector<ListedParameter> list(const std::string& pattern);
  /// The names of what list() gives with one of these access words, or of all for none.
  [[nodiscard]] Names names(const std::string& pattern, const Names& access);
  /// As list(""); nullopt where there is no service any more.
  [[nodiscard]] std::optional<std::vector<ListedParameter>> tryList();
  /// As states() of all instances that are committed; nullopt where there is no service any more
  /// and it `mayGo`.
  [[nodiscard]] std::optional<std::vector<InstanceState>> tryStates(bool mayGo);
  [[nodiscard]] Names instances(uint32_t transaction, const Names& names);
  /// The other instances that each of the instances reads; nullopt where the service is too old to
  /// tell.
  [[nodiscard]] std::optional<std::vector<Names>> uses(const Names& names);
  [[nodiscard]] std::vector<InstanceState> states(uint32_t transaction, const Names& names);
  /// nullopt where the service refuses, as where more follows what is staged than a commit takes.
  [[nodiscard]] std::optional<std::vector<InstanceState>> tryStates(uint32_t transaction,
                                                                    const Names& names);
  /// One each, in the order of the names; empty where there is no such instance.
  [[nodiscard]] std::vector<std::vector<Reason>> explain(uint32_t transaction, const Names& names);
  [[nodiscard]] std::vector<Definition> definitions(const Names& names);
  [[nodiscard]] Preview preview(uint32_t transaction);
  [[nodiscard]] std::vector<OpenTransaction> transactions();
  /// The `last` commits, the oldest first; 0 is all that are kept.
  [[nodiscard]] std::vector<PastCommit> history(uint32_t last);

  /// Has the signals of the second interface sent to this client, or not.
  void watch(bool changes, bool limits);
  /// What the service tells of itself, and how long it took to answer; nullopt where it does not
  /// answer, or nobody lets it, and why is in `error`.
  [[nodiscard]] std::optional<Vitals> vitals(std::string& error);

  /// Says that the device has been brought up, which an older service need not know; the service's
  /// text where it refuses.
  [[nodiscard]] std::optional<std::string> setReady();

  // Transactions.
  [[nodiscard]] uint32_t begin();
  /// Ends a transaction of this client, without waiting for that.
  void drop(uint32_t transaction);
  /// Ends any transaction; the service's text where it refuses.
  [[nodiscard]] std::optional<std::string> end(uint32_t transaction);
  /// Stages values; `isStatus` as of the device itself. Those that are refused come back, and the
  /// others are staged.
  [[nodiscard]] std::vector<Refusal> set(uint32_t transaction,
                                         const std::vector<Assignment>& assignments, bool isStatus);
  /// Stages defaults; the service's text where it refuses one.
  [[nodiscard]] std::optional<std::string> reset(uint32_t transaction, const Names& names,
                                                 bool isStatus);
  /// The service's text where the commit fails.
  [[nodiscard]] std::optional<std::string> commit(uint32_t transaction);

  // Through the interface org.tavrel.transaction.
  /// One each, in the order of the names; nullopt where there is no such name.
  [[nodiscard]] std::vector<std::optional<Names>> dependencies(const Names& names);
  /// The values of parameters and constants; empty where there is no such name.
  [[nodiscard]] Names values(const Names& names);
  /// The values that indices have, in the order of the names; nullopt where one is no index, or is
  /// not available.
  [[nodiscard]] std::vector<std::optional<InstanceState>> indexRanges(uint32_t transaction,
                                                                      const Names& indices);

 private:
  VariantHolder ask(const BusMethod& method, GVariant* arguments, bool mayGo = false);
  std::optional<std::string> attempt(const BusMethod& method, GVariant* arguments);
  std::vector<BusReply> askAll(const std::vector<BusCall>& calls);

  Bus& bus_;
};

/// What the signal Changed tells, from its arguments; its time is 0.
PastCommit changedCommit(GVariant& arguments);

/// A transaction of this client alone, dropped with its holder, and by the service where the
/// program ends in any other way.
class OwnTransaction {
 public:
  explicit OwnTransaction(Service& service) : service_(service), id_(service.begin()) {}
  ~OwnTransaction() { service_.drop(id_); }
  OwnTransaction(const OwnTransaction&) = delete;
  OwnTransaction& operator=(const OwnTransaction&) = delete;
  [[nodiscard]] uint32_t id() const { return id_; }

 private:
  Service& service_;
  const uint32_t id_;
};
