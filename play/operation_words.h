// The operations of a session by their words.
#pragma once

#include <span>
#include <string_view>

/// What belongs to the methods, and what the player does itself.
enum OperationKind {
  OPERATION_CALL,       ///< a method, or its "_bulk" form for several names
  OPERATION_START,      ///< opens a transaction
  OPERATION_UP,         ///< brings the device up
  OPERATION_CONSTANTS,  ///< starts the device anew with other constants, or tells them
  OPERATION_WHY,        ///< explains; nothing is compared
};

/// What follows the word.
enum OperationArguments {
  ARGUMENTS_NONE,
  ARGUMENTS_TRANSACTION,  ///< the name of a transaction, or none
  ARGUMENTS_NAME,         ///< one name
  ARGUMENTS_NAMES,        ///< one name or more
  ARGUMENTS_PAIR,         ///< a name and a value
  ARGUMENTS_QUESTION,     ///< a name, or a name and a value
  ARGUMENTS_PAIRS,        ///< one name and value, or more
  ARGUMENTS_SETTINGS,     ///< any number of NAME=VALUE
};

/// What stands behind the arrow.
enum OperationOutcome {
  OUTCOME_NONE,
  OUTCOME_VALUES,   ///< values or names
  OUTCOME_VALID,    ///< "true" or "false"
  OUTCOME_RANGES,   ///< spans and texts
  OUTCOME_CHANGES,  ///< what was announced
};

/// An operation that a line may say.
struct OperationWord {
  std::string_view word;
  OperationKind kind;
  std::string_view method;      ///< of OPERATION_CALL: for one name
  std::string_view bulkMethod;  ///< for several names; empty where there is no such form
  OperationArguments arguments;
  OperationOutcome outcome;
  std::string_view family;  ///< of its errors: "Set" in "Set failed because ..."
  std::string_view usage;   ///< how it is written
};

/// All operations, ascending by word; valid for good.
std::span<const OperationWord> operationWords();
/// The operation of a word, or null.
const OperationWord* findOperationWord(std::string_view word);
