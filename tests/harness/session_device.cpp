#include "tests/harness/session_device.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>

#include "tests/harness/bus_device.h"

namespace {

GVariant* listArgument(const std::vector<std::string>& texts) {
  GVariantBuilder list;
  g_variant_builder_init(&list, G_VARIANT_TYPE_STRING_ARRAY);
  for (const std::string& text : texts) g_variant_builder_add(&list, "s", text.c_str());
  return g_variant_builder_end(&list);
}

GVariant* argumentOf(const BusArgument& argument, const Call& call) {
  const bool isValue = argument.name == "parm_value";
  const std::vector<std::string>& texts = isValue ? call.values : call.names;
  if (argument.type == "as") return listArgument(texts);
  if (argument.type == "s") return g_variant_new_string(texts.front().c_str());
  const bool isCount = argument.name == "parm_num";
  return g_variant_new_uint32(isCount ? static_cast<guint32>(texts.size()) : call.transaction);
}

GVariant* argumentsOf(const BusMethod& method, const Call& call) {
  std::vector<GVariant*> arguments;
  for (const BusArgument& argument : method.in) arguments.push_back(argumentOf(argument, call));
  return g_variant_new_tuple(arguments.data(), arguments.size());
}

VariantPointer memberOf(GVariant& tuple, gsize number) {
  return VariantPointer(g_variant_get_child_value(&tuple, number));
}

// The ranges of (name, text) and (name, lowest, highest), by name.
std::vector<NamedRange> namedRanges(GVariant& reply) {
  std::map<std::string, NamedRange> ranges;
  GVariantIter iterator;
  const gchar* name = nullptr;
  const gchar* text = nullptr;
  g_variant_iter_init(&iterator, memberOf(reply, 0).get());
  while (g_variant_iter_next(&iterator, "(&s&s)", &name, &text) != FALSE) {
    ranges[name].texts.emplace_back(text);
  }
  gint32 low = 0;
  gint32 high = 0;
  g_variant_iter_init(&iterator, memberOf(reply, 1).get());
  while (g_variant_iter_next(&iterator, "(&sii)", &name, &low, &high) != FALSE) {
    ranges[name].spans.emplace_back(low, high);
  }
  std::vector<NamedRange> list;
  for (auto& [rangeName, range] : ranges) {
    range.name = rangeName;
    list.push_back(std::move(range));
  }
  return list;
}

Answer answerOf(GVariant& reply) {
  Answer answer;
  const std::string type = g_variant_get_type_string(&reply);
  if (type == "(u)") g_variant_get(&reply, "(u)", &answer.transaction);
  if (type == "(b)") {
    gboolean isValid = FALSE;
    g_variant_get(&reply, "(b)", &isValid);
    answer.isValid = isValid != FALSE;
  }
  if (type == "(s)") {
    answer.texts.emplace_back(g_variant_get_string(memberOf(reply, 0).get(), nullptr));
  }
  if (type == "(as)") answer.texts = textsOf(memberOf(reply, 0).get());
  if (type == "(asa(ii))") answer.ranges = {{{}, rangeTexts(reply), rangeSpans(reply)}};
  if (type == "(a(ss)a(sii))") answer.ranges = namedRanges(reply);
  return answer;
}

}  // namespace

SessionDevice::SessionDevice(Client& client, std::function<std::optional<KnownDevice>()> known)
    : client_(client), known_(std::move(known)) {
  static_cast<void>(client_.newSignals());
}

Answer SessionDevice::call(const Call& call) {
  const BusMethod* const method = findBusMethod(call.method);
  if (method == nullptr) return {.error = "the bus has no such method"};
  const Reply reply = client_.call(method->name, argumentsOf(*method, call));
  Answer answer;
  if (reply.value != nullptr) {
    answer = answerOf(*reply.value);
  } else {
    EXPECT_TRUE(reply.errorMessage.starts_with(ERROR_PREFIX)) << reply.errorMessage;
    answer.error = reply.errorMessage.substr(ERROR_PREFIX.size());
  }
  for (const std::vector<std::string>& changes : client_.newSignals()) {
    answer.changes.insert(answer.changes.end(), changes.begin(), changes.end());
  }
  return answer;
}
