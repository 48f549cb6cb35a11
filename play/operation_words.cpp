#include "play/operation_words.h"

#include <algorithm>

namespace {

constexpr OperationWord WORDS[] = {
    {"check_set", OPERATION_CALL, "check_set", "", ARGUMENTS_PAIR, OUTCOME_VALID, "Validate",
     "check_set NAME VALUE"},
    {"commit", OPERATION_CALL, "commit", "", ARGUMENTS_NONE, OUTCOME_CHANGES, "Commit", "commit"},
    {"constants", OPERATION_CONSTANTS, "", "", ARGUMENTS_SETTINGS, OUTCOME_CHANGES, "",
     "constants [NAME=VALUE...]"},
    {"deps", OPERATION_CALL, "get_deps", "", ARGUMENTS_NAME, OUTCOME_VALUES, "Get deps",
     "deps NAME"},
    {"end", OPERATION_CALL, "end", "", ARGUMENTS_TRANSACTION, OUTCOME_NONE, "End",
     "end [TRANSACTION]"},
    {"get", OPERATION_CALL, "get", "get_bulk", ARGUMENTS_NAMES, OUTCOME_VALUES, "Get",
     "get NAME..."},
    {"index range", OPERATION_CALL, "get_idx_range", "", ARGUMENTS_NAME, OUTCOME_RANGES,
     "Get index range", "index range INDEX"},
    {"indices", OPERATION_CALL, "get_parm_idx", "", ARGUMENTS_NAME, OUTCOME_VALUES,
     "Get parm index", "indices NAME"},
    {"range", OPERATION_CALL, "get_range", "get_range_bulk", ARGUMENTS_NAMES, OUTCOME_RANGES,
     "Get range", "range NAME..."},
    {"reset", OPERATION_CALL, "reset", "reset_bulk", ARGUMENTS_NAMES, OUTCOME_NONE, "Reset",
     "reset NAME..."},
    {"reset_status", OPERATION_CALL, "reset_status", "reset_status_bulk", ARGUMENTS_NAMES,
     OUTCOME_NONE, "Reset status", "reset_status NAME..."},
    {"set", OPERATION_CALL, "set", "set_bulk", ARGUMENTS_PAIRS, OUTCOME_NONE, "Set",
     "set NAME VALUE [NAME VALUE...]"},
    {"set_status", OPERATION_CALL, "set_status", "set_status_bulk", ARGUMENTS_PAIRS, OUTCOME_NONE,
     "Set status", "set_status NAME VALUE [NAME VALUE...]"},
    {"single_check_set", OPERATION_CALL, "single_check_set", "", ARGUMENTS_PAIR, OUTCOME_VALID,
     "Validate", "single_check_set NAME VALUE"},
    {"single_get", OPERATION_CALL, "single_get", "single_get_bulk", ARGUMENTS_NAMES, OUTCOME_VALUES,
     "Get", "single_get NAME..."},
    {"single_reset", OPERATION_CALL, "single_reset", "single_reset_bulk", ARGUMENTS_NAMES,
     OUTCOME_CHANGES, "Reset", "single_reset NAME..."},
    {"single_reset_status", OPERATION_CALL, "single_reset_status", "single_reset_status_bulk",
     ARGUMENTS_NAMES, OUTCOME_CHANGES, "Reset status", "single_reset_status NAME..."},
    {"single_set", OPERATION_CALL, "single_set", "single_set_bulk", ARGUMENTS_PAIRS,
     OUTCOME_CHANGES, "Set", "single_set NAME VALUE [NAME VALUE...]"},
    {"single_set_status", OPERATION_CALL, "single_set_status", "single_set_status_bulk",
     ARGUMENTS_PAIRS, OUTCOME_CHANGES, "Set status",
     "single_set_status NAME VALUE [NAME VALUE...]"},
    {"single_validate", OPERATION_CALL, "single_is_valid", "", ARGUMENTS_PAIR, OUTCOME_VALID,
     "Validate", "single_validate NAME VALUE"},
    {"start", OPERATION_START, "start", "", ARGUMENTS_TRANSACTION, OUTCOME_NONE, "Start",
     "start [TRANSACTION]"},
    {"try", OPERATION_CALL, "try", "", ARGUMENTS_NONE, OUTCOME_CHANGES, "Commit", "try"},
    {"up", OPERATION_UP, "", "", ARGUMENTS_SETTINGS, OUTCOME_CHANGES, "", "up [NAME=VALUE...]"},
    {"validate", OPERATION_CALL, "is_valid", "", ARGUMENTS_PAIR, OUTCOME_VALID, "Validate",
     "validate NAME VALUE"},
    {"why", OPERATION_WHY, "why", "", ARGUMENTS_QUESTION, OUTCOME_NONE, "Get", "why NAME [VALUE]"},
};

}  // namespace

std::span<const OperationWord> operationWords() { return WORDS; }

const OperationWord* findOperationWord(std::string_view word) {
  const auto* const found = std::ranges::find(WORDS, word, &OperationWord::word);
  return found == std::end(WORDS) ? nullptr : found;
}
