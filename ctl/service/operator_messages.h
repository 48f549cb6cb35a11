// Operator messages: what the words that run with a device tell whoever looks after it.
// ostrel-operator(7) lists them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

enum OperatorMessage : int {
  DEFAULT_REFUSED,
  VALUE_REFUSED,
  VALUE_ABSENT,
  VALUE_UNKNOWN,
  NEVER_AT_REST,
  NOT_SAID_READY,
  NOTHING_TO_RESTORE,
  VALUES_KEPT,
  VALUES_NOT_WRITTEN,
  NOTHING_TO_KEEP,
  SERVICE_GONE,
  SERVICE_BACK,
};

/// How the journal knows a message.
struct MessageKind {
  const char* id;     ///< its MESSAGE_ID
  int priority;       ///< as of syslog: 3 an error, 4 a warning, 6 information
  const char* start;  ///< how it begins, which nothing that is inserted follows
};
/// Of each message, in the order of the enumeration.
const std::vector<MessageKind>& messageKinds();

/// What the journal gets beside the text.
struct MessageFields {
  std::string parameter = {};                ///< PARAMETER; none where it is empty
  std::optional<uint64_t> transaction = {};  ///< TRANSACTION
};

/// Tells the operator `rest` behind the start of `message`: the journal where standard error is
/// connected to that, otherwise standard error, with the program's name before it.
void tellOperator(OperatorMessage message, const std::string& rest,
                  const MessageFields& fields = {});
