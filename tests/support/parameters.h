// The methods of the interface without a bus, for tests.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sw/dbus/call_queue.h"
#include "sw/dbus/parameters/bus_error.h"
#include "sw/dbus/parameters/parameter_queries.h"
#include "sw/dbus/parameters/standard_interfaces.h"
#include "sw/dbus/parameters/transaction_methods.h"
#include "tests/support/message_text.h"
#include "tests/support/service.h"

/// A service on a definition text, and its calls.
class TestParameters {
 public:
  using Answer = void (*)(ParametersState& state, MessageReader& in, MessageWriter& out);

  explicit TestParameters(std::string_view definitions, bool isReady = true)
      : service_(definitions),
        state_(nullptr, "/parameters", service_.state(), "2.0 test", isReady) {}

  TestService& service() { return service_; }
  ParametersState& state() { return state_; }
  /// Commits values as the client `caller`, by force. The call before it is finished, this one not.
  void commit(std::string_view caller,
              const std::vector<std::pair<std::string, std::string>>& values) {
    service_.state().finishCall();
    Transaction transaction(service_.database());
    for (const auto& [name, value] : values) {
      EXPECT_EQ(transaction.set(name, value, true), STAGE_DONE) << name;
    }
    std::vector<Change> changes;
    CommitRecord record;
    EXPECT_EQ(::commit(transaction, changes, nullptr, &record), COMMIT_DONE);
    service_.state().setCaller(caller);
    service_.state().committed(std::move(changes), std::move(record));
  }

  /// The reply's arguments as text, or the last word of the error's name and its text. The call
  /// before it is finished.
  template <typename... Arguments>
  std::string call(Answer answer, const Arguments&... arguments) {
    service_.state().finishCall();
    const MessagePointer message(
        dbus_message_new_method_call("a.b", "/parameters", nullptr, "Method"));
    DBusMessageIter place;
    dbus_message_iter_init_append(message.get(), &place);
    (append(place, arguments), ...);
    const MessagePointer reply(dbus_message_new(DBUS_MESSAGE_TYPE_METHOD_RETURN));
    MessageReader in(message.get());
    MessageWriter out(reply.get());
    try {
      answer(state_, in, out);
    } catch (const BusError& error) {
      const std::string name = error.name;
      return name.substr(name.rfind('.') + 1) + ": " + error.text;
    }
    return argumentsOf(reply.get());
  }

 private:
  static void append(DBusMessageIter& place, uint32_t number) {
    dbus_message_iter_append_basic(&place, DBUS_TYPE_UINT32, &number);
  }
  static void append(DBusMessageIter& place, bool flag) {
    const dbus_bool_t value = flag ? 1 : 0;
    dbus_message_iter_append_basic(&place, DBUS_TYPE_BOOLEAN, &value);
  }
  static void append(DBusMessageIter& place, const char* text) {
    dbus_message_iter_append_basic(&place, DBUS_TYPE_STRING, &text);
  }
  static void append(DBusMessageIter& place, const std::vector<const char*>& texts) {
    DBusMessageIter array;
    dbus_message_iter_open_container(&place, DBUS_TYPE_ARRAY, "s", &array);
    for (const char* const text : texts) append(array, text);
    dbus_message_iter_close_container(&place, &array);
  }

  TestService service_;
  ParametersState state_;
};
