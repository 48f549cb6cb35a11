#include "ctl/service/bulk.h"

#include "ctl/service/calls.h"
#include "ctl/service/exit_status.h"

namespace {

constexpr BusMethod SET_BULK = {TRANSACTION_INTERFACE, "set_bulk", "()"};
constexpr BusMethod SET_STATUS_BULK = {TRANSACTION_INTERFACE, "set_status_bulk", "()"};

BusCall valuesCall(uint32_t transaction, const std::vector<Assignment>& assignments,
                   bool isStatus) {
  Names values;
  values.reserve(assignments.size());
  for (const Assignment& assignment : assignments) values.push_back(assignment.value);
  return {isStatus ? SET_STATUS_BULK : SET_BULK,
          g_variant_new("(u@as@as)", transaction, listOf(namesOf(assignments)), listOf(values))};
}

// The service serves the calls of a client in their order, so nothing is waited for in between.
std::vector<std::optional<std::string>> inOrder(Service& service,
                                                const std::vector<BusCall>& calls) {
  std::vector<std::optional<std::string>> errors;
  for (const BusReply& reply : service.bus().callAll(calls)) {
    if (reply.outcome == BUS_NO_SERVICE) endWith(STATUS_NO_SERVICE, reply.error);
    errors.push_back(reply.outcome == BUS_ANSWERED ? std::nullopt : std::optional(reply.error));
  }
  return errors;
}

BulkAnswer stageAndCommit(Service& service, uint32_t transaction, const BusCall& staging) {
  const auto errors = inOrder(service, {staging, {COMMIT, g_variant_new("(u)", transaction)}});
  return {errors[0], errors[1]};
}

}  // namespace

BulkAnswer commitDefaults(Service& service, uint32_t transaction, const Names& names,
                          bool isStatus) {
  return stageAndCommit(service, transaction,
                        {isStatus ? RESET_STATUS_BULK : RESET_BULK, withNames(transaction, names)});
}

BulkAnswer commitValues(Service& service, uint32_t transaction,
                        const std::vector<Assignment>& assignments, bool isStatus) {
  return stageAndCommit(service, transaction, valuesCall(transaction, assignments, isStatus));
}

std::vector<Refusal> stageValues(Service& service, uint32_t transaction,
                                 const std::vector<Assignment>& assignments, bool isStatus) {
  const auto error = inOrder(service, {valuesCall(transaction, assignments, isStatus)}).front();
  if (!error) return {};
  // The error does not name them: those that are not staged as they are may only be corrected, so
  // they are asked one by one.
  std::vector<Assignment> doubtful;
  const std::vector<InstanceState> states = service.states(transaction, namesOf(assignments));
  for (size_t i = 0; i < assignments.size(); ++i) {
    if (!states[i].is(STATE_STAGED) || states[i].value != assignments[i].value) {
      doubtful.push_back(assignments[i]);
    }
  }
  return service.set(transaction, doubtful, isStatus);
}

void stageTaken(Service& service, uint32_t transaction, const std::vector<Assignment>& assignments,
                bool isStatus) {
  // The error would be of those that are refused.
  static_cast<void>(inOrder(service, {valuesCall(transaction, assignments, isStatus)}));
}

std::vector<Refusal> commitDefaultsAlone(Service& service, uint32_t transaction,
                                         const Names& names) {
  std::vector<BusCall> calls;
  for (const std::string& name : names) {
    calls.push_back({RESET_STATUS_BULK, withNames(transaction, {name})});
    calls.push_back({COMMIT, g_variant_new("(u)", transaction)});
  }
  const auto errors = inOrder(service, calls);
  std::vector<Refusal> refused;
  for (size_t i = 0; i < names.size(); ++i) {
    const auto& error = errors[2 * i] ? errors[2 * i] : errors[2 * i + 1];
    if (error) refused.push_back({names[i], *error});
  }
  return refused;
}
