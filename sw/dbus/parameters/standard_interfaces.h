// The standard interfaces of the object: introspection and properties.
//
// Each may raise BusError, MessageTooLong and std::bad_alloc.
#pragma once

#include "sw/dbus/parameters/message_reader.h"
#include "sw/dbus/parameters/message_writer.h"
#include "sw/dbus/parameters/parameters_state.h"

void answerIntrospect(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerGet(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerGetAll(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerSet(ParametersState& state, MessageReader& in, MessageWriter& out);
