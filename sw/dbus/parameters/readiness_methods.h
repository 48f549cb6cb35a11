// Readiness methods: whoever brings the device up says so, and others wait for that. As
// parameter_queries.h.
#pragma once

#include <dbus/dbus.h>

#include "sw/dbus/parameters/message_reader.h"
#include "sw/dbus/parameters/message_writer.h"
#include "sw/dbus/parameters/parameters_state.h"

/// Whether `call` of WaitReady is answered later; answerWaitReady() is for one that is not.
bool isAnsweredLater(ParametersState& state, DBusMessage* call);
void answerWaitReady(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerSetReady(ParametersState& state, MessageReader& in, MessageWriter& out);
