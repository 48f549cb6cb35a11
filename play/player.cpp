#include "play/player.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "play/loop_variables.h"
#include "play/recipe_client.h"
#include "play/wrong_name.h"
#include "vid_std.h"

namespace {

using Texts = std::vector<std::string>;

// No open transaction has it, unless there are as many as ids.
constexpr uint32_t UNKNOWN_ID = UINT32_MAX;

std::vector<std::string> standardNames() {
  std::set<std::string_view> known;
  std::vector<std::string> names;
  for (const vidStd_t& standard : vidStds()) {
    if (known.insert(standard.name).second) names.emplace_back(standard.name);
  }
  return names;
}

bool takesTransaction(const OperationWord& word) {
  return !word.method.starts_with("single_") && word.method != "get_deps";
}

}  // namespace

class SessionPlayer::State {
 public:
  State(const StartDevice& start, const PlayConstants& constants, PlayObserver& observer,
        size_t most)
      : start_(start), given_(constants), constants_(constants), observer_(observer), most_(most) {}

  std::optional<SessionError> play(const std::vector<SessionStep>& steps) {
    played_ = 0;
    playAll(steps);
    return std::exchange(error_, {});
  }

  Device* device() {
    if (device_ == nullptr) device_ = start_(constants_);
    return device_.get();
  }

 private:
  void playAll(const std::vector<SessionStep>& steps) {
    for (const SessionStep& step : steps) {
      if (error_) return;
      if (step.loop != nullptr) {
        playLoop(*step.loop);
      } else {
        playOperation(step.operation);
      }
    }
  }

  void playLoop(const Loop& loop) {
    const Texts values = listOf(loop);
    const size_t outer = variables_.size();
    variables_.add(loop.variables);
    for (auto value = values.begin(); value != values.end();) {
      if (error_ || !count(loop.place)) break;
      for (size_t i = outer; i < variables_.size(); ++i) variables_.set(i, *value++);
      playAll(loop.body);
    }
    variables_.keep(outer);
  }

  Texts listOf(const Loop& loop) {
    Texts values;
    for (const SessionWord& word : loop.list) {
      addListed(loop, word, values);
      if (error_) return {};
      if (values.size() > MAX_PLAYED) {
        fail(loop.place, "the loop has more than 1000000 values");
        return {};
      }
    }
    const size_t together = loop.variables.size();
    if (values.size() % together != 0) {
      fail(loop.place, std::to_string(values.size()) + " values are no whole rounds of " +
                           std::to_string(together));
      return {};
    }
    return values;
  }

  void addListed(const Loop& loop, const SessionWord& word, Texts& values) {
    const bool isName = !word.pieces.empty() && word.pieces.front().isVariable &&
                        variables_.find(word.pieces.front().text) == nullptr;
    if (isName) {
      addNamed(loop, word, values);
    } else if (isSpan(word)) {
      addSpan(loop, word, values);
    } else {
      values.push_back(variables_.valueOf(word));
    }
  }

  // $standards, or the present values of an index, or of a parameter's instance.
  void addNamed(const Loop& loop, const SessionWord& word, Texts& values) {
    SessionPlace place = loop.place;
    place.at = word.begin;
    const std::string name = word.pieces.front().text + variables_.valueOf(word, 1);
    if (name == "standards") {
      const Texts names = standardNames();
      values.insert(values.end(), names.begin(), names.end());
      return;
    }
    if (!startDevice(place)) return;
    Answer answer = device_->call({"get_idx_range", idOf({}), {name}});
    const bool isParm = answer.error.ends_with("index not found");
    if (isParm) {
      answer = device_->call({"get_range", idOf({}), {name}});
      if (answer.error.ends_with("(1)")) {
        return fail(place, "there is no variable, index or parameter instance \"" + name + "\"");
      }
    }
    const bool isOpen = !answer.ranges.empty() && answer.ranges.front().isOpen();
    if (isOpen && isParm) return fail(place, "\"" + name + "\" may have any value");
    // What does not exist now has no values.
    for (const NamedRange& range : answer.ranges) addAll(range, loop, values);
  }

