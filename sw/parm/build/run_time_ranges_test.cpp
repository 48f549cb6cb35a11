// Run-time ranges judge a value as the same ranges would with the present numbers written in.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <random>
#include <utility>

#include "sw/parm/parm_name.h"
#include "sw/parm/set_value.h"
#include "tests/support/build.h"
#include "tests/support/definitions.h"

namespace {

// A limit of a range item: a number or a text, or a variable with a number added, unless that is 0.
struct Limit {
  std::string variable;  // empty for a constant
  std::string constant;
  uint32_t added = 0;

  [[nodiscard]] std::string text() const {
    if (variable.empty()) return constant;
    return added == 0 ? "(" + variable + ")" : "(" + variable + " + " + std::to_string(added) + ")";
  }
  // The limit with the present value written in; nullopt where the variable has no value.
  [[nodiscard]] std::optional<std::string> present(const Texts& texts) const {
    if (variable.empty()) return constant;
    const auto value = texts.find(variable);
    if (value == texts.end()) return std::nullopt;
    const std::optional<int32_t> number = wholeNumber(value->second);
    if (number) return numberText(static_cast<int32_t>(static_cast<uint32_t>(*number) + added));
    return added == 0 ? value->second : value->second + std::to_string(added);
  }
};

struct Item {
  Limit lower;
  std::optional<Limit> upper;

  [[nodiscard]] bool isRunTime() const {
    return !lower.variable.empty() || (upper && !upper->variable.empty());
  }
  [[nodiscard]] ItemText text() const {
    return upper ? lower.text() + ".." + upper->text() : lower.text();
  }
  [[nodiscard]] std::optional<ItemText> present(const Texts& texts) const {
    std::optional<std::string> low = lower.present(texts);
    if (!low || !upper) return low;
    const std::optional<std::string> high = upper->present(texts);
    if (!high || !wholeNumber(*low) || !wholeNumber(*high)) return std::nullopt;
    if (*wholeNumber(*low) > *wholeNumber(*high)) return std::nullopt;
    return *low + ".." + *high;
  }
};

// A range statement of a definition text.
struct Statement {
  std::string condition;  // empty for an unconditional one
  std::vector<Item> items;

  [[nodiscard]] bool isRunTime() const {
    return std::any_of(items.begin(), items.end(), [](const Item& i) { return i.isRunTime(); });
  }
  [[nodiscard]] std::vector<ItemText> texts() const {
    std::vector<ItemText> list;
    for (const Item& item : items) list.push_back(item.text());
    return list;
  }
  // The items with the present values written in; nullopt where an item has no value.
  [[nodiscard]] std::optional<std::vector<ItemText>> present(const Texts& texts) const {
    std::vector<ItemText> list;
    for (const Item& item : items) {
      const std::optional<ItemText> written = item.present(texts);
      if (!written) return std::nullopt;
      list.push_back(*written);
    }
    return list;
  }
};

// The statements as they become bounds: unconditional ones are the base bounds, unless one of them
// is computed; all of them then are one set, at the place of the first that is computed.
struct Ranges {
  std::vector<ItemText> base;
  std::vector<Statement> conditional;
};

Ranges rangesOf(const std::vector<Statement>& statements) {
  Ranges ranges;
  Statement joined = {"1", {}};
  std::optional<size_t> place;
  for (const Statement& statement : statements) {
    if (!statement.condition.empty()) {
      ranges.conditional.push_back(statement);
      continue;
    }
    joined.items.insert(joined.items.end(), statement.items.begin(), statement.items.end());
    if (!statement.isRunTime()) {
      const std::vector<ItemText> texts = statement.texts();
      ranges.base.insert(ranges.base.end(), texts.begin(), texts.end());
    } else if (!place) {
      place = ranges.conditional.size();
    }
  }
  if (place) {
    ranges.conditional.insert(ranges.conditional.begin() + static_cast<ptrdiff_t>(*place), joined);
  }
  return ranges;
}

// A definition with run-time ranges in one situation.
struct Scene {
  std::vector<Statement> statements;
  Texts texts;
  std::map<std::string, std::string> translations;

