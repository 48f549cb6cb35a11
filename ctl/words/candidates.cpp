#include "ctl/words/candidates.h"

#include <algorithm>
#include <array>
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
constexpr size_t MOST_BEYOND = 12;

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

Names statementsOf(const std::vector<Reason>& reasons) {
  Names statements;
  for (const Reason& reason : reasons) statements.push_back(reason.statement);
  return statements;
}

// The literal, and the numbers beside one.
std::vector<std::string> withNeighbours(const std::string& literal) {
  const std::optional<int32_t> number = wholeNumber(literal);
  if (literal.empty() || !number) return {literal};
  return {literal, std::to_string(int64_t{*number} + 1), std::to_string(int64_t{*number} - 1)};
}

// Where everything is taken: what the statements name, then what is beside that, then a number and
// a text that they need not name.
std::vector<std::string> openValues(const std::string& own,
                                    const std::vector<std::string>& literals) {
  std::vector<std::string> values;
  const auto add = [&](const std::string& value) {
    if (value != own && std::ranges::find(values, value) == values.end()) values.push_back(value);
  };
  for (const std::string& literal : literals) add(literal);
  for (const std::string& literal : literals) {
    if (values.size() >= MOST_TEXTS) break;
    for (const std::string& value : withNeighbours(literal)) add(value);
  }
  const bool isNumber = !own.empty() && wholeNumber(own);
  const auto others = isNumber ? std::array{"0", "1", "x"} : std::array{"x", "0", "1"};
  for (const char* other : others) add(other);
  return values;
}

// How far a walk goes.
enum Width {
  DECIDING_NOW,      // over the statements that decide in the present situation
  DECIDING_AT_TIMES  // over all that may decide
};

// Walks from what decides about an instance to what decides about that.
class CandidateWalk {
 public:
  CandidateWalk(Client& client, Width width, const std::string& name, const std::string& wanted)
      : client_(client),
        width_(width),
        name_(name),
        wanted_(wanted),
        dependencies_(client.service.dependencies({name}).front().value_or(Names())),
        parameters_(client.service) {}

  void addDefined() {
    if (parameters_.canBeSet(name_)) add(definedStatements({name_}, !wanted_.empty()));
  }

  void add(const Names& statements) {
    Names deciding;
    for (const std::string& name : dependencies_) {
      if (!parameters_.has(name) || !isMentioned(statements, name)) continue;
      if (known_.insert(name).second) deciding.push_back(name);
    }
    addLiterals(statements);
    if (deciding.empty()) return;
    // What limits a candidate decides with it, where a value is wanted.
    Names decided;
    for (const InstanceState& state : client_.service.states(COMMITTED, deciding)) {
      if (parameters_.canBeSet(state.name)) candidates_.push_back(state);
      const bool decides = !wanted_.empty() || !state.is(STATE_WRITABLE);
      if (decides || width_ == DECIDING_AT_TIMES) decided.push_back(state.name);
    }
    if (decided.empty() || candidates_.size() >= MOST_CANDIDATES) return;
    add(width_ == DECIDING_NOW ? decidingStatements(decided) : definedStatements(decided, true));
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
      if (width_ == DECIDING_AT_TIMES) all.back().beyond = valuesBeyond(state);
    }
    return all;
  }

 private:
  static bool isMentioned(const Names& statements, const std::string& name) {
    return std::ranges::any_of(
        statements, [&](const std::string& each) { return mentions(each, baseOf(name)); });
  }

  void addLiterals(const Names& statements) {
    for (const std::string& statement : statements) {
      for (std::string& literal : literalsOf(statement)) literals_.insert(std::move(literal));
    }
    statements_.insert(statements_.end(), statements.begin(), statements.end());
  }

  Names decidingStatements(const Names& names) {
    std::vector<Reason> all;
    for (const auto& each : client_.service.explain(COMMITTED, names)) {
      const std::vector<Reason> deciders = decidingReasons(each, true);
      all.insert(all.end(), deciders.begin(), deciders.end());
    }
    return statementsOf(all);
  }

  // The statements that may lock the instances, and where it `isForValue` limit them; and those
  // of their indices.
  Names definedStatements(const Names& names, bool isForValue) {
    std::set<std::string> bases;
    for (const std::string& name : names) bases.emplace(baseOf(name));
    Names statements;
    std::set<std::string> indices;
    for (const Definition& definition : client_.service.definitions({bases.begin(), bases.end()})) {
      for (const std::string& text : definition.statements) {
        if (mayDecide(text, isForValue)) statements.push_back(text);
      }
      indices.insert(definition.indices.begin(), definition.indices.end());
    }
    for (const Definition& index : client_.service.definitions({indices.begin(), indices.end()})) {
      statements.insert(statements.end(), index.statements.begin(), index.statements.end());
    }
    return statements;
  }

  static bool mayDecide(const std::string& statement, bool isForValue) {
    return statement.starts_with("ctrl") || (isForValue && statement.starts_with("rangeValid"));
  }

  // Of the statements that use the instance, those nearest to the wanted one first. An index value
  // of that one may be what is compared.
  [[nodiscard]] std::vector<std::string> valuesBeyond(const InstanceState& state) const {
    std::vector<std::string> values;
    if (!state.is(STATE_LIMITED)) return values;
    std::vector<std::string> literals = literalsOf(name_);
    for (const std::string& statement : statements_) {
      if (!mentions(statement, baseOf(state.name))) continue;
      for (std::string& literal : literalsOf(statement)) literals.push_back(std::move(literal));
    }
    for (const std::string& literal : literals) {
      for (const std::string& value : withNeighbours(literal)) {
        const bool isNew = std::ranges::find(values, value) == values.end();
        if (isNew && !isAllowed(state, value) && values.size() < MOST_BEYOND) {
          values.push_back(value);
        }
      }
    }
    return values;
  }

  Client& client_;
  const Width width_;
  const std::string name_;
  const std::string wanted_;
  const Names dependencies_;
  const Levels parameters_;
  std::set<std::string> known_;
  std::set<std::string> literals_;
  Names statements_;  // in the order of the walk
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
  if (!state.is(STATE_LIMITED)) return openValues(state.value, literals);
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
  CandidateWalk walk(client, DECIDING_NOW, name, wanted);
  walk.add(statementsOf(reasons));
  return walk.candidates();
}

std::vector<Candidate> findWiderCandidates(Client& client, const std::string& name,
                                           const std::string& wanted) {
  CandidateWalk walk(client, DECIDING_AT_TIMES, name, wanted);
  walk.addDefined();
  return walk.candidates();
}
