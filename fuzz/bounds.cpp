// Fuzzes bounds: spans and texts as the input chooses them, held against sets of single numbers.
//
// All numbers lie in a window of 41 around a middle, which may be the end of what 32 bits hold.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/demand.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/fuzz_target.h"
#include "sw/parm/bounds.h"

namespace {

constexpr int REACH = 20;
constexpr int MIDDLES[] = {0, std::numeric_limits<int>::min() + REACH,
                           std::numeric_limits<int>::max() - REACH};
constexpr overflow_t MODES[] = {OVERFLOW_SATURATE, OVERFLOW_WRAP};
const char* const TEXTS[] = {"on", "off", "7", "0x7", "a b", "-3", "12ab", " 5", "auto", ""};

// A text that is a number for the bounds, and which one.
struct NumberText {
  const char* text;
  int number;
};
const NumberText NUMBER_TEXTS[] = {{"7", 7}, {"0x7", 7}, {"-3", -3}, {" 5", 5}, {"", 0}};

const NumberText* findNumber(const std::string& text) {
  for (const NumberText& known : NUMBER_TEXTS) {
    if (text == known.text) return &known;
  }
  return nullptr;
}

// The model of a set of bounds: every single number and text that they hold.
struct Model {
  std::set<int> numbers;
  std::set<std::string> texts;
  std::string correction;

  void addSpan(int low, int high) {
    for (int64_t number = low; number <= high; ++number) numbers.insert(static_cast<int>(number));
  }
  void addText(const std::string& text) {
    if (correction.empty()) correction = text;
    texts.insert(text);
  }
};

// Runs of numbers without a gap.
Spans spansOf(const std::set<int>& numbers) {
  Spans spans;
  for (const int number : numbers) {
    if (!spans.empty() && static_cast<int64_t>(spans.back().second) + 1 == number) {
      spans.back().second = number;
    } else {
      spans.emplace_back(number, number);
    }
  }
  return spans;
}

int wrapPlainly(int64_t value, int64_t min, int64_t max) {
  while (value > max) value -= max - min + 1;
  while (value < min) value += max - min + 1;
  return static_cast<int>(value);
}

int intoRange(overflow_t mode, int value, int min, int max) {
  if (mode == OVERFLOW_WRAP) return wrapPlainly(value, min, max);
  return value < min ? min : std::min(value, max);
}

int limitPlainly(int value, bool roundUp, overflow_t mode, const std::set<int>& numbers) {
  if (numbers.empty()) return value;
  value = intoRange(mode, value, *numbers.begin(), *numbers.rbegin());
  while (!numbers.contains(value)) value += roundUp ? 1 : -1;
  return value;
}

struct Outcome {
  bool accepted;
  std::string value;
  bool operator==(const Outcome&) const = default;
};

Outcome checkNumber(const Model& model, const std::string& value, int number, bool isNumber,
                    overflow_t mode) {
  const int limited = limitPlainly(number, true, mode, model.numbers);
  if (isNumber && limited == number) return {true, value};
  return {false, std::to_string(limited)};
}

Outcome checkText(const Model& model, const std::string& value) {
  if (model.texts.empty() || model.texts.contains(value)) return {true, value};
  return {false, model.correction};
}

Outcome checkPlainly(const Model& model, const std::string& value) {
  const NumberText* const number = findNumber(value);
  if (model.numbers.empty()) return checkText(model, value);
  if (value.empty() && model.texts.empty()) {
    return {false, checkNumber(model, value, 0, true, OVERFLOW_SATURATE).value};
  }
  const bool isNumber = !value.empty() && number != nullptr;
  if (!isNumber && !model.texts.empty()) return checkText(model, value);
  return checkNumber(model, value, isNumber ? number->number : 0, isNumber, OVERFLOW_SATURATE);
}

Outcome checkOf(const Bounds& bounds, const std::string& value) {
  std::string unfixed = value;
  std::string fixed = value;
  const bool accepted = bounds.check(unfixed, false);
  demand(unfixed == value, "a check without correction changed ", value);
  demand(bounds.check(fixed, true) == accepted, "the correction changes the answer for ", value);
  return {accepted, fixed};
}

void expectOutcome(const Outcome& outcome, const Outcome& expected, const std::string& value) {
  demand(outcome == expected, value, " becomes ", outcome.value, ", plainly ", expected.value);
}

class BoundsRun {
 public:
  explicit BoundsRun(FuzzInput& input)
      : input_(input), middle_(input.pick(MIDDLES)), wrapping_(OVERFLOW_WRAP) {}

  void run() {
    while (!input_.atEnd()) {
      change();
      expectShape();
    }
    expectLimits();
    expectChecks();
    expectComputed();
  }

 private:
  int number() { return middle_ - REACH + static_cast<int>(input_.below(2 * REACH + 1)); }

  void change() {
    switch (input_.below(8)) {
      case 0:
        return addText();
      case 1:
        // The texts that are numbers lie around 0.
        return middle_ == 0 ? addValue() : addText();
      case 2:
        return input_.below(8) == 0 ? clear() : addSpan();
      default:
        return addSpan();
    }
  }