  [[nodiscard]] bool holds(const Statement& statement) const {
    if (statement.condition.empty() || statement.condition == "1") return true;
    const auto value = texts.find(statement.condition);
    return value != texts.end() && value->second == "1";
  }
  [[nodiscard]] bool hasItem(const ItemText& text) const {
    return std::any_of(statements.begin(), statements.end(), [&](const Statement& s) {
      return std::any_of(s.items.begin(), s.items.end(),
                         [&](const Item& item) { return item.text() == text; });
    });
  }
  /// Whether a run-time range has its values, so that the ranges alone decide.
  [[nodiscard]] bool applies() const {
    const std::vector<Statement> list = rangesOf(statements).conditional;
    return std::any_of(list.begin(), list.end(), [this](const Statement& s) {
      return s.isRunTime() && holds(s) && s.present(texts);
    });
  }
};

// An item as a definition text has it: a text in quotes.
std::string definitionItem(const ItemText& item) {
  const std::string limit = limitsOf(item).first;
  const bool isText = !limit.starts_with("(") && !quotedText(item) && !wholeNumber(limit);
  return isText ? '"' + item + '"' : item;
}

std::string definitionText(const Scene& scene) {
  std::string text = "gain rw {\n";
  for (const Statement& statement : scene.statements) {
    text += "  rangeValid";
    if (!statement.condition.empty()) text += " (" + statement.condition + ")";
    std::string separator = " { ";
    for (const ItemText& item : statement.texts()) {
      text += std::exchange(separator, ", ") + definitionItem(item);
    }
    text += " }\n";
  }
  return text + "}\n";
}

std::ostream& operator<<(std::ostream& out, const Scene& scene) {
  out << definitionText(scene);
  out << "translations " << testing::PrintToString(scene.translations) << "\n";
  return out << "present values " << testing::PrintToString(scene.texts) << "\n";
}

ParmText asWritten(const Scene& scene) {
  const Ranges ranges = rangesOf(scene.statements);
  ParmText text;
  text.common.base = ranges.base;
  text.common.translations = scene.translations;
  for (const Statement& statement : ranges.conditional) {
    text.common.ranges.push_back({statement.condition, statement.texts()});
  }
  return text;
}

// The definition with the present numbers written in. Ranges that decide make base bounds and
// ranges without values meaningless. While none decides, a range without values accepts everything,
// and the rules that the definition has (here: one that never applies) keep the base bounds from
// refusing what the others correct to.
ParmText writtenIn(const Scene& scene) {
  const Ranges ranges = rangesOf(scene.statements);
  const bool applies = scene.applies();
  ParmText text;
  text.common.translations = scene.translations;
  if (!applies) {
    text.common.base = ranges.base;
    text.rules = {{"0", "0", "0"}};
  }
  for (const Statement& statement : ranges.conditional) {
    const std::optional<std::vector<ItemText>> present = statement.present(scene.texts);
    if (present) {
      text.common.ranges.push_back({statement.condition, *present});
    } else if (!applies) {
      text.common.ranges.push_back({statement.condition, {}});
    }
  }
  return text;
}

// As writtenIn(), for a scene of unconditional statements whose items all have values: the
// definition has base bounds alone.
ParmText asBaseBounds(const Scene& scene) {
  ParmText text;
  text.common.translations = scene.translations;
  for (const Statement& statement : scene.statements) {
    const std::vector<ItemText> present = statement.present(scene.texts).value();
    text.common.base.insert(text.common.base.end(), present.begin(), present.end());
  }
  return text;
}

struct Outcome {
  int result;
  std::string value;
  std::string committed;
  bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  return out << outcome.result << ", \"" << outcome.value << "\", committed \"" << outcome.committed
             << "\"";
}

// The definition of a text, with the present values of those variables that it uses.
class Definition {
 public:
  Definition(const ParmText& text, const Texts& texts) : parm_(makeParm(text)), texts_(texts) {
    std::erase_if(texts_, [this](const auto& v) { return !parm_.variables().find(v.first); });
  }
  Outcome set(const std::string& value) {
    const TextSituation situation(parm_.variables(), texts_);
    TextIndices none(parm_, texts_);
    const SetResult result = setValue(parm_, value, {}, situation, none, {});
    return {result.code, result.value, parm_.committedText({})};
  }

 private:
  ParmDef parm_;
  Texts texts_;
};

constexpr const char* QUOTED_NUMBER = "\"7\"";

// Scenes and values at random, the same in every run.
class Dice {
 public:
  /// A number from 0 to `sides` - 1.
  int roll(int sides) { return static_cast<int>(engine_() % static_cast<unsigned>(sides)); }
  template <size_t N>
  std::string pick(const char* const (&texts)[N]) {
    return texts[roll(N)];
  }
  std::string number() { return std::to_string(roll(45) - 5); }

