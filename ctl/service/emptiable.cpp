#include "ctl/service/emptiable.h"

#include <set>
#include <string_view>

#include "ctl/service/calls.h"
#include "ctl/service/exit_status.h"

namespace {

constexpr BusMethod BEGIN = {PARAMETERS_INTERFACE, "Begin", "(u)"};
constexpr BusMethod PREVIEW = {PARAMETERS_INTERFACE, "Preview", "(a(sssas)a(ss))"};
constexpr BusMethod SET_STATUS = {TRANSACTION_INTERFACE, "set_status", "()"};
constexpr BusMethod SET_STATUS_BULK = {TRANSACTION_INTERFACE, "set_status_bulk", "()"};

constexpr std::string_view ACCESS_DENIED = "org.freedesktop.DBus.Error.AccessDenied";

using Replies = std::optional<std::vector<BusReply>>;

Replies callAll(Service& service, const std::vector<BusCall>& calls, bool mayGo) {
  std::vector<BusReply> replies = service.bus().callAll(calls);
  for (const BusReply& reply : replies) {
    if (reply.outcome != BUS_NO_SERVICE) continue;
    if (!mayGo) endWith(STATUS_NO_SERVICE, reply.error);
    return std::nullopt;
  }
  return replies;
}

// What would hold another text behind the commit that a preview is of.
std::set<std::string> filledBy(const BusReply& preview) {
  std::set<std::string> filled;
  if (preview.outcome != BUS_ANSWERED) return filled;
  const VariantHolder changes(g_variant_get_child_value(preview.value.get(), 0));
  for (gsize i = 0; i < g_variant_n_children(changes.get()); ++i) {
    const VariantHolder change(g_variant_get_child_value(changes.get(), i));
    const gchar* name = nullptr;
    const gchar* after = nullptr;
    g_variant_get(change.get(), "(&ss&sas)", &name, nullptr, &after, nullptr);
    if (*after != '\0') filled.insert(name);
  }
  return filled;
}

// A commit tells which would get another text; what is refused before that, each set by itself.
std::optional<Names> tryEmpty(Service& service, uint32_t transaction, Names names, bool mayGo) {
  const Replies tried = callAll(
      service,
      {{SET_STATUS_BULK,
        g_variant_new("(u@as@as)", transaction, listOf(names), listOf(Names(names.size())))},
       {PREVIEW, g_variant_new("(u)", transaction)}},
      mayGo);
  if (!tried) return std::nullopt;
  const std::set<std::string> filled = filledBy(tried->back());
  std::erase_if(names, [&](const std::string& name) { return filled.contains(name); });
  std::vector<BusCall> sets;
  sets.reserve(names.size());
  for (const std::string& name : names) {
    sets.push_back({SET_STATUS, g_variant_new("(uss)", transaction, name.c_str(), "")});
  }
  const Replies staged = callAll(service, sets, mayGo);
  if (!staged) return std::nullopt;
  Names left;
  for (size_t i = 0; i < names.size(); ++i) {
    // Whoever may not set has to leave that to the restoration.
    const BusReply& reply = (*staged)[i];
    if (reply.outcome == BUS_ANSWERED || reply.errorName == ACCESS_DENIED) left.push_back(names[i]);
  }
  return left;
}

}  // namespace

std::optional<Names> emptiable(Service& service, const Names& names, bool mayGo) {
  if (names.empty()) return Names();
  const Replies begun = callAll(service, {{BEGIN, nullptr}}, mayGo);
  if (!begun) return std::nullopt;
  // Where too many are open, a restoration tells what it cannot make empty.
  if (begun->front().outcome != BUS_ANSWERED) return names;
  guint32 transaction = 0;
  g_variant_get(begun->front().value.get(), "(u)", &transaction);
  std::optional<Names> left = tryEmpty(service, transaction, names, mayGo);
  service.drop(transaction);
  return left;
}
