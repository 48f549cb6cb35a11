#include "play/bus_call.h"

#include <algorithm>
#include <map>

namespace {

using Texts = std::vector<std::string>;

// What the service puts before each of its errors.
constexpr std::string_view ERROR_START = "dbus_tavrel_transaction: ";

enum ArgumentKind { ARGUMENT_ID, ARGUMENT_COUNT, ARGUMENT_NAMES, ARGUMENT_VALUES };

// A method with its arguments: an id, a count, one name or value, or lists of them.
struct BusSignature {
  std::string_view method;
  const char* type;
  std::vector<ArgumentKind> arguments;
};

const std::vector<BusSignature>& signatures() {
  static const std::vector<BusSignature> all = {
      {"start", "()", {}},
      {"commit", "(u)", {ARGUMENT_ID}},
      {"end", "(u)", {ARGUMENT_ID}},
      {"get", "(us)", {ARGUMENT_ID, ARGUMENT_NAMES}},
      {"get_bulk", "(uuas)", {ARGUMENT_ID, ARGUMENT_COUNT, ARGUMENT_NAMES}},
      {"is_valid", "(uss)", {ARGUMENT_ID, ARGUMENT_NAMES, ARGUMENT_VALUES}},
      {"check_set", "(uss)", {ARGUMENT_ID, ARGUMENT_NAMES, ARGUMENT_VALUES}},
      {"set", "(uss)", {ARGUMENT_ID, ARGUMENT_NAMES, ARGUMENT_VALUES}},
      {"set_status", "(uss)", {ARGUMENT_ID, ARGUMENT_NAMES, ARGUMENT_VALUES}},
      {"set_bulk", "(uasas)", {ARGUMENT_ID, ARGUMENT_NAMES, ARGUMENT_VALUES}},
      {"set_status_bulk", "(uasas)", {ARGUMENT_ID, ARGUMENT_NAMES, ARGUMENT_VALUES}},
      {"reset", "(us)", {ARGUMENT_ID, ARGUMENT_NAMES}},
      {"reset_status", "(us)", {ARGUMENT_ID, ARGUMENT_NAMES}},
      {"reset_bulk", "(uas)", {ARGUMENT_ID, ARGUMENT_NAMES}},
      {"reset_status_bulk", "(uas)", {ARGUMENT_ID, ARGUMENT_NAMES}},
      {"single_get", "(s)", {ARGUMENT_NAMES}},
      {"single_get_bulk", "(uas)", {ARGUMENT_COUNT, ARGUMENT_NAMES}},
      {"single_is_valid", "(ss)", {ARGUMENT_NAMES, ARGUMENT_VALUES}},
      {"single_check_set", "(ss)", {ARGUMENT_NAMES, ARGUMENT_VALUES}},
      {"single_set", "(ss)", {ARGUMENT_NAMES, ARGUMENT_VALUES}},
      {"single_set_status", "(ss)", {ARGUMENT_NAMES, ARGUMENT_VALUES}},
      {"single_set_bulk", "(asas)", {ARGUMENT_NAMES, ARGUMENT_VALUES}},
      {"single_set_status_bulk", "(asas)", {ARGUMENT_NAMES, ARGUMENT_VALUES}},
      {"single_reset", "(s)", {ARGUMENT_NAMES}},
      {"single_reset_status", "(s)", {ARGUMENT_NAMES}},
      {"single_reset_bulk", "(as)", {ARGUMENT_NAMES}},
      {"single_reset_status_bulk", "(as)", {ARGUMENT_NAMES}},
      {"get_deps", "(s)", {ARGUMENT_NAMES}},
      {"get_range", "(us)", {ARGUMENT_ID, ARGUMENT_NAMES}},
      {"get_range_bulk", "(uas)", {ARGUMENT_ID, ARGUMENT_NAMES}},
      {"get_parm_idx", "(us)", {ARGUMENT_ID, ARGUMENT_NAMES}},
      {"get_idx_range", "(us)", {ARGUMENT_ID, ARGUMENT_NAMES}},
  };
  return all;
}

const BusSignature* findSignature(std::string_view method) {
  const auto found = std::ranges::find(signatures(), method, &BusSignature::method);
  return found == signatures().end() ? nullptr : &*found;
}

GVariant* listOf(const Texts& texts) {
  GVariantBuilder list;
  g_variant_builder_init(&list, G_VARIANT_TYPE_STRING_ARRAY);
  for (const std::string& text : texts) g_variant_builder_add(&list, "s", text.c_str());
  return g_variant_builder_end(&list);
}

GVariant* argumentOf(const Call& call, ArgumentKind kind, bool isList) {
  if (kind == ARGUMENT_ID) return g_variant_new_uint32(call.transaction);
  if (kind == ARGUMENT_COUNT) return g_variant_new_uint32(static_cast<guint32>(call.names.size()));
  const Texts& texts = kind == ARGUMENT_NAMES ? call.names : call.values;
  return isList ? listOf(texts) : g_variant_new_string(texts.front().c_str());
}

VariantHolder memberOf(GVariant& tuple, gsize number) {
  return VariantHolder(g_variant_get_child_value(&tuple, number));
}

Texts textsOf(GVariant& value) {
  if (g_variant_is_of_type(&value, G_VARIANT_TYPE_STRING) == FALSE) return busTexts(value);
  return {g_variant_get_string(&value, nullptr)};
}

NamedRange rangeOf(GVariant& reply) {
  NamedRange range = {{}, busTexts(*memberOf(reply, 0))};
  GVariantIter spans;
  gint32 low = 0;
  gint32 high = 0;
  const VariantHolder list = memberOf(reply, 1);
  g_variant_iter_init(&spans, list.get());
  while (g_variant_iter_next(&spans, "(ii)", &low, &high) != FALSE) {
    range.spans.emplace_back(low, high);
  }
  return range;
}

// The ranges of (name, text) and (name, lowest, highest), by name.
std::vector<NamedRange> namedRangesOf(GVariant& reply) {
  std::map<std::string, NamedRange> ranges;
  GVariantIter iterator;
  const gchar* name = nullptr;
  const gchar* text = nullptr;
  const VariantHolder texts = memberOf(reply, 0);
  g_variant_iter_init(&iterator, texts.get());
  while (g_variant_iter_next(&iterator, "(&s&s)", &name, &text) != FALSE) {
    ranges[name].texts.emplace_back(text);
  }
  gint32 low = 0;
  gint32 high = 0;
  const VariantHolder spans = memberOf(reply, 1);
  g_variant_iter_init(&iterator, spans.get());
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

}  // namespace

GVariant* busArguments(const Call& call) {
  const BusSignature* const signature = findSignature(call.method);
  if (signature == nullptr) return nullptr;
  std::vector<GVariant*> values;
  const bool isBulk = call.method.ends_with("_bulk");
  for (const ArgumentKind kind : signature->arguments) {
    values.push_back(argumentOf(call, kind, isBulk));
  }
  return g_variant_new_tuple(values.data(), values.size());
}

std::optional<Call> busCall(std::string_view method, GVariant& arguments) {
  const BusSignature* const signature = findSignature(method);
  if (signature == nullptr) return {};
  if (g_variant_type_equal(g_variant_get_type(&arguments), signature->type) == FALSE) return {};
  Call call = {signature->method};
  size_t count = SIZE_MAX;
  bool hasValues = false;
  for (gsize i = 0; i < signature->arguments.size(); ++i) {
    const VariantHolder value = memberOf(arguments, i);
    switch (signature->arguments[i]) {
      case ARGUMENT_ID:
        call.transaction = g_variant_get_uint32(value.get());
        break;
      case ARGUMENT_COUNT:
        count = g_variant_get_uint32(value.get());
        break;
      case ARGUMENT_NAMES:
        call.names = textsOf(*value);
        break;
      case ARGUMENT_VALUES:
        call.values = textsOf(*value);
        hasValues = true;
        break;
    }
  }
  if (hasValues) count = std::min(call.names.size(), call.values.size());
  if (call.names.size() > count) call.names.resize(count);
  if (call.values.size() > count) call.values.resize(count);
  return call;
}

Answer busAnswer(GVariant& values) {
  Answer answer;
  const std::string_view type = g_variant_get_type_string(&values);
  if (type == "(u)") answer.transaction = g_variant_get_uint32(memberOf(values, 0).get());
  if (type == "(b)") answer.isValid = g_variant_get_boolean(memberOf(values, 0).get()) != FALSE;
  if (type == "(s)" || type == "(as)") answer.texts = textsOf(*memberOf(values, 0));
  if (type == "(asa(ii))") answer.ranges = {rangeOf(values)};
  if (type == "(a(ss)a(sii))") answer.ranges = namedRangesOf(values);
  return answer;
}

std::optional<std::string> busError(std::string_view message) {
  const size_t at = message.find(ERROR_START);
  if (at == std::string_view::npos) return {};
  return std::string(message.substr(at + ERROR_START.size()));
}

std::vector<std::string> busTexts(GVariant& list) {
  std::vector<std::string> texts;
  GVariantIter iterator;
  const gchar* text = nullptr;
  g_variant_iter_init(&iterator, &list);
  while (g_variant_iter_next(&iterator, "&s", &text) != FALSE) texts.emplace_back(text);
  return texts;
}
