#include "sw/dbus/parameters/readiness_methods.h"

#include <string>

#include "sw/dbus/memory_reserve.h"
#include "sw/dbus/parameters/bus_error.h"

// Nobody waits for a call that wants no reply, nor for one whose client has left.
bool isAnsweredLater(ParametersState& state, DBusMessage* call) {
  Readiness& readiness = state.readiness();
  const std::string_view caller = state.service().caller();
  if (readiness.isReady() || caller.empty() || dbus_message_get_no_reply(call) != 0) return false;
  if (readiness.countOf(caller) >= Readiness::MOST) {
    throw BusError{TOO_LARGE_ERROR, "A client has " + std::to_string(Readiness::MOST) +
                                        " calls of WaitReady at most that wait"};
  }
  requireHeadroom();
  readiness.wait(caller, dbus_message_get_serial(call));
  return true;
}

void answerWaitReady(ParametersState& /*state*/, MessageReader& /*in*/, MessageWriter& /*out*/) {}

void answerSetReady(ParametersState& state, MessageReader& /*in*/, MessageWriter& /*out*/) {
  state.readiness().setReady();
}
