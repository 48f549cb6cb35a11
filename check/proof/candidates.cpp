#include "check/proof/candidates.h"

#include <algorithm>
#include <limits>

#include "base/number.h"
#include "base/work.h"
#include "deflang/expression/operators.h"
#include "vid_std.h"

namespace {

constexpr size_t MANY_TEXTS = 2000;
// A text that no author writes, and one like it that begins with a number.
constexpr const char* OTHER_TEXT = "~";
constexpr const char* OTHER_TEXT_WITH_NUMBER = "1~";

// What an operand is, as far as it matters for the use of a name beside it.
struct Node {
  enum Kind { NUMBER, TEXT, NAME, RESULT } kind = RESULT;
  int32_t number = 0;
  std::string_view text = {};
  NameUse* use = nullptr;  // of a name that is no figure
};

bool isOrdering(int32_t code) {
  return code == OP_LESS || code == OP_GREATER || code == OP_LESS_EQUAL || code == OP_GREATER_EQUAL;
}

void noteComparison(NameUse& use, int32_t code, const Node& other) {
  if (other.kind == Node::NUMBER) {
    noteNumber(other.number, use);
    use.isOrdered = use.isOrdered || isOrdering(code);
  } else if (other.kind == Node::TEXT && !isOrdering(code) && code != OP_CONTAINS) {
    use.texts.emplace(other.text);
    if (const std::optional<int32_t> number = wholeNumber(other.text)) noteNumber(*number, use);
  } else {
    use.isReckoned = true;
    use.isText = use.isText || other.kind != Node::RESULT;
    if (other.kind == Node::TEXT) use.texts.emplace(other.text);
  }
}

void noteOperand(const Node& operand, int32_t code, const Node& other) {
  if (operand.kind != Node::NAME || operand.use == nullptr) return;
  NameUse& use = *operand.use;
  if (comparesTexts(code)) {
    noteComparison(use, code, other);
  } else if (code != OP_LOGICAL_AND && code != OP_LOGICAL_OR) {
    use.isReckoned = true;
    use.isText = use.isText || code == OP_ADD;
    if (other.kind == Node::NUMBER) noteNumber(other.number, use);
  }
}

// The ends of the spans, and the numbers compared with that are within. Between two neighbours of
// these, no comparison tells one number from another.
std::set<int32_t> tellingNumbers(const Domain& domain, const NameUse& use) {
  std::set<int32_t> numbers;
  for (const int32_t number : {-1, 0, 1}) {
    if (domain.contains(numberText(number))) numbers.insert(number);
  }
  for (const int32_t number : use.numbers) {
    if (domain.contains(numberText(number))) numbers.insert(number);
  }
  for (const auto& [low, high] : domain.spans()) {
    numbers.insert(low);
    numbers.insert(high);
  }
  return numbers;
}

// A text is ordered beside a number by the bytes of both: adds one that comes before all numbers,
// and one behind each of `numbers` with no other one between.
void addTextsBetween(const std::set<int32_t>& numbers, std::set<std::string, std::less<>>& texts) {
  constexpr const char* BEFORE_DIGITS = "!";
  texts.emplace(BEFORE_DIGITS);
  for (const int32_t number : numbers) texts.insert(numberText(number) + BEFORE_DIGITS);
}

void addTexts(const Domain& domain, const NameUse& use, Candidates& out) {
  if (domain.isAll()) {
    // Where one range takes every value, those of another one may still be kept apart.
    std::set<std::string, std::less<>> texts = domain.texts();
    for (const std::string& text : use.texts) {
      if (!wholeNumber(text)) texts.insert(text);
    }
    texts.erase("");
    if (use.isOrdered) addTextsBetween(use.numbers, texts);
    for (const std::string& text : texts) out.values.emplace_back(text);
    out.values.emplace_back(OTHER_TEXT);
    out.values.emplace_back(OTHER_TEXT_WITH_NUMBER);
    out.values.emplace_back("");
    return;
  }
  if (domain.texts().size() > MANY_TEXTS) out.isComplete = false;
  for (const std::string& text : domain.texts()) {
    if (domain.texts().size() <= MANY_TEXTS || use.texts.contains(text)) {
      out.values.emplace_back(text);
    }
  }
}

void addStandards(Candidates& out) {
  std::set<std::string> names;
  for (const vidStd_t& standard : vidStds()) names.insert(standard.name);
  for (const vidFormat_t& format : vidFormats()) names.insert(format.name);
  for (const std::string& name : names) out.values.emplace_back(name);
}

}  // namespace

