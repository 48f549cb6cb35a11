#include "deflang/expression/program.h"

#include <algorithm>
#include <forward_list>
#include <optional>
#include <string_view>
#include <utility>

#include "base/joined_text.h"
#include "base/number.h"
#include "base/small_vector.h"
#include "base/value_limit.h"
#include "deflang/expression/operators.h"
#include "deflang/expression/postfix.h"

namespace {

// How many operands an evaluation holds without an allocation; few expressions hold more at once.
constexpr size_t FEW_OPERANDS = 16;

// Whether a program of this one token is a single step: a string is not, because its text needs
// Code.
bool isSingle(const Token& token) {
  return token.kind == TOKEN_NUMBER || token.kind == TOKEN_VARIABLE;
}

// An operand on the stack. It has no initial values, because most of the stack stays unused.
struct Held {
  OperandKind kind;
  int32_t number;      // of a number
  const char* text;    // of a string; not owned
  size_t size;         // of that text, in bytes
  JoinedText* joined;  // of a string that an addition made, what owns its text; else null

  [[nodiscard]] std::string_view view() const { return {text, size}; }
  [[nodiscard]] bool isNumber() const { return kind == OPERAND_NUMBER; }
  [[nodiscard]] bool isInvalid() const { return kind == OPERAND_INVALID; }

  void setNumber(int32_t value) {
    kind = OPERAND_NUMBER;
    number = value;
  }
  // Takes the result of an operator. Returns false where there is none.
  bool setNumber(std::optional<int32_t> value) {
    if (!value) return false;
    setNumber(*value);
    return true;
  }
  void setText(std::string_view value, JoinedText* joinedText = nullptr) {
    kind = OPERAND_STRING;
    text = value.data();
    size = value.size();
    joined = joinedText;
  }
  void setOperand(const Operand& operand) {
    if (operand.kind == OPERAND_STRING) {
      setText(operand.text);
    } else {
      kind = operand.kind;
      number = operand.number;
    }
  }
};

// The number of an operand; of a string, the number at its start.
int32_t toNumber(const Held& held) {
  if (held.isNumber()) return held.number;
  Work::add(held.size);
  return leadingNumber(held.view());
}

// The text of an operand. `digits` holds the text of a number, and has to live as long as the
// result.
std::string_view toText(const Held& held, std::string& digits) {
  if (!held.isNumber()) return held.view();
  digits = numberText(held.number);
  return digits;
}

// What the operator `code`, a comparison or OP_CONTAINS, costs at most for two texts.
uint64_t comparisonWork(int32_t code, std::string_view left, std::string_view right) {
  return code == OP_CONTAINS ? left.size() * WORK_PER_SEARCHED_BYTE
                             : std::min(left.size(), right.size());
}

}  // namespace

// One run of a program. It owns the texts that additions make; other texts are the program's or the
// situation's. So its value() is valid as long as all three.
class Program::Evaluation {
 public:
  Evaluation(const Program& program, const SituationView& situation)
      : program_(program),
        situation_(situation),
        stack_(program.depth(), boost::container::default_init) {
    run(stack_.data());
  }

  // The value, or null where there is none.
  [[nodiscard]] const Held* value() const { return value_; }

 private:
  void run(Held* stack) {
    Held* top = stack;  // the first free place
    for (const Step& step : program_.steps()) {
      switch (step.kind) {
        case TOKEN_NUMBER:
          (top++)->setNumber(step.value);
          break;
        case TOKEN_STRING:
          (top++)->setText(program_.code_->texts[static_cast<size_t>(step.value)]);
          break;
        case TOKEN_VARIABLE:
          (top++)->setOperand(situation_[static_cast<uint32_t>(step.value)]);
          break;
        default:
          --top;
          if (!apply(step.kind, top[-1], *top)) return;
      }
    }
    if (top != stack && !stack->isInvalid()) value_ = stack;
  }

  // Applies an operator to two operands, and puts its result in the place of `left`. Returns false
  // where there is no result; `left` is then of no use.
  bool apply(int32_t code, Held& left, const Held& right) {
    if (left.isNumber() && right.isNumber() && code != OP_CONTAINS) {
      return left.setNumber(calculate(code, left.number, right.number));
    }
    if (left.isInvalid() || right.isInvalid()) return applyToOne(code, left, right);
    if (code == OP_ADD) return join(left, right);
    if (comparesTexts(code)) {
      std::string leftDigits;
      std::string rightDigits;
      const std::string_view leftText = toText(left, leftDigits);
      const std::string_view rightText = toText(right, rightDigits);
      Work::add(comparisonWork(code, leftText, rightText));
      return left.setNumber(compareTexts(code, leftText, rightText));
    }
    return left.setNumber(calculate(code, toNumber(left), toNumber(right)));
  }

