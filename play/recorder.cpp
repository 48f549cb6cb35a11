#include "play/recorder.h"

#include <algorithm>
#include <string_view>

#include "play/outcome.h"
#include "play/session_words.h"

namespace {

// Where the arrows stand, if the operation is not longer.
constexpr size_t ARROW_COLUMN = 32;

const OperationWord* wordOf(const Call& call) {
  for (const OperationWord& word : operationWords()) {
    const bool isIt = word.method == call.method || word.bulkMethod == call.method;
    if (isIt && !call.method.empty()) return &word;
  }
  return nullptr;
}

bool isSingle(const Call& call) { return call.method.starts_with("single_"); }

bool takesTransaction(const Call& call) { return !isSingle(call) && call.method != "get_deps"; }

bool takesNames(const OperationWord& word) {
  return word.arguments != ARGUMENTS_NONE && word.arguments != ARGUMENTS_TRANSACTION;
}

std::string nameOf(uint32_t transaction) { return "t" + std::to_string(transaction); }

// "t7: set a 1", or "start t7".
std::string operationText(const OperationWord& word, const Call& call) {
  std::string line(word.word);
  if (word.arguments == ARGUMENTS_TRANSACTION) return line + " " + nameOf(call.transaction);
  if (takesTransaction(call)) line = nameOf(call.transaction) + ": " + line;
  for (size_t i = 0; i < call.names.size(); ++i) {
    line += " " + spelledWord(call.names[i]);
    if (i < call.values.size()) line += " " + spelledWord(call.values[i]);
  }
  return line;
}

std::string withOutcome(std::string line, const std::string& outcome) {
  if (line.size() + 1 < ARROW_COLUMN) line.resize(ARROW_COLUMN - 1, ' ');
  line += " ->";
  return outcome.empty() ? line : line + " " + outcome;
}

bool isUnknownTransaction(const Answer& answer) {
  return answer.error.ends_with("invalid transaction id");
}

}  // namespace

void Recorder::called(const std::string& client, uint32_t serial, const Call& call,
                      bool wantsAnswer) {
  if (wantsAnswer) {
    calls_[{client, serial}] = call;
  } else {
    unanswered_.push_back(call);
  }
}

void Recorder::announced(const std::vector<std::string>& changes) {
  changes_.insert(changes_.end(), changes.begin(), changes.end());
}

void Recorder::answered(const std::string& client, uint32_t serial, Answer answer) {
  const auto made = calls_.find({client, serial});
  if (made == calls_.end()) return;
  Call call = std::move(made->second);
  calls_.erase(made);
  if (call.method == "start") call.transaction = answer.transaction;
  const OperationWord* const word = wordOf(call);
  const bool mayCommit = word != nullptr && word->outcome == OUTCOME_CHANGES;
  // It may be another's, who wanted no answer.
  const bool isOthers = !unanswered_.empty() && !changes_.empty();
  writeUnanswered();
  if (mayCommit) answer.changes = std::exchange(changes_, {});
  changes_.clear();
  write(call, mayCommit && isOthers ? nullptr : &answer);
}

void Recorder::forget(const std::string& client, uint32_t serial) {
  calls_.erase({client, serial});
}

void Recorder::begin() {
  unanswered_.clear();
  changes_.clear();
}

void Recorder::comment(const std::string& text) { writeLine_("# " + text); }

void Recorder::finish() { writeUnanswered(); }

void Recorder::writeUnanswered() {
  for (const Call& call : std::exchange(unanswered_, {})) {
    comment("wanted no answer:");
    write(call, nullptr);
  }
}

// Writes the operation; without an answer any outcome will do.
void Recorder::write(const Call& call, const Answer* answer) {
  const OperationWord* const word = wordOf(call);
  if (word == nullptr) return;
  if (takesNames(*word) && call.names.empty()) {
    return comment(std::string(call.method) + " of no names");
  }
  // Its transaction has no id.
  if (call.method == "start" && (answer == nullptr || !answer->error.empty())) {
    return comment(answer == nullptr ? "start" : "start: " + answer->error);
  }
  learnTransaction(call, answer);
  ++count_;
  const std::string line = operationText(*word, call);
  const bool hasOutcome = isClear(call) && answer != nullptr;
  if (!hasOutcome) return writeLine_(line);
  Answer shown = *answer;
  // A query for the range of one name has no name in its outcome.
  if (call.names.size() == 1 && shown.ranges.size() == 1) shown.ranges.front().name.clear();
  writeLine_(withOutcome(line, outcomeOf(*word, shown).shown()));
}

// A session names only transactions that it has started.
void Recorder::learnTransaction(const Call& call, const Answer* answer) {
  if (!takesTransaction(call)) return;
  const bool isNew = transactions_.insert(call.transaction).second;
  if (!isNew || call.method == "start") return;
  const std::string name = nameOf(call.transaction);
  if (answer != nullptr && isUnknownTransaction(*answer)) {
    writeLine_("start " + name);
    writeLine_("end " + name);
    return;
  }
  comment(name + " was open before; what it held is not known:");
  writeLine_("start " + name);
  unclear_.insert(call.transaction);
}

// Whether the session can give the outcome of the call. A transaction is empty after its commit.
bool Recorder::isClear(const Call& call) {
  if (!takesTransaction(call) || !unclear_.contains(call.transaction)) return true;
  if (call.method == "commit" || call.method == "end") unclear_.erase(call.transaction);
  return false;
}
