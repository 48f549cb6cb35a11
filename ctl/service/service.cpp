#include "ctl/service/service.h"

#include <algorithm>
#include <utility>

#include "ctl/service/calls.h"
#include "ctl/service/exit_status.h"

namespace {

constexpr bool QUESTION = true;

constexpr BusMethod LIST = {PARAMETERS_INTERFACE, "List", "(a(ssasuu))", QUESTION};
constexpr BusMethod LIST_NAMES = {PARAMETERS_INTERFACE, "ListNames", "(as)", QUESTION};
constexpr BusMethod LIST_INSTANCES = {PARAMETERS_INTERFACE, "ListInstances", "(as)", QUESTION};
constexpr BusMethod GET_DEFINITION = {PARAMETERS_INTERFACE, "GetDefinition", "(a{sv})", QUESTION};
constexpr BusMethod GET_USES = {PARAMETERS_INTERFACE, "GetUses", "(aas)", QUESTION};
constexpr BusMethod GET_STATE = {PARAMETERS_INTERFACE, "GetState", "(a(susa(ii)as))", QUESTION};
constexpr BusMethod EXPLAIN = {PARAMETERS_INTERFACE, "Explain", "(a(ssusa{ss}))", QUESTION};
constexpr BusMethod PREVIEW = {PARAMETERS_INTERFACE, "Preview", "(a(sssas)a(ss))", QUESTION};
constexpr BusMethod BEGIN = {PARAMETERS_INTERFACE, "Begin", "(u)"};
constexpr BusMethod LIST_TRANSACTIONS = {PARAMETERS_INTERFACE, "ListTransactions", "(a(usuu))",
                                         QUESTION};
constexpr BusMethod HISTORY = {PARAMETERS_INTERFACE, "History", "(a(utsa(sss)))", QUESTION};

constexpr BusMethod WATCH = {PARAMETERS_INTERFACE, "Watch", "()"};
constexpr BusMethod SET_READY = {PARAMETERS_INTERFACE, "SetReady", "()"};

constexpr BusMethod END = {TRANSACTION_INTERFACE, "end", "()"};
constexpr BusMethod SET = {TRANSACTION_INTERFACE, "set", "()"};
constexpr BusMethod SET_STATUS = {TRANSACTION_INTERFACE, "set_status", "()"};
constexpr BusMethod GET_DEPS = {TRANSACTION_INTERFACE, "get_deps", "(as)", QUESTION};
constexpr BusMethod SINGLE_GET_BULK = {TRANSACTION_INTERFACE, "single_get_bulk", "(as)", QUESTION};
constexpr BusMethod GET_IDX_RANGE = {TRANSACTION_INTERFACE, "get_idx_range", "(asa(ii))", QUESTION};

// In the texts of get_deps about a name: its base is unknown, or its index values are not right.
constexpr std::string_view INVALID_NAME = "because of invalid parameter";

constexpr std::string_view UNKNOWN_METHOD = "org.freedesktop.DBus.Error.UnknownMethod";
constexpr std::string_view ACCESS_DENIED = "org.freedesktop.DBus.Error.AccessDenied";

// What errors of the second interface mean for the exit status; others are refusals.
constexpr std::string_view ERROR_START = "org.tavrel.parameters1.Error.";
ExitStatus statusOf(std::string_view errorName) {
  if (errorName == std::string(ERROR_START) + "UnknownParameter") return STATUS_UNKNOWN;
  if (errorName == std::string(ERROR_START) + "InvalidPattern") return STATUS_USAGE;
  return STATUS_REFUSED;
}

[[noreturn]] void giveUp(const BusReply& reply) {
  endWith(reply.outcome == BUS_NO_SERVICE ? STATUS_NO_SERVICE : statusOf(reply.errorName),
          reply.error);
}

// An older service does not know a call, and an older policy does not allow it.
bool isOfOlder(const BusReply& reply) {
  return reply.errorName == UNKNOWN_METHOD || reply.errorName == ACCESS_DENIED;
}

VariantHolder memberOf(GVariant& tuple, gsize number) {
  return VariantHolder(g_variant_get_child_value(&tuple, number));
}

std::string textOf(GVariant& tuple, gsize number) {
  gsize length = 0;
  const VariantHolder member = memberOf(tuple, number);
  const gchar* const text = g_variant_get_string(member.get(), &length);
  return {text, length};
}

uint32_t numberOf(GVariant& tuple, gsize number) {
  return g_variant_get_uint32(memberOf(tuple, number).get());
}

// Each element of the array that is a member of `tuple`, as `read` makes it.
template <typename Read>
auto eachOf(GVariant& tuple, gsize number, const Read& read) {
  std::vector<decltype(read(tuple))> all;
  const VariantHolder list = memberOf(tuple, number);
  const gsize count = g_variant_n_children(list.get());
  all.reserve(count);
  for (gsize i = 0; i < count; ++i) all.push_back(read(*memberOf(*list, i)));
  return all;
}

std::string textItself(GVariant& value) { return g_variant_get_string(&value, nullptr); }

Names textsOf(GVariant& tuple, gsize number) { return eachOf(tuple, number, textItself); }

// Those of an array itself.
Names namesIn(GVariant& list) {
  Names names;
  const gsize count = g_variant_n_children(&list);
  names.reserve(count);
  for (gsize i = 0; i < count; ++i) names.push_back(textOf(list, i));
  return names;
}

Span spanOf(GVariant& pair) {
  return {g_variant_get_int32(memberOf(pair, 0).get()),
          g_variant_get_int32(memberOf(pair, 1).get())};
}

Assignment assignmentOf(GVariant& pair) { return {textOf(pair, 0), textOf(pair, 1)}; }

ListedParameter listedOf(GVariant& row) {
  return {textOf(row, 0), textOf(row, 1), textsOf(row, 2), numberOf(row, 3), numberOf(row, 4)};
}

InstanceState stateOf(GVariant& row) {
  return {textOf(row, 0), numberOf(row, 1), textOf(row, 2), eachOf(row, 3, spanOf),
          textsOf(row, 4)};
}

Reason reasonOf(GVariant& row) {
  return {textOf(row, 0), textOf(row, 1), numberOf(row, 2), textOf(row, 3),
          eachOf(row, 4, assignmentOf)};
}

Change changeOf(GVariant& row) { return {textOf(row, 0), textOf(row, 1), textOf(row, 2)}; }

Change previewedOf(GVariant& row) {
  Change change = changeOf(row);
  change.because = textsOf(row, 3);
  return change;
}

Refusal refusalOf(GVariant& row) { return {textOf(row, 0), textOf(row, 1)}; }

OpenTransaction transactionOf(GVariant& row) {
  return {numberOf(row, 0), textOf(row, 1), numberOf(row, 2), numberOf(row, 3)};
}

PastCommit commitOf(GVariant& row) {
  return {numberOf(row, 0), g_variant_get_uint64(memberOf(row, 1).get()), textOf(row, 2),
          eachOf(row, 3, changeOf)};
}

std::string statementTextOf(GVariant& lineAndText) { return textOf(lineAndText, 1); }

// What is not there, or is of another type, stays empty.
Definition definitionOf(GVariant& dictionary) {
  Definition definition;
  const auto find = [&](const char* key, const char* type) {
    return VariantHolder(g_variant_lookup_value(&dictionary, key, G_VARIANT_TYPE(type)));
  };
  // As members of a tuple, which the readers take.
  const auto wrapped = [](const VariantHolder& value) {
    GVariant* member = value.get();
    return VariantHolder(g_variant_ref_sink(g_variant_new_tuple(&member, 1)));
  };
  if (const VariantHolder list = find("indices", "as"); list != nullptr) {
    definition.indices = textsOf(*wrapped(list), 0);
  }
  if (const VariantHolder list = find("statements", "a(us)"); list != nullptr) {
    definition.statements = eachOf(*wrapped(list), 0, statementTextOf);
  }
  if (const VariantHolder list = find("translations", "a(ss)"); list != nullptr) {
    definition.translations = eachOf(*wrapped(list), 0, assignmentOf);
  }
  if (const VariantHolder list = find("used-by", "as"); list != nullptr) {
    definition.usedBy = textsOf(*wrapped(list), 0);
  }
  return definition;
}

// The call of a method for each of the names, with the arguments that `make` gives.
template <typename Each, typename Make>
std::vector<BusCall> callsFor(const BusMethod& method, const std::vector<Each>& list,
                              const Make& make) {
  std::vector<BusCall> calls;
  calls.reserve(list.size());
  for (const Each& each : list) calls.push_back({method, make(each)});
  return calls;
}

}  // namespace