  // As apply(), where at least one operand is an undefined variable.
  static bool applyToOne(int32_t code, Held& left, const Held& right) {
    const Held& defined = left.isInvalid() ? right : left;
    return !defined.isInvalid() && left.setNumber(absorb(code, toNumber(defined)));
  }

  // As apply(), for an addition of texts. Each operand is used once, so a text that an earlier
  // addition made may go on growing instead of being copied. Where both sides are such texts, the
  // shorter one is added to the longer one.
  bool join(Held& left, const Held& right) {
    std::string leftDigits;
    std::string rightDigits;
    const std::string_view leftText = toText(left, leftDigits);
    const std::string_view rightText = toText(right, rightDigits);
    if (leftText.size() + rightText.size() > MAX_VALUE_BYTES) return false;
    JoinedText* const leftJoined = left.isNumber() ? nullptr : left.joined;
    JoinedText* const rightJoined = right.isNumber() ? nullptr : right.joined;
    if (rightJoined != nullptr && (leftJoined == nullptr || leftText.size() < rightText.size())) {
      Work::add(leftText.size());
      rightJoined->prepend(leftText);
      left.setText(rightJoined->view(), rightJoined);
      return true;
    }
    Work::add((leftJoined != nullptr ? 0 : leftText.size()) + rightText.size());
    JoinedText* const joined =
        leftJoined != nullptr ? leftJoined : &joined_.emplace_front(leftText);
    joined->append(rightText);
    left.setText(joined->view(), joined);
    return true;
  }

  const Program& program_;
  const SituationView& situation_;
  const Held* value_ = nullptr;
  std::forward_list<JoinedText> joined_;
  SmallVector<Held, FEW_OPERANDS> stack_;
};

bool Value::isTrue() const { return isNumber() ? number != 0 : valid() && !text.empty(); }

std::string Value::asText() const { return isNumber() ? numberText(number) : text; }

int Program::compile(const Expression& expression, Variables& variables, Program& out) {
  out = Program();
  if (expression.tokens.size() == 1 && isSingle(expression.tokens.front())) {
    std::vector<std::string> noTexts;
    out.single_ = stepOf(expression.tokens.front(), noTexts, variables);
    return 0;
  }
  std::vector<const Token*> order;
  if (const int failed = postfixOrder(expression, order); failed != 0) return failed;
  auto code = std::make_unique<Code>();
  code->steps.reserve(order.size());
  uint32_t held = 0;
  for (const Token* token : order) {
    held = isOperator(token->kind) ? held - 1 : held + 1;
    code->depth = std::max(code->depth, held);
    code->steps.push_back(stepOf(*token, code->texts, variables));
  }
  out.code_ = std::move(code);
  return 0;
}

Program::Step Program::stepOf(const Token& token, std::vector<std::string>& texts,
                              Variables& variables) {
  switch (token.kind) {
    case TOKEN_NUMBER:
      return {TOKEN_NUMBER, token.number};
    case TOKEN_STRING:
      texts.emplace_back(token.text);
      return {TOKEN_STRING, static_cast<int32_t>(texts.size() - 1)};
    case TOKEN_VARIABLE:
      return {TOKEN_VARIABLE, static_cast<int32_t>(variables.intern(token.text))};
    default:
      return {token.kind, 0};
  }
}

void Program::rebase(const Variables& from, Variables& into) {
  const std::span<Step> all = code_ != nullptr ? std::span(code_->steps) : std::span(&single_, 1);
  for (Step& step : all) {
    if (step.kind != TOKEN_VARIABLE) continue;
    step.value = static_cast<int32_t>(into.intern(from[static_cast<uint32_t>(step.value)]));
  }
}

Program Program::constant(int32_t number) {
  Program program;
  program.single_ = {TOKEN_NUMBER, number};
  return program;
}

Program Program::constant(Value value) {
  return value.isNumber() ? constant(value.number) : constant(std::move(value.text));
}

Program Program::constant(std::string text) {
  auto code = std::make_unique<Code>();
  code->steps.push_back({TOKEN_STRING, 0});
  code->texts.push_back(std::move(text));
  code->depth = 1;
  Program program;
  program.code_ = std::move(code);
  return program;
}

Value Program::evaluate(const SituationView& situation) const {
  const Evaluation evaluation(*this, situation);
  const Held* const held = evaluation.value();
  if (held == nullptr) return {};
  if (held->isNumber()) return {OPERAND_NUMBER, held->number, {}};
  if (isTooLong(held->view())) return {};
  Work::add(held->size);
  return {OPERAND_STRING, 0, std::string(held->view())};
}

bool Program::isTrue(const SituationView& situation) const {
  const Evaluation evaluation(*this, situation);
  const Held* const held = evaluation.value();
  if (held == nullptr) return false;
  return held->isNumber() ? held->number != 0 : held->size != 0;
}

bool Program::usesVariables() const {
  const std::span<const Step> all = steps();
  return std::any_of(all.begin(), all.end(),
                     [](const Step& step) { return step.kind == TOKEN_VARIABLE; });
}
