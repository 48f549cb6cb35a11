#include "tests/harness/session_device.h"

#include <gtest/gtest.h>

#include <utility>

#include "play/bus_call.h"

SessionDevice::SessionDevice(Client& client, std::function<std::optional<KnownDevice>()> known)
    : client_(client), known_(std::move(known)) {
  static_cast<void>(client_.newSignals());
}

Answer SessionDevice::call(const Call& call) {
  GVariant* const arguments = busArguments(call);
  if (arguments == nullptr) return {.error = "the bus has no such method"};
  const Reply reply = client_.call(std::string(call.method), arguments);
  Answer answer;
  if (reply.value != nullptr) {
    answer = busAnswer(*reply.value);
  } else {
    const std::optional<std::string> error = busError(reply.errorMessage);
    EXPECT_TRUE(error) << reply.errorMessage;
    answer.error = error.value_or(reply.errorMessage);
  }
  for (const std::vector<std::string>& changes : client_.newSignals()) {
    answer.changes.insert(answer.changes.end(), changes.begin(), changes.end());
  }
  return answer;
}