PastCommit changedCommit(GVariant& arguments) {
  return {numberOf(arguments, 0), 0, textOf(arguments, 1), eachOf(arguments, 2, changeOf)};
}

// Null where there is no service any more and it `mayGo`.
VariantHolder Service::ask(const BusMethod& method, GVariant* arguments, bool mayGo) {
  BusReply reply = bus_.call({method, arguments});
  if (reply.outcome == BUS_NO_SERVICE && mayGo) return nullptr;
  if (reply.outcome != BUS_ANSWERED) giveUp(reply);
  return std::move(reply.value);
}

std::optional<std::string> Service::attempt(const BusMethod& method, GVariant* arguments) {
  const BusReply reply = bus_.call({method, arguments});
  if (reply.outcome == BUS_NO_SERVICE) giveUp(reply);
  return reply.outcome == BUS_ANSWERED ? std::nullopt : std::optional(reply.error);
}

std::vector<BusReply> Service::askAll(const std::vector<BusCall>& calls) {
  std::vector<BusReply> replies = bus_.callAll(calls);
  for (const BusReply& reply : replies) {
    if (reply.outcome == BUS_NO_SERVICE) giveUp(reply);
  }
  return replies;
}

std::vector<ListedParameter> Service::list(const std::string& pattern) {
  return eachOf(*ask(LIST, g_variant_new("(s)", pattern.c_str())), 0, listedOf);
}