  void addAll(const NamedRange& range, const Loop& loop, Texts& values) {
    if (countValues(range) > MAX_PLAYED) {
      fail(loop.place, "the loop has more than 1000000 values");
      return;
    }
    const Texts all = ::valuesOf(range);
    values.insert(values.end(), all.begin(), all.end());
  }

  // Whether a word is meant as a span such as 1..4: numbers around two dots or more.
  static bool isSpan(const SessionWord& word) {
    const std::string text = word.isQuoted() || word.hasVariable() ? std::string() : word.text();
    return text.find("..") != std::string::npos &&
           text.find_first_not_of("+-.0123456789") == std::string::npos &&
           text.find_first_of("0123456789") != std::string::npos;
  }

  void addSpan(const Loop& loop, const SessionWord& word, Texts& values) {
    SessionPlace place = loop.place;
    place.at = word.begin;
    const std::string text = word.text();
    const size_t dots = text.find("..");
    Span span;
    if (!takeNumber(std::string_view(text).substr(0, dots), span.first) ||
        !takeNumber(std::string_view(text).substr(dots + 2), span.second)) {
      return fail(place, "\"" + text + "\" is no span of whole numbers of 32 bits, such as 1..4");
    }
    if (span.first > span.second) {
      return fail(place, "\"" + text + "\" has no number: the lower one comes first");
    }
    addAll({{}, {}, {span}}, loop, values);
  }

  // Returns whether `text` is a number, all of it.
  static bool takeNumber(std::string_view text, int32_t& number) {
    if (text.starts_with('+')) text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
  }

  void playOperation(const Operation& operation) {
    if (!count(operation.place)) return;
    if (operation.word->kind != OPERATION_CONSTANTS && !startDevice(operation.place)) return;
    const Texts arguments = valuesOf(operation.arguments);
    std::optional<Outcome> outcome = outcomeOf(operation, arguments);
    if (!outcome) return;
    const bool isAsExpected = !operation.hasExpectation || isMet(operation.expected, *outcome);
    if (!isAsExpected) addReasons(operation, arguments, *outcome);
    observer_.played({operation, variables_.shown(), *std::move(outcome), isAsExpected});
  }

  std::optional<Outcome> outcomeOf(const Operation& operation, const Texts& arguments) {
    switch (operation.word->kind) {
      case OPERATION_CALL:
      case OPERATION_WHY:
        return call(operation, arguments);
      case OPERATION_START:
        return open(operation);
      case OPERATION_UP:
        return bringUp(operation, arguments);
      case OPERATION_CONSTANTS:
        return takeConstants(operation, arguments);
    }
    return {};
  }

  Outcome call(const Operation& operation, const Texts& arguments) {
    const OperationWord& word = *operation.word;
    Call call = {word.method};
    if (takesTransaction(word)) call.transaction = idOf(operation.transaction);
    const bool hasValues = word.arguments == ARGUMENTS_PAIR || word.arguments == ARGUMENTS_PAIRS ||
                           word.arguments == ARGUMENTS_QUESTION;
    for (size_t i = 0; i < arguments.size(); ++i) {
      (hasValues && i % 2 == 1 ? call.values : call.names).push_back(arguments[i]);
    }
    if (call.names.size() > 1) call.method = word.bulkMethod;
    const Answer answer = device_->call(call);
    noteWritten(call);
    return ::outcomeOf(word, answer);
  }

  // Keeps what was asked for last of each name, for reasons.
  void noteWritten(const Call& call) {
    std::string_view method = call.method;
    if (method.starts_with("single_")) method.remove_prefix(7);
    if (!method.starts_with("set") && !method.starts_with("reset")) return;
    for (size_t i = 0; i < call.names.size(); ++i) {
      written_.erase(call.names[i]);
      if (!call.values.empty()) written_[call.names[i]] = call.values[i];
    }
  }

