#include "sw/dbus/parameters/readiness.h"

#include <string>
#include <utility>

#include "sw/dbus/call_queue.h"
#include "sw/dbus/reply.h"

namespace {

constexpr const char* REPLY = "reply";  // what messages call it

}  // namespace

size_t Readiness::countOf(std::string_view client) const {
  const auto known = waiting_.find(client);
  return known == waiting_.end() ? 0 : known->second.size();
}

void Readiness::wait(std::string_view client, uint32_t serial) {
  const auto known = waiting_.find(client);
  if (known != waiting_.end()) {
    known->second.push_back(serial);
  } else {
    waiting_.emplace(std::string(client), std::vector<uint32_t>{serial});
  }
}

void Readiness::setReady() {
  isReady_ = true;
  for (const auto& [client, serials] : std::exchange(waiting_, {})) {
    for (const uint32_t serial : serials) answer(client.c_str(), serial);
  }
}

void Readiness::leave(std::string_view client) noexcept {
  const auto known = waiting_.find(client);
  if (known != waiting_.end()) waiting_.erase(known);
}

// The message of the call is not kept, so its reply is put together by hand.
void Readiness::answer(const char* client, uint32_t serial) {
  const MessagePointer reply(
      retried(REPLY, [] { return dbus_message_new(DBUS_MESSAGE_TYPE_METHOD_RETURN); }));
  dbus_message_set_no_reply(reply.get(), TRUE);
  retried(REPLY, [&] {
    const bool isSent = dbus_message_set_destination(reply.get(), client) != 0 &&
                        dbus_message_set_reply_serial(reply.get(), serial) != 0 &&
                        dbus_connection_send(connection_, reply.get(), nullptr) != 0;
    return isSent ? reply.get() : nullptr;
  });
}