Names Service::names(const std::string& pattern, const Names& access) {
  const BusReply reply =
      bus_.call({LIST_NAMES, g_variant_new("(s@as)", pattern.c_str(), listOf(access))});
  if (reply.outcome == BUS_ANSWERED) return textsOf(*reply.value, 0);
  if (!isOfOlder(reply)) giveUp(reply);
  Names names;
  for (const ListedParameter& listed : list(pattern)) {
    const bool isWanted =
        access.empty() || std::ranges::find(access, listed.access) != access.end();
    if (isWanted) names.push_back(listed.name);
  }
  return names;
}

std::optional<std::vector<ListedParameter>> Service::tryList() {
  const VariantHolder reply = ask(LIST, g_variant_new("(s)", ""), true);
  return reply == nullptr ? std::nullopt : std::optional(eachOf(*reply, 0, listedOf));
}

std::optional<std::vector<InstanceState>> Service::tryStates(bool mayGo) {
  const VariantHolder instances = ask(LIST_INSTANCES, withNames(COMMITTED, {}), mayGo);
  if (instances == nullptr) return std::nullopt;
  const Names names = textsOf(*instances, 0);
  if (names.empty()) return std::vector<InstanceState>();
  const VariantHolder reply = ask(GET_STATE, withNames(COMMITTED, names), mayGo);
  return reply == nullptr ? std::nullopt : std::optional(eachOf(*reply, 0, stateOf));
}

Names Service::instances(uint32_t transaction, const Names& names) {
  return textsOf(*ask(LIST_INSTANCES, withNames(transaction, names)), 0);
}

std::optional<std::vector<Names>> Service::uses(const Names& names) {
  const BusReply reply = bus_.call({GET_USES, g_variant_new("(@as)", listOf(names))});
  if (reply.outcome == BUS_ANSWERED) return eachOf(*reply.value, 0, namesIn);
  if (!isOfOlder(reply)) giveUp(reply);
  return std::nullopt;
}

std::vector<InstanceState> Service::states(uint32_t transaction, const Names& names) {
  return eachOf(*ask(GET_STATE, withNames(transaction, names)), 0, stateOf);
}

std::optional<std::vector<InstanceState>> Service::tryStates(uint32_t transaction,
                                                             const Names& names) {
  const BusReply reply = bus_.call({GET_STATE, withNames(transaction, names)});
  if (reply.outcome == BUS_NO_SERVICE) giveUp(reply);
  if (reply.outcome != BUS_ANSWERED) return std::nullopt;
  return eachOf(*reply.value, 0, stateOf);
}

std::vector<std::vector<Reason>> Service::explain(uint32_t transaction, const Names& names) {
  const auto replies = askAll(callsFor(EXPLAIN, names, [&](const std::string& name) {
    return g_variant_new("(us)", transaction, name.c_str());
  }));
  std::vector<std::vector<Reason>> all;
  all.reserve(replies.size());
  for (const BusReply& reply : replies) {
    all.push_back(reply.outcome == BUS_ANSWERED ? eachOf(*reply.value, 0, reasonOf)
                                                : std::vector<Reason>());
  }
  return all;
}

std::vector<Definition> Service::definitions(const Names& names) {
  const auto replies = askAll(callsFor(GET_DEFINITION, names, [](const std::string& name) {
    return g_variant_new("(s)", name.c_str());
  }));
  std::vector<Definition> all;
  all.reserve(replies.size());
  for (const BusReply& reply : replies) {
    all.push_back(reply.outcome == BUS_ANSWERED ? definitionOf(*memberOf(*reply.value, 0))
                                                : Definition());
  }
  return all;
}

