#include "tests/harness/bus_device.h"

#include <gtest/gtest.h>

namespace {

// The first out-argument, a list of texts; empty after an error.
std::vector<std::string> listOf(const Reply& reply) {
  if (reply.value == nullptr) return {};
  return textsOf(VariantPointer(g_variant_get_child_value(reply.value.get(), 0)).get());
}

GVariant* listArgument(const DeviceClient::Names& names) {
  GVariantBuilder list;
  g_variant_builder_init(&list, G_VARIANT_TYPE_STRING_ARRAY);
  for (const std::string& name : names) g_variant_builder_add(&list, "s", name.c_str());
  return g_variant_builder_end(&list);
}

}  // namespace

BusDevice::BusDevice(const Client& client) : client_(client) {
  const Reply reply = client_.call("start", nullptr);
  EXPECT_NE(reply.value, nullptr) << reply.errorMessage;
  if (reply.value != nullptr) g_variant_get(reply.value.get(), "(u)", &id_);
}

DeviceClient::Names BusDevice::dependencies(const std::string& parm) {
  const Reply reply = client_.call("get_deps", g_variant_new("(s)", parm.c_str()));
  EXPECT_NE(reply.value, nullptr) << reply.errorMessage;
  return listOf(reply);
}

DeviceClient::Names BusDevice::presentIndices(const std::string& parm) {
  const Reply reply = client_.call("get_parm_idx", g_variant_new("(us)", id_, parm.c_str()));
  EXPECT_NE(reply.value, nullptr) << reply.errorMessage;
  return listOf(reply);
}

DeviceClient::Names BusDevice::indexValues(const std::string& index) {
  const Reply reply = client_.call("get_idx_range", g_variant_new("(us)", id_, index.c_str()));
  Names values = listOf(reply);
  if (reply.value == nullptr) return values;
  for (const auto& [low, high] : rangeSpans(*reply.value)) {
    for (int number = low; number <= high; ++number) values.push_back(std::to_string(number));
  }
  return values;
}

bool BusDevice::reset(const Names& names) {
  const Reply reply =
      client_.call("reset_status_bulk", g_variant_new("(u@as)", id_, listArgument(names)));
  EXPECT_NE(reply.value, nullptr) << reply.errorMessage;
  return client_.call("commit", g_variant_new("(u)", id_)).value != nullptr;
}

void BusDevice::set(const std::string& name, const std::string& value) {
  static_cast<void>(
      client_.call("set_status", g_variant_new("(uss)", id_, name.c_str(), value.c_str())));
  static_cast<void>(client_.call("commit", g_variant_new("(u)", id_)));
}

DeviceClient::Names BusDevice::values(const Names& names) {
  const auto count = static_cast<guint32>(names.size());
  const Reply reply =
      client_.call("get_bulk", g_variant_new("(uu@as)", id_, count, listArgument(names)));
  Names values = listOf(reply);
  EXPECT_EQ(values.size(), names.size()) << reply.errorMessage;
  values.resize(names.size());
  return values;
}

bool BusDevice::allowsOnlyZero(const std::string& name) {
  const Reply reply = client_.call("get_range", g_variant_new("(us)", id_, name.c_str()));
  return reply.value != nullptr && rangeTexts(*reply.value).empty() &&
         rangeSpans(*reply.value) == std::vector<std::pair<int, int>>{{0, 0}};
}

std::vector<std::string> rangeTexts(GVariant& reply) {
  return textsOf(VariantPointer(g_variant_get_child_value(&reply, 0)).get());
}

std::vector<std::pair<int, int>> rangeSpans(GVariant& reply) {
  std::vector<std::pair<int, int>> spans;
  const VariantPointer list(g_variant_get_child_value(&reply, 1));
  for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
    gint32 low = 0;
    gint32 high = 0;
    g_variant_get_child(list.get(), i, "(ii)", &low, &high);
    spans.emplace_back(low, high);
  }
  return spans;
}
