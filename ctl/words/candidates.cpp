#include "ctl/words/candidates.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <set>

#include "base/number.h"
#include "ctl/text/assignment.h"
#include "ctl/text/range_text.h"
#include "ctl/text/sentences.h"
#include "ctl/words/levels.h"

namespace {

constexpr size_t MOST_CANDIDATES = 12;
constexpr int64_t MOST_NUMBERS = 64;  // of which all are tried
constexpr size_t MOST_TEXTS = 64;

bool isWordLetter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

int64_t sizeOf(const std::vector<Span>& spans) {
  int64_t size = 0;
  for (const Span& span : spans) size += int64_t{span.second} - span.first + 1;
  return size;
}

void addNumbers(const InstanceState& state, const std::vector<std::string>& literals,
                std::set<int64_t>& numbers) {
  const bool isSmall = sizeOf(state.spans) <= MOST_NUMBERS;
  for (const Span& span : state.spans) {
    numbers.insert({span.first, span.second});
    for (int64_t number = span.first; isSmall && number < span.second; ++number) {
      numbers.insert(number);
    }
  }
  for (const std::string& literal : literals) {
    const std::optional<int32_t> number = wholeNumber(literal);
    if (literal.empty() || !number) continue;
    for (const int64_t each : {int64_t{*number} - 1, int64_t{*number}, int64_t{*number} + 1}) {
      if (isAllowed(state, std::to_string(each))) numbers.insert(each);
    }
  }
}

// Walks from what decides about an instance to what decides about that.
class CandidateWalk {
 public:
  CandidateWalk(Client& client, const std::string& name, const std::string& wanted)
      : client_(client),
        wanted_(wanted),
        dependencies_(client.service.dependencies({name}).front().value_or(Names())),
        parameters_(client.service) {}

  void add(const std::vector<Reason>& reasons) {
    Names deciding;
    for (const std::string& name : dependencies_) {
      if (!parameters_.has(name) || !isMentioned(reasons, name)) continue;
      if (known_.insert(name).second) deciding.push_back(name);
    }
    addLiterals(reasons);
    if (deciding.empty()) return;
    // What limits a candidate decides with it, where a value is wanted.
    Names decided;
    for (const InstanceState& state : client_.service.states(COMMITTED, deciding)) {
      if (parameters_.canBeSet(state.name)) candidates_.push_back(state);
      if (!wanted_.empty() || !state.is(STATE_WRITABLE)) decided.push_back(state.name);
    }
    if (decided.empty() || candidates_.size() >= MOST_CANDIDATES) return;
    std::vector<Reason> further;
    for (const auto& each : client_.service.explain(COMMITTED, decided)) {
      const std::vector<Reason> deciders = decidingReasons(each, true);
      further.insert(further.end(), deciders.begin(), deciders.end());
    }
    add(further);
  }

  [[nodiscard]] std::vector<Candidate> candidates() {
    if (!wanted_.empty()) literals_.insert(wanted_);
    std::vector<Candidate> all;
    for (const InstanceState& state : candidates_) {
      if (all.size() == MOST_CANDIDATES) break;
      all.push_back({state, valuesToTry(state, {literals_.begin(), literals_.end()})});
      // Out of range now, it may be in range together with another change.
      const bool mayFit =
          !state.spans.empty() && wholeNumber(wanted_) && !isAllowed(state, wanted_);
      if (!wanted_.empty() && mayFit) all.back().values.push_back(wanted_);
    }
    return all;
  }

 private:
  static bool isMentioned(const std::vector<Reason>& reasons, const std::string& name) {
    return std::ranges::any_of(
        reasons, [&](const Reason& reason) { return mentions(reason.statement, baseOf(name)); });
  }
  void addLiterals(const std::vector<Reason>& reasons) {
    for (const Reason& reason : reasons) {
      for (std::string& literal : literalsOf(reason.statement)) {
        literals_.insert(std::move(literal));
      }
    }
  }

  Client& client_;
  const std::string wanted_;
  const Names dependencies_;
  const Levels parameters_;
  std::set<std::string> known_;
  std::set<std::string> literals_;
  std::vector<InstanceState> candidates_;
};

}  // namespace

std::vector<std::string> literalsOf(const std::string& statement) {
  std::vector<std::string> literals;
  for (size_t i = 0; i < statement.size();) {
    if (statement[i] == '"') {
      const size_t end = std::min(statement.find('"', i + 1), statement.size());
      literals.push_back(statement.substr(i + 1, end - i - 1));
      i = end + 1;
    } else if (isWordLetter(statement[i])) {
      const size_t begin = i;
      while (i < statement.size() && isWordLetter(statement[i])) ++i;
      const std::string word = statement.substr(begin, i - begin);
      if (wholeNumber(word)) literals.push_back(word);
    } else {
      ++i;
    }
  }
  return literals;
}

bool mentions(const std::string& statement, std::string_view name) {
  for (size_t at = statement.find(name); at != std::string::npos;
       at = statement.find(name, at + 1)) {
    const size_t end = at + name.size();
    const bool begins = at == 0 || !isWordLetter(statement[at - 1]);
    const bool ends = end == statement.size() || !isWordLetter(statement[end]);
    if (begins && ends) return true;
  }
  return false;
}

std::vector<std::string> valuesToTry(const InstanceState& state,
                                     const std::vector<std::string>& literals) {
  if (!state.is(STATE_LIMITED)) {
    std::vector<std::string> values = literals;
    std::erase(values, state.value);
    return values;
  }
  std::set<int64_t> numbers;
  addNumbers(state, literals, numbers);
  std::vector<int64_t> nearest(numbers.begin(), numbers.end());
  const int64_t own = state.value.empty() ? 0 : wholeNumber(state.value).value_or(0);
  std::ranges::stable_sort(nearest, {}, [&](int64_t number) { return std::abs(number - own); });
  std::vector<std::string> values;
  values.reserve(nearest.size());
  for (const int64_t number : nearest) values.push_back(std::to_string(number));
  const size_t texts = std::min(state.texts.size(), MOST_TEXTS);
  values.insert(values.end(), state.texts.begin(),
                state.texts.begin() + static_cast<ptrdiff_t>(texts));
  std::erase_if(values, [&](const std::string& value) { return isSameValue(value, state.value); });
  return values;
}

std::vector<Reason> decidingReasons(const std::vector<Reason>& reasons, bool isForValue) {
  std::vector<Reason> deciding;
  for (const Reason& reason : reasons) {
    const bool forbids =
        (reason.question == "exists" || reason.question == "writable") && reason.answer == "no";
    if (forbids || (isForValue && reason.question == "limits")) deciding.push_back(reason);
  }
  return deciding;
}

std::vector<Candidate> findCandidates(Client& client, const std::string& name,
                                      const std::vector<Reason>& reasons,
                                      const std::string& wanted) {
  CandidateWalk walk(client, name, wanted);
  walk.add(reasons);
  return walk.candidates();
}
