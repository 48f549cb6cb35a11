// Calls of the service and their answers as the values that travel on the bus.
#pragma once

#include <glib.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "play/device.h"

/// The interface of the service, and its bus name without a suffix.
constexpr const char* SERVICE_NAME = "org.tavrel.transaction";
/// Its object without a suffix.
constexpr const char* SERVICE_PATH = "/transaction";

struct UnrefVariant {
  void operator()(GVariant* value) const { g_variant_unref(value); }
};
using VariantHolder = std::unique_ptr<GVariant, UnrefVariant>;

/// The arguments of `call`, a floating tuple; null where the bus has no such method.
GVariant* busArguments(const Call& call);
/// The call of `method` with the tuple `arguments`; nullopt where the bus has no such method, or it
/// takes others. What the service ignores is left out: names without values, and those behind the
/// count that goes with them.
std::optional<Call> busCall(std::string_view method, GVariant& arguments);
/// What the reply `values`, a tuple, holds.
Answer busAnswer(GVariant& values);
/// The service's own text of the error `message`; nullopt where the error is another's.
std::optional<std::string> busError(std::string_view message);
/// The texts of a list.
std::vector<std::string> busTexts(GVariant& list);