  void addSpan() {
    const int low = number();
    const int high = number();
    const int expected = high < low ? 1 : 0;
    demand(bounds_.integers().addSpan(low, high) == expected, "addSpan returned another result");
    demand(wrapping_.addSpan(low, high) == expected, "addSpan depends on the mode");
    model_.addSpan(low, high);
    items_.push_back({Program::constant(low), Program::constant(high)});
    firstFailure_ = firstFailure_ == 0 && expected != 0 ? -5 : firstFailure_;
  }

  void addText() {
    const std::string text = input_.pick(TEXTS);
    demand(bounds_.strings().addText(text) == (text.empty() ? 1 : 0), "addText of ", text);
    if (!text.empty()) model_.addText(text);
    items_.push_back({Program::constant(text), std::nullopt, true});
  }

  void addValue() {
    const std::string text = input_.pick(TEXTS);
    const NumberText* const known = findNumber(text);
    demand(bounds_.addValue(text) == 0, "addValue of ", text);
    if (known != nullptr) {
      demand(wrapping_.addSpan(known->number, known->number) == 0, "a span of one number");
      model_.addSpan(known->number, known->number);
    } else {
      model_.addText(text);
    }
    items_.push_back({Program::constant(text), std::nullopt});
  }

  // The correction of the texts stays.
  void clear() {
    bounds_.clear();
    wrapping_.clear();
    model_.numbers.clear();
    model_.texts.clear();
    items_.clear();
    firstFailure_ = 0;
    cleared_ = true;
  }

  void expectShape() const {
    const Spans spans = spansOf(model_.numbers);
    demand(bounds_.integers().spans() == spans, "other spans");
    demand(wrapping_.spans() == spans, "the mode changes the spans");
    demand(areOrdered(spans) && bounds_.isConsistent(), "not in order");
    demand(bounds_.strings().texts() == model_.texts, "other texts");
    demand(bounds_.strings().correction() == model_.correction, "another correction");
    demand(bounds_.count() == spans.size() + model_.texts.size(), "another count");
  }

  void expectLimits() const {
    const Spans spans = spansOf(model_.numbers);
    for (int offset = -REACH; offset <= REACH; ++offset) {
      const int value = middle_ + offset;
      for (const overflow_t mode : MODES) {
        for (const bool roundUp : {false, true}) {
          demand(limitToSpans(value, roundUp, mode, spans) ==
                     limitPlainly(value, roundUp, mode, model_.numbers),
                 "another limit for ", std::to_string(value));
        }
        if (spans.empty()) continue;
        const auto [min, max] = spans.front();
        demand(rangeCheck(mode, value, min, max) == intoRange(mode, value, min, max),
               "another range check of ", std::to_string(value));
      }
    }
  }

  void expectChecks() const {
    for (int offset = -REACH; offset <= REACH; ++offset) {
      const int number = middle_ + offset;
      const std::string value = std::to_string(number);
      expectOutcome(checkOf(wrapping_, value),
                    checkNumber(model_, value, number, true, OVERFLOW_WRAP), value);
      const Outcome saturated = checkNumber(model_, value, number, true, OVERFLOW_SATURATE);
      expectOutcome(checkOf(bounds_.integers(), value), saturated, value);
      expectOutcome(checkOf(bounds_, value),
                    model_.numbers.empty() ? checkText(model_, value) : saturated, value);
    }
    // Only the numbers around 0 are within reach of the texts.
    if (middle_ != 0) return;
    for (const char* text : TEXTS) {
      expectOutcome(checkOf(bounds_, text), checkPlainly(model_, text), text);
      expectOutcome(checkOf(bounds_.strings(), text), checkText(model_, text), text);
    }
  }

  // Demands that the items, computed in a situation, make the bounds that they made as constants,
  // up to the first item that fails.
  void expectComputed() {
    BoundsExpression computed;
    for (BoundsExpression::Item& item : items_) computed.addItem(std::move(item));
    demand(computed.isConsistent() == (firstFailure_ == 0), "another consistency");
    BoundsParm present;
    demand(computed.evaluate(present, SituationView()) == firstFailure_, "another code");
    if (firstFailure_ != 0 || cleared_) return;
    demand(present.integers().spans() == bounds_.integers().spans(), "other computed spans");
    demand(present.strings().texts() == model_.texts, "other computed texts");
    demand(present.strings().correction() == model_.correction, "another computed correction");
    for (const char* text : TEXTS) {
      expectOutcome(checkOf(computed, text), checkOf(bounds_, text), text);
    }
  }

  FuzzInput& input_;
  int middle_;
  BoundsParm bounds_;
  BoundsInteger wrapping_;
  Model model_;
  std::vector<BoundsExpression::Item> items_;
  int firstFailure_ = 0;
  bool cleared_ = false;
};

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr size_t ENOUGH = 200;  // each change is followed by a look at everything
  FuzzInput input(data, std::min(size, ENOUGH));
  BoundsRun(input).run();
  return 0;
}