void noteNumber(int32_t number, NameUse& use) {
  use.numbers.insert(number);
  if (number > std::numeric_limits<int32_t>::min()) use.numbers.insert(number - 1);
  if (number < std::numeric_limits<int32_t>::max()) use.numbers.insert(number + 1);
}

void addUse(const NameUse& other, NameUse& use) {
  use.numbers.insert(other.numbers.begin(), other.numbers.end());
  use.texts.insert(other.texts.begin(), other.texts.end());
  use.isText = use.isText || other.isText;
  use.isOrdered = use.isOrdered || other.isOrdered;
  use.isReckoned = use.isReckoned || other.isReckoned;
  use.isFigure = use.isFigure || other.isFigure;
}

void noteUses(const CompiledExpression& expression, ExpressionPurpose purpose, NameUses& uses) {
  std::vector<Node> stack;
  for (const Program::Step& step : expression.program.steps()) {
    const auto place = static_cast<size_t>(step.value);
    if (step.kind == TOKEN_NUMBER) {
      stack.push_back({Node::NUMBER, step.value});
    } else if (step.kind == TOKEN_STRING) {
      stack.push_back({Node::TEXT, 0, expression.program.texts()[place]});
    } else if (step.kind == TOKEN_VARIABLE) {
      const VariableSource& source = expression.sources[place];
      NameUse& use = uses[std::string(source.name)];
      use.isFigure = use.isFigure || source.figure != nullptr;
      stack.push_back({Node::NAME, 0, {}, source.figure == nullptr ? &use : nullptr});
    } else {
      const Node right = stack.back();
      stack.pop_back();
      noteOperand(stack.back(), step.kind, right);
      noteOperand(right, step.kind, stack.back());
      stack.back() = {};
    }
  }
  if (purpose == FOR_TRUTH || stack.empty() || stack.front().use == nullptr) return;
  stack.front().use->isReckoned = true;
  stack.front().use->isText = true;
}

void noteUses(const CompiledStatement& statement, NameUses& uses) {
  if (statement.condition) noteUses(*statement.condition, FOR_TRUTH, uses);
  for (const CompiledItem& item : statement.items) {
    forEachExpression(
        item, [&](const CompiledExpression& expression) { noteUses(expression, FOR_VALUE, uses); });
  }
}

Candidates candidatesFor(const NameDomain& domain, const NameUse& use, uint64_t few) {
  Work::add(WORK_PER_ITEM * (domain.values.spans().size() + domain.values.texts().size() +
                             use.numbers.size() + use.texts.size()));
  Candidates out;
  if (domain.mayBeUndefined) out.values.emplace_back(std::nullopt);
  const Domain& values = domain.values;
  const uint64_t numbers = values.isAll() ? UINT64_MAX : values.size() - values.texts().size();
  if (numbers <= few) {
    for (const auto& [low, high] : values.spans()) {
      for (int64_t number = low; number <= high; ++number) {
        out.values.emplace_back(numberText(static_cast<int32_t>(number)));
      }
    }
  } else {
    for (const int32_t number : tellingNumbers(values, use)) {
      out.values.emplace_back(numberText(number));
    }
    if (use.isReckoned || use.isText) out.isComplete = false;
  }
  addTexts(values, use, out);
  if (values.isAll() && use.isText) out.isComplete = false;
  if (values.isAll() && use.isFigure) addStandards(out);
  return out;
}
