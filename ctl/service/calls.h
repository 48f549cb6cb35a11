// Calls that several sources make: methods of org.tavrel.transaction, and arguments.
#pragma once

#include "ctl/service/service.h"

inline constexpr BusMethod COMMIT = {TRANSACTION_INTERFACE, "commit", "()"};
inline constexpr BusMethod RESET_BULK = {TRANSACTION_INTERFACE, "reset_bulk", "()"};
inline constexpr BusMethod RESET_STATUS_BULK = {TRANSACTION_INTERFACE, "reset_status_bulk", "()"};

/// A floating array of texts.
inline GVariant* listOf(const Names& texts) {
  GVariantBuilder list;
  g_variant_builder_init(&list, G_VARIANT_TYPE_STRING_ARRAY);
  for (const std::string& text : texts) g_variant_builder_add(&list, "s", text.c_str());
  return g_variant_builder_end(&list);
}

/// A number, mostly the id of a transaction, and names.
inline GVariant* withNames(uint32_t number, const Names& names) {
  return g_variant_new("(u@as)", number, listOf(names));
}