Preview Service::preview(uint32_t transaction) {
  const VariantHolder reply = ask(PREVIEW, g_variant_new("(u)", transaction));
  Preview preview = {.changes = eachOf(*reply, 0, previewedOf)};
  std::vector<Refusal> refused = eachOf(*reply, 1, refusalOf);
  if (refused.empty()) return preview;
  Names names;
  for (const Refusal& refusal : refused) names.push_back(refusal.name);
  const std::vector<InstanceState> all = states(transaction, names);
  for (size_t i = 0; i < all.size(); ++i) {
    auto& list = all[i].is(STATE_STAGED) ? preview.refused : preview.failing;
    list.push_back(std::move(refused[i]));
  }
  return preview;
}

std::vector<OpenTransaction> Service::transactions() {
  return eachOf(*ask(LIST_TRANSACTIONS, nullptr), 0, transactionOf);
}

std::vector<PastCommit> Service::history(uint32_t last) {
  return eachOf(*ask(HISTORY, g_variant_new("(u)", last)), 0, commitOf);
}

void Service::watch(bool changes, bool limits) {
  static_cast<void>(ask(WATCH, g_variant_new("(bb)", changes, limits)));
}

std::optional<std::string> Service::setReady() {
  const BusReply reply = bus_.call({SET_READY, nullptr});
  const bool isOlder = reply.errorName == UNKNOWN_METHOD;
  if (reply.outcome == BUS_NO_SERVICE && !isOlder) giveUp(reply);
  return reply.outcome == BUS_ANSWERED || isOlder ? std::nullopt : std::optional(reply.error);
}

uint32_t Service::begin() { return numberOf(*ask(BEGIN, nullptr), 0); }

void Service::drop(uint32_t transaction) { bus_.send({END, g_variant_new("(u)", transaction)}); }

std::optional<std::string> Service::end(uint32_t transaction) {
  return attempt(END, g_variant_new("(u)", transaction));
}

std::vector<Refusal> Service::set(uint32_t transaction, const std::vector<Assignment>& assignments,
                                  bool isStatus) {
  // One call each, as the answer to a list does not name what is refused.
  const auto replies =
      askAll(callsFor(isStatus ? SET_STATUS : SET, assignments, [&](const Assignment& assignment) {
        return g_variant_new("(uss)", transaction, assignment.name.c_str(),
                             assignment.value.c_str());
      }));
  std::vector<Refusal> refused;
  for (size_t i = 0; i < replies.size(); ++i) {
    if (replies[i].outcome == BUS_ANSWERED) continue;
    refused.push_back({assignments[i].name, replies[i].error});
  }
  return refused;
}

std::optional<std::string> Service::reset(uint32_t transaction, const Names& names, bool isStatus) {
  return attempt(isStatus ? RESET_STATUS_BULK : RESET_BULK, withNames(transaction, names));
}

std::optional<std::string> Service::commit(uint32_t transaction) {
  return attempt(COMMIT, g_variant_new("(u)", transaction));
}

std::vector<std::optional<Names>> Service::dependencies(const Names& names) {
  const auto replies = askAll(callsFor(
      GET_DEPS, names, [](const std::string& name) { return g_variant_new("(s)", name.c_str()); }));
  std::vector<std::optional<Names>> all;
  for (const BusReply& reply : replies) {
    if (reply.outcome == BUS_ANSWERED) {
      all.emplace_back(textsOf(*reply.value, 0));
    } else if (reply.error.find(INVALID_NAME) != std::string::npos) {
      all.emplace_back();
    } else {
      giveUp(reply);
    }
  }
  return all;
}

Names Service::values(const Names& names) {
  return textsOf(*ask(SINGLE_GET_BULK, withNames(static_cast<uint32_t>(names.size()), names)), 0);
}

std::vector<std::optional<InstanceState>> Service::indexRanges(uint32_t transaction,
                                                               const Names& indices) {
  const auto replies = askAll(callsFor(GET_IDX_RANGE, indices, [&](const std::string& index) {
    return g_variant_new("(us)", transaction, index.c_str());
  }));
  std::vector<std::optional<InstanceState>> ranges;
  for (size_t i = 0; i < indices.size(); ++i) {
    if (replies[i].outcome != BUS_ANSWERED) {
      ranges.emplace_back();
      continue;
    }
    GVariant& reply = *replies[i].value;
    InstanceState& range = *ranges.emplace_back(InstanceState());
    range.name = indices[i];
    range.flags = STATE_KNOWN | STATE_LIMITED;
    range.spans = eachOf(reply, 1, spanOf);
    range.texts = textsOf(reply, 0);
  }
  return ranges;
}
