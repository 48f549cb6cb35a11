// Parameter queries: what the methods of the interface answer. Each reads its arguments and writes
// its reply; see org.tavrel.parameters1.xml.
//
// Each may raise BusError, MessageTooLong, WorkExceeded and std::bad_alloc.
#pragma once

#include "sw/dbus/parameters/message_reader.h"
#include "sw/dbus/parameters/message_writer.h"
#include "sw/dbus/parameters/parameters_state.h"

/// The committed situation, in place of the id of a transaction.
constexpr uint32_t NO_TRANSACTION = UINT32_MAX;

void answerList(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerListNames(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerListInstances(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerGetDefinition(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerGetUses(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerGetState(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerExplain(ParametersState& state, MessageReader& in, MessageWriter& out);
void answerPreview(ParametersState& state, MessageReader& in, MessageWriter& out);