  std::string value() {
    static constexpr const char* const SPECIAL[] = {"",     "0x10",        "0x1f",       "010",
                                                    " 12",  "auto",        "off",        "pal",
                                                    "12ab", "-2147483648", "2147483647", "+7"};
    return roll(3) == 0 ? pick(SPECIAL) : number();
  }
  Scene scene() {
    Scene scene;
    do {
      scene.statements.clear();
      for (int count = 1 + roll(4); count > 0; --count) scene.statements.push_back(statement());
    } while (std::none_of(scene.statements.begin(), scene.statements.end(),
                          [](const Statement& s) { return s.isRunTime(); }));
    for (const char* const name : VARIABLES) {
      if (roll(8) != 0) scene.texts[name] = value();
    }
    for (const char* const name : CONDITIONS) {
      if (roll(8) != 0) scene.texts[name] = roll(4) != 0 ? "1" : "0";
    }
    if (roll(4) == 0) {
      scene.translations = {{"auto", number()}, {"off", "auto"}, {number(), value()}};
    }
    return scene;
  }

 private:
  static constexpr const char* const VARIABLES[] = {"u", "v", "w", "x"};
  static constexpr const char* const CONDITIONS[] = {"a", "b"};

  Limit limit(bool runTime) {
    if (!runTime) return {"", number()};
    // The value under test is known to no range.
    if (roll(30) == 0) return {std::string(THIS_VALUE), ""};
    return {pick(VARIABLES), "", roll(3) == 0 ? static_cast<uint32_t>(1 + roll(5)) : 0};
  }
  Item item() {
    static constexpr const char* const ALLOWED[] = {"auto", "off", "12ab", QUOTED_NUMBER};
    switch (roll(8)) {
      case 0:
        return {{"", pick(ALLOWED)}, std::nullopt};
      case 1:
        return {limit(false), std::nullopt};
      case 2:
        return {limit(true), std::nullopt};
      case 3: {
        const int low = roll(40);
        return {{"", std::to_string(low)}, Limit{"", std::to_string(low + roll(10))}};
      }
      case 4:
        return {limit(true), limit(false)};
      case 5:
        return {limit(false), limit(true)};
      default:
        return {limit(true), limit(true)};
    }
  }
  Statement statement() {
    Statement statement;
    if (roll(2) == 0) statement.condition = pick(CONDITIONS);
    for (int count = 1 + roll(3); count > 0; --count) statement.items.push_back(item());
    return statement;
  }