  // Why the names that a difference is about are as they are, where the device can tell.
  void addReasons(const Operation& operation, const Texts& arguments, Outcome& outcome) {
    for (const std::string& name : namesToExplain(operation, arguments, outcome)) {
      const uint32_t id = idOf(operation.transaction);
      if (operation.word->outcome == OUTCOME_CHANGES) addSteps(name, id, outcome);
      for (const std::string& line : device_->call({"why", id, {name}}).notes) {
        outcome.notes.push_back(spelledWord(name) + " " + line);
      }
    }
  }

  // What has made another value of the one that was written.
  void addSteps(const std::string& name, uint32_t id, Outcome& outcome) {
    const auto written = written_.find(name);
    if (written == written_.end()) return;
    const std::string& value = written->second;
    for (const std::string& line : device_->call({"why", id, {name}, {value}}).notes) {
      if (!line.starts_with("becomes ")) continue;
      outcome.notes.push_back(spelledChange(std::string(name).append("=").append(value)) + " " +
                              line);
    }
  }

  // Of a query for ranges or values those that it names; else those of changes that are expected
  // and did not come, or came otherwise.
  [[nodiscard]] Texts namesToExplain(const Operation& operation, const Texts& arguments,
                                     const Outcome& outcome) const {
    const OperationWord& word = *operation.word;
    if (word.arguments == ARGUMENTS_NAMES && word.outcome != OUTCOME_CHANGES) return arguments;
    if (word.outcome != OUTCOME_CHANGES || word.kind != OPERATION_CALL) return {};
    std::set<std::string> expected;
    for (const SessionWord& change : operation.expected.words) {
      expected.insert(variables_.valueOf(change));
    }
    std::set<std::string> names;
    for (const std::string& change : outcome.changes) {
      if (expected.erase(change) == 0) names.insert(change.substr(0, change.find('=')));
    }
    for (const std::string& change : expected) names.insert(change.substr(0, change.find('=')));
    return {names.begin(), names.end()};
  }

  // A transaction of that name that is open already ends, so that nothing stays open unseen.
  Outcome open(const Operation& operation) {
    const auto known = transactions_.find(operation.transaction);
    if (known != transactions_.end()) static_cast<void>(device_->call({"end", known->second}));
    const Answer answer = device_->call({"start"});
    transactions_[operation.transaction] = answer.error.empty() ? answer.transaction : UNKNOWN_ID;
    return ::outcomeOf(*operation.word, answer);
  }

  // The transaction without a name opens by itself.
  uint32_t idOf(const std::string& name) {
    const auto known = transactions_.find(name);
    if (known != transactions_.end()) return known->second;
    if (!name.empty()) return UNKNOWN_ID;
    const Answer answer = device_->call({"start"});
    const uint32_t id = answer.error.empty() ? answer.transaction : UNKNOWN_ID;
    transactions_[name] = id;
    return id;
  }

  std::optional<Outcome> bringUp(const Operation& operation, const Texts& arguments) {
    std::optional<KnownDevice> known = device_->known();
    if (!known) {
      return ::outcomeOf(*operation.word, {.error = "the device has more than 1000000 instances"});
    }
    known->lastValues = settingsOf(arguments);
    if (!checkNames(operation, arguments, *known)) return {};
    const BroughtUp result = bringUpDevice(*device_, *std::move(known));
    Answer answer = {.changes = linesOf(result.changes)};
    if (!result.restless.empty()) answer.error = "these never agree:";
    for (const std::string& name : result.restless) answer.error += " " + spelledWord(name);
    return ::outcomeOf(*operation.word, answer);
  }

  // Returns whether the device can have the instances that are set.
  bool checkNames(const Operation& operation, const Texts& settings, const KnownDevice& known) {
    for (size_t i = 0; i < settings.size(); ++i) {
      const std::string name = settings[i].substr(0, settings[i].find('='));
      const std::optional<std::string> wrong = wrongName(known, name);
      if (!wrong) continue;
      SessionPlace place = operation.place;
      place.at = operation.arguments[i].begin;
      fail(place, *wrong);
      return false;
    }
    return true;
  }

