// Transaction methods: who has what open, who watches, what was committed. As parameter_queries.h.
#pragma once

#include "sw/dbus/parameters/message_reader.h"
#include "sw/dbus/parameters/message_writer.h"
#include "sw/dbus/parameters/parameters_state.h"

void answerBegin(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerListTransactions(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerWatch(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerHistory(ParametersState& state, MessageReader& in, MessageWriter& out);