  std::mt19937 engine_{20240229};  // any fixed seed
};

constexpr int SCENES = 1000;
constexpr int VALUES = 8;

TEST(RunTimeRanges, JudgeAsThePresentNumbersWrittenInWould) {
  Dice dice;
  int decided = 0;
  int corrected = 0;
  int undecided = 0;
  for (int round = 0; round < SCENES; ++round) {
    const Scene scene = dice.scene();
    Definition runTime(asWritten(scene), scene.texts);
    Definition written(writtenIn(scene), scene.texts);
    const bool applies = scene.applies();
    for (int i = 0; i < VALUES; ++i) {
      const std::string value = dice.value();
      const Outcome outcome = runTime.set(value);
      ASSERT_EQ(outcome, written.set(value)) << "round " << round << ", value \"" << value << "\"\n"
                                             << scene;
      ASSERT_EQ(outcome.result, SET_STORED) << scene;
      ++(applies ? decided : undecided);
      corrected += applies && outcome.value != value ? 1 : 0;
    }
  }
  // The dice show enough of each.
  EXPECT_GT(decided, SCENES * VALUES / 4);
  EXPECT_GT(corrected, SCENES * VALUES / 8);
  EXPECT_GT(undecided, SCENES * VALUES / 8);
}

TEST(RunTimeRanges, JudgeAsBaseBoundsWhereNothingIsConditional) {
  Dice dice;
  int compared = 0;
  for (int round = 0; round < SCENES; ++round) {
    Scene scene = dice.scene();
    for (Statement& statement : scene.statements) statement.condition.clear();
    if (!scene.applies()) continue;
    Definition runTime(asWritten(scene), scene.texts);
    Definition base(asBaseBounds(scene), scene.texts);
    for (int i = 0; i < VALUES; ++i) {
      const std::string value = dice.value();
      ASSERT_EQ(runTime.set(value), base.set(value))
          << "round " << round << ", value \"" << value << "\"\n"
          << scene;
      ++compared;
    }
  }
  EXPECT_GT(compared, SCENES);
}

TEST(RunTimeRanges, LeaveACorrectedValueAsItIs) {
  Dice dice;
  int compared = 0;
  for (int round = 0; round < SCENES; ++round) {
    Scene scene = dice.scene();
    scene.translations.clear();
    // As a correction it is refused where there are spans as well.
    if (scene.hasItem(QUOTED_NUMBER) || !scene.applies()) continue;
    Definition runTime(asWritten(scene), scene.texts);
    const std::string value = dice.value();
    const Outcome first = runTime.set(value);
    ASSERT_EQ(runTime.set(first.value), first)
        << "round " << round << ", value \"" << value << "\"\n"
        << scene;
    ++compared;
  }
  EXPECT_GT(compared, SCENES / 4);
}

// The parameters that the ranges name.
const std::string OTHERS = "a rw {}\nb rw {}\nu rw {}\nv rw {}\nw rw {}\nx rw {}\n";

// The builder makes of a definition text what the tests above make of its statements.
TEST(RunTimeRanges, AreMadeAsTheBuilderMakesThem) {
  Dice dice;
  for (int round = 0; round < SCENES / 4; ++round) {
    const Scene scene = dice.scene();
    const BuiltText built(definitionText(scene) + OTHERS);
    ASSERT_EQ(built.diagnostics + built.errors, "") << scene;
    const ParmDef& parm = built.parm("gain");
    const ParmDef here = makeParm(asWritten(scene));
    ASSERT_EQ(itemsText(parm.baseBounds()), itemsText(here.baseBounds())) << scene;
    ASSERT_EQ(conditionalTexts(parm, scene.texts), conditionalTexts(here, scene.texts)) << scene;
    ASSERT_TRUE(parm.hasRunTimeRanges());
  }
}

struct EndCase {
  std::string why;
  std::vector<RangeText> ranges;
  Texts texts;
  std::string value;
  std::string stored;
};

TEST(RunTimeRanges, EndWhereTheyCannotAllHold) {
  const EndCase cases[] = {
      {"two disjoint ranges: the first corrects",
       {{"1", {"(u)..(u + 5)"}}, {"1", {"(v)..(v + 5)"}}},
       {{"u", "10"}, {"v", "30"}},
       "20",
       "15"},
      {"two disjoint ranges: the second accepts",
       {{"1", {"(u)..(u + 5)"}}, {"1", {"(v)..(v + 5)"}}},
       {{"u", "10"}, {"v", "30"}},
       "33",
       "33"},
      {"the upper limit is below the lower",
       {{"1", {"(u)..(v)"}}},
       {{"u", "9"}, {"v", "1"}},
       "5",
       "5"},
      {"one is upside down, the other decides",
       {{"1", {"(u)..(v)"}}, {"1", {"(v)..(u)"}}},
       {{"u", "9"}, {"v", "1"}},
       "50",
       "9"},
      {"a limit is undefined", {{"1", {"(u)..(v)"}}}, {{"u", "9"}}, "5", "5"},
      {"both limits are undefined", {{"1", {"(u)..(v)"}}}, {}, "5", "5"},
      {"a limit names the value", {{"1", {"(sw::this + 1)..99"}}}, {}, "5", "5"},
      {"both limits name the value", {{"1", {"(sw::this + 1)..(sw::this + 2)"}}}, {}, "5", "5"},
      {"the condition names the value",
       {{"sw::this < 50", {"(u)"}}, {"sw::this > 50", {"(v)"}}},
       {{"u", "60"}, {"v", "40"}},
       "5",
       "5"},
      {"the condition holds without the value",
       {{"sw::this || 1", {"(u)"}}},
       {{"u", "60"}},
       "5",
       "60"},
      {"the limits are as far apart as they can be",
       {{"1", {"(u)..(v)"}}},
       {{"u", "-2147483648"}, {"v", "2147483647"}},
       "5",
       "5"},
      {"the limits wrap around",
       {{"1", {"(u + 1)..(u + 2)"}}},
       {{"u", "2147483647"}},
       "5",
       "-2147483647"},
  };
  for (const EndCase& c : cases) {
    SCOPED_TRACE(c.why);
    ParmText text;
    text.common.ranges = c.ranges;
    Definition runTime(text, c.texts);
    EXPECT_EQ(runTime.set(c.value), (Outcome{SET_STORED, c.stored, c.stored}));
  }
}

}  // namespace