  // With settings, the device starts anew.
  std::optional<Outcome> takeConstants(const Operation& operation, const Texts& arguments) {
    if (arguments.empty()) return ::outcomeOf(*operation.word, {.changes = linesOf(constants_)});
    constants_ = given_;
    for (const auto& [name, value] : settingsOf(arguments)) constants_[name] = value;
    device_.reset();
    transactions_.clear();
    written_.clear();
    if (!startDevice(operation.place)) return {};
    return ::outcomeOf(*operation.word, {});
  }

  static std::map<std::string, std::string> settingsOf(const Texts& arguments) {
    std::map<std::string, std::string> settings;
    for (const std::string& argument : arguments) {
      const size_t sign = argument.find('=');
      settings[argument.substr(0, sign)] = argument.substr(sign + 1);
    }
    return settings;
  }

  static Texts linesOf(const std::map<std::string, std::string>& values) {
    Texts lines;
    lines.reserve(values.size());
    for (const auto& [name, value] : values) {
      lines.push_back(std::string(name).append("=").append(value));
    }
    return lines;
  }

  bool isMet(const Expectation& expected, const Outcome& outcome) const {
    return isExpected(outcome, {.words = expectedWords(expected.words),
                                .isRefusal = expected.isRefusal,
                                .reason = expectedWords(expected.reason)});
  }

  [[nodiscard]] std::vector<ExpectedWord> expectedWords(
      const std::vector<SessionWord>& words) const {
    std::vector<ExpectedWord> result;
    result.reserve(words.size());
    for (const SessionWord& word : words) {
      result.push_back({variables_.valueOf(word), word.isQuoted()});
    }
    return result;
  }

  [[nodiscard]] Texts valuesOf(const std::vector<SessionWord>& words) const {
    Texts texts;
    texts.reserve(words.size());
    for (const SessionWord& word : words) texts.push_back(variables_.valueOf(word));
    return texts;
  }

  // Returns whether there is a device.
  bool startDevice(const SessionPlace& place) {
    if (device() == nullptr) fail(place, "the device does not start");
    return device_ != nullptr;
  }

  // Returns whether one more may be played.
  bool count(const SessionPlace& place) {
    if (played_++ < most_) return true;
    fail(place,
         "more than " + std::to_string(most_) + " operations and rounds of loops are played");
    return false;
  }

  void fail(const SessionPlace& place, std::string text) {
    error_ = {place.file->name, place.line, place.at + 1, std::move(text)};
  }

  const StartDevice& start_;
  const PlayConstants& given_;
  PlayConstants constants_;
  PlayObserver& observer_;
  const size_t most_;
  std::unique_ptr<Device> device_;
  std::map<std::string, uint32_t> transactions_;  // ids by name
  std::map<std::string, std::string> written_;    // the last values by full name
  LoopVariables variables_;
  size_t played_ = 0;
  std::optional<SessionError> error_;
};

SessionPlayer::SessionPlayer(const StartDevice& start, const PlayConstants& constants,
                             PlayObserver& observer, size_t most)
    : state_(std::make_unique<State>(start, constants, observer, most)) {}

SessionPlayer::~SessionPlayer() = default;

std::optional<SessionError> SessionPlayer::play(const Session& session) {
  return state_->play(session.steps);
}

Device* SessionPlayer::device() { return state_->device(); }

std::optional<SessionError> playSession(const Session& session, const StartDevice& start,
                                        const PlayConstants& constants, PlayObserver& observer,
                                        size_t most) {
  SessionPlayer player(start, constants, observer, most);
  std::optional<SessionError> error = player.play(session);
  // A session without operations needs a device, too.
  if (!error && player.device() == nullptr) {
    error = {session.files.front()->name, 1, 1, "the device does not start"};
  }
  return error;
}
