// What the second interface tells of random devices, against what the first one does.
#include <algorithm>
#include <map>
#include <random>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/harness/parameters_client.h"
#include "tests/harness/service_test.h"
#include "tests/support/random_device.h"
#include "tests/support/random_texts.h"

namespace {

constexpr uint32_t EXISTS = 2;
constexpr uint32_t WRITABLE = 4;
constexpr uint32_t LIMITED = 16;
constexpr uint32_t NO_LIMITS = 32;

VariantPointer childOf(GVariant* value, size_t i) {
  return VariantPointer(g_variant_get_child_value(value, i));
}

std::string textAt(GVariant* value, size_t i) {
  return g_variant_get_string(childOf(value, i).get(), nullptr);
}

std::string quoted(const std::string& text) {
  const VariantPointer value(g_variant_ref_sink(g_variant_new_string(text.c_str())));
  return printed(value.get());
}

std::string listed(const Texts& names) {
  std::string text = "[";
  for (const std::string& name : names) text += (text.size() == 1 ? "" : ", ") + quoted(name);
  return text + "]";
}

// What is not UTF-8 in a name cannot be asked for, and an index value with brackets makes the name
// of another instance.
bool isAddressed(const std::string& name) {
  return name.find("\xEF\xBF\xBD") == std::string::npos && name.find("[]") == std::string::npos;
}

// Values of both kinds of texts.
Texts allValues() {
  Texts values = VALUES;
  values.insert(values.end(), {"on", "7", "20", "1080i/50", "720p/50"});
  return values;
}

// Adds the numbers and the quoted texts of a statement: bounds that have a value in common have one
// of these in common.
void addWritten(const std::string& statement, Texts& values) {
  static const std::regex WRITTEN("\"([^\"]*)\"|(0x[0-9A-F]+|[0-9]+)");
  for (std::sregex_iterator found(statement.begin(), statement.end(), WRITTEN), end; found != end;
       ++found) {
    const std::string number = (*found)[2].str();
    values.push_back(number.empty() ? (*found)[1].str() : number);
  }
}

struct State {
  uint32_t flags = 0;
  std::string value;
  std::string range;  // texts and spans, as get_range gives them
};

class Agreement {
 public:
  Agreement(Client& client, uint32_t seed) : client_(client), watching_(client), random_(seed) {
    EXPECT_EQ(watching_.answer("Watch(true, true)"), "()");
    readDefinitions();
  }

  void compareRound() {
    addNames();
    const std::string id = watching_.answer(below(2) == 0 ? "Begin()" : "ListTransactions()");
    const std::string own = id.starts_with("[") ? client_.answer("start()") : id;
    const Texts calls = randomCalls();
    stage(own, calls);
    compareQueries(own);
    compareSets(own, calls);
    compareCommit(own);
    EXPECT_EQ(client_.answer("end(" + own + ")"), "()");
  }

  size_t states = 0;
  size_t sets = 0;
  size_t refusing = 0;  // instances that refuse every value
  size_t changes = 0;
  size_t limits = 0;

 private:
  size_t below(size_t end) { return random_() % end; }
  std::string oneOf(const Texts& texts) { return texts[below(texts.size())]; }

  void readDefinitions() {
    const VariantPointer reply = watching_.ask("List('')");
    const VariantPointer list = childOf(reply.get(), 0);
    for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
      const VariantPointer row = childOf(list.get(), i);
      const std::string name = textAt(row.get(), 0);
      if (!isAddressed(name)) continue;
      const VariantPointer definition = watching_.ask("GetDefinition(" + quoted(name) + ")");
      const VariantPointer dictionary = childOf(definition.get(), 0);
      const VariantPointer users(
          g_variant_lookup_value(dictionary.get(), "used-by", G_VARIANT_TYPE("as")));
      usedBy_[name] = textsOf(users.get());
      const VariantPointer statements(
          g_variant_lookup_value(dictionary.get(), "statements", G_VARIANT_TYPE("a(us)")));
      for (gsize s = 0; s < g_variant_n_children(statements.get()); ++s) {
        addWritten(textAt(childOf(statements.get(), s).get(), 1), tellingValues_[name]);
      }
      if (textAt(row.get(), 1) != "index") parms_.push_back(name);
    }
  }

  void addNames() {
    const VariantPointer reply = watching_.ask("ListInstances(NONE, [])");
    for (const std::string& name : textsOf(childOf(reply.get(), 0).get())) {
      if (isAddressed(name)) names_.insert(name);
    }
    for (const std::string& parm : parms_) {
      for (const char* suffix : {"", "[0]", "[1]", "[7]", "[a]", "[0][a]", "[1][1]"}) {
        names_.insert(parm + suffix);
      }
    }
    names_.insert("nosuch");
  }

  Texts randomCalls() {
    const Texts all(names_.begin(), names_.end());
    Texts calls;
    for (size_t count = 1 + below(4); count > 0; --count) {
      const std::string name = quoted(oneOf(all));
      std::string call = oneOf({"set", "set_status", "set", "reset_status"});
      const bool isReset = call == "reset_status";
      call.append("(ID, ").append(name);
      if (!isReset) call.append(", ").append(quoted(oneOf(values_)));
      calls.push_back(call.append(")"));
    }
    return calls;
  }

  void stage(const std::string& id, const Texts& calls) {
    for (std::string call : calls) {
      call.replace(call.find("ID"), 2, id);
      static_cast<void>(client_.answer(call));
    }
  }

  std::map<std::string, State> statesIn(const std::string& id) {
    const VariantPointer reply =
        watching_.ask("GetState(" + id + ", " + listed({names_.begin(), names_.end()}) + ")");
    const VariantPointer list = childOf(reply.get(), 0);
    std::map<std::string, State> all;
    for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
      const VariantPointer row = childOf(list.get(), i);
      State state;
      state.flags = g_variant_get_uint32(childOf(row.get(), 1).get());
      state.value = textAt(row.get(), 2);
      state.range = "(" + printed(childOf(row.get(), 4).get()) + ", " +
                    printed(childOf(row.get(), 3).get()) + ")";
      all[textAt(row.get(), 0)] = state;
    }
    EXPECT_EQ(all.size(), names_.size());
    return all;
  }

  // Question and answer; empty where there is no such instance.
  std::map<std::string, std::string> answersOf(const std::string& id, const std::string& name) {
    const std::string call = "Explain(" + id + ", " + quoted(name) + ")";
    if (watching_.answer(call).starts_with("UnknownParameter")) return {};
    const VariantPointer reply = watching_.ask(call);
    const VariantPointer list = childOf(reply.get(), 0);
    std::map<std::string, std::string> answers;
    for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
      const VariantPointer row = childOf(list.get(), i);
      answers[textAt(row.get(), 0)] = textAt(row.get(), 1);
    }
    return answers;
  }

  void compareQueries(const std::string& id) {
    const VariantPointer reply = watching_.ask("ListInstances(" + id + ", [])");
    const Texts present = textsOf(childOf(reply.get(), 0).get());
    for (const auto& [name, state] : statesIn(id)) {
      SCOPED_TRACE(name + " " + std::to_string(state.flags));
      ++states;
      const std::string get = "(" + id + ", " + quoted(name) + ")";
      EXPECT_EQ(client_.answer("get" + get), quoted(state.value));
      const Reply range = client_.call(
          "get_range", g_variant_new("(us)", static_cast<guint32>(std::stoul(id)), name.c_str()));
      EXPECT_EQ(range.value == nullptr, state.flags == 0 || (state.flags & NO_LIMITS) != 0)
          << range.errorMessage;
      if (range.value != nullptr) {
        EXPECT_EQ(printed(range.value.get()), state.range);
        EXPECT_EQ(state.range != "([], [])", (state.flags & LIMITED) != 0);
      }
      EXPECT_EQ(std::ranges::count(present, name), (state.flags & EXISTS) != 0 ? 1 : 0);
      compareExplanation(id, name, state);
    }
  }

  void compareExplanation(const std::string& id, const std::string& name, const State& state) {
    std::map<std::string, std::string> answers = answersOf(id, name);
    if (answers.empty()) {
      EXPECT_EQ(state.flags & (EXISTS | WRITABLE | LIMITED), 0U);
      return;
    }
    EXPECT_EQ(answers.size(), 5U);
    EXPECT_EQ(answers["exists"], (state.flags & EXISTS) != 0 ? "yes" : "no");
    EXPECT_EQ(answers["writable"], (state.flags & WRITABLE) != 0 ? "yes" : "no");
    EXPECT_EQ(answers["value"], state.value);
    EXPECT_EQ(answers["limits"] == "none", (state.flags & NO_LIMITS) != 0);
    EXPECT_EQ(answers["limits"] == "any", (state.flags & (LIMITED | NO_LIMITS)) == 0);
  }

  // Whether what is set for a parameter may decide about itself, by way of whatever uses it.
  bool followsItself(const std::string& parm) {
    std::set<std::string> reached;
    Texts open = usedBy_[parm];
    while (!open.empty()) {
      const std::string name = open.back();
      open.pop_back();
      if (name == parm) return true;
      if (!reached.insert(name).second) continue;
      open.insert(open.end(), usedBy_[name].begin(), usedBy_[name].end());
    }
    return false;
  }

  // What becomes of a plain set of one value.
  enum SetEnd { NOT_STAGED, STORED, VALUE_REFUSED, INSTANCE_REFUSED, BEHIND_ANOTHER };

  // Some value of a plain set on top of the same staged values is stored where the flag says so.
  void compareSets(const std::string& id, const Texts& calls) {
    for (const auto& [name, state] : statesIn(id)) {
      const std::string parm = name.substr(0, name.find('['));
      if (below(3) != 0 || state.flags == 0 || followsItself(parm)) continue;
      Texts values = values_;
      values.insert(values.end(), tellingValues_[parm].begin(), tellingValues_[parm].end());
      SetEnd end = NOT_STAGED;
      for (size_t i = 0; i < values.size() && (end == NOT_STAGED || end == VALUE_REFUSED); ++i) {
        const SetEnd next = endOfSet(calls, name, values[i]);
        if (next != NOT_STAGED) end = next;
      }
      if (end == NOT_STAGED || end == BEHIND_ANOTHER) continue;
      ++sets;
      refusing += end == VALUE_REFUSED ? 1 : 0;
      EXPECT_EQ(end == STORED, (state.flags & WRITABLE) != 0) << name << " " << state.flags;
    }
  }

  SetEnd endOfSet(const Texts& calls, const std::string& name, const std::string& value) {
    const std::string tried = watching_.answer("Begin()");
    stage(tried, calls);
    const bool isStaged =
        client_.answer("set(" + tried + ", " + quoted(name) + ", " + quoted(value) + ")") == "()";
    const SetEnd end = isStaged ? endOfCommit(tried, name) : NOT_STAGED;
    EXPECT_EQ(client_.answer("end(" + tried + ")"), "()");
    return end;
  }

  SetEnd endOfCommit(const std::string& id, const std::string& name) {
    const VariantPointer reply = watching_.ask("Preview(" + id + ")");
    const VariantPointer changed = childOf(reply.get(), 0);
    const VariantPointer refused = childOf(reply.get(), 1);
    // A change that is refused was stored before it had to follow what the commit took back.
    for (gsize i = 0; i < g_variant_n_children(changed.get()); ++i) {
      if (textAt(childOf(changed.get(), i).get(), 0) == name) return STORED;
    }
    for (gsize i = 0; i < g_variant_n_children(refused.get()); ++i) {
      const VariantPointer row = childOf(refused.get(), i);
      if (textAt(row.get(), 0) != name) continue;
      const std::string why = textAt(row.get(), 1);
      if (why.starts_with("another value")) return BEHIND_ANOTHER;
      return why.starts_with("its value") ? VALUE_REFUSED : INSTANCE_REFUSED;
    }
    return STORED;
  }

  // Flags without those of transactions, limits and default of each instance.
  std::map<std::string, std::string> limitsNow() {
    std::map<std::string, std::string> all;
    for (const auto& [name, state] : statesIn("NONE")) {
      all[name] = std::to_string(state.flags & (EXISTS | WRITABLE | LIMITED | NO_LIMITS)) +
                  state.range + answersOf("NONE", name)["default"];
    }
    return all;
  }

  void compareCommit(const std::string& id) {
    const std::map<std::string, std::string> before = limitsNow();
    const VariantPointer preview = watching_.ask("Preview(" + id + ")");
    static_cast<void>(client_.newSignals());
    static_cast<void>(watching_.newSignals());
    const std::string done = client_.answer("commit(" + id + ")");
    const VariantPointer refused = childOf(preview.get(), 1);
    EXPECT_TRUE(done == "()" || g_variant_n_children(refused.get()) > 0) << done;
    std::string expected;
    Texts announced;
    const VariantPointer rows = childOf(preview.get(), 0);
    for (gsize i = 0; i < g_variant_n_children(rows.get()); ++i) {
      const VariantPointer row = childOf(rows.get(), i);
      expected += (i == 0 ? "(" : ", (") + quoted(textAt(row.get(), 0)) + ", " +
                  quoted(textAt(row.get(), 1)) + ", " + quoted(textAt(row.get(), 2)) + ")";
      announced.push_back(textAt(row.get(), 0) + "=" + textAt(row.get(), 2));
      ++changes;
    }
    std::vector<Texts> expectedSignals;
    if (!announced.empty()) expectedSignals.push_back(announced);
    EXPECT_EQ(client_.newSignals(), expectedSignals);
    const Texts told = watching_.newSignals();
    const bool isChangedTold = !told.empty() && told[0].starts_with("Changed");
    ASSERT_EQ(isChangedTold, !announced.empty());
    EXPECT_TRUE(!isChangedTold || told[0].ends_with("[" + expected + "])"))
        << expected << " is not " << told[0];
    // A change that is never announced may change limits, too.
    const bool areLimitsTold = !told.empty() && told.back().starts_with("LimitsChanged");
    compareLimits(before, areLimitsTold ? told.back() : "", isChangedTold ? told[0] : "");
  }

  void compareLimits(const std::map<std::string, std::string>& before, const std::string& told,
                     const std::string& changed) {
    for (const auto& [name, now] : limitsNow()) {
      if (before.at(name) == now) continue;
      // The empty text may be refused where nothing else is, and hides the limits.
      if (changed.find("(" + quoted(name) + ", '', ") != std::string::npos) continue;
      ++limits;
      EXPECT_NE(told.find(quoted(name.substr(0, name.find('[')))), std::string::npos)
          << name << ": " << before.at(name) << " to " << now << "; told was " << told;
    }
  }

  const Texts values_ = allValues();
  Client& client_;
  ParametersClient watching_;
  std::mt19937 random_;
  std::map<std::string, Texts> usedBy_;
  std::map<std::string, Texts> tellingValues_;  // by the name of a definition
  Texts parms_;
  std::set<std::string> names_;
};

// A text with parameters whose bounds share values in some situations only.
std::string textOfNarrowBounds(uint32_t seed) {
  std::mt19937 random(seed);
  const auto item = [&] {
    static const Texts ITEMS = {"0..1", "1..2", "2", "7..9", "20..29", "\"a\"", "\"on\", \"b\""};
    return ITEMS[random() % ITEMS.size()];
  };
  std::string text = "p rw { rangeValid { 0..2 } }\n";
  for (const std::string name : {"narrow1", "narrow2", "narrow3", "narrow4", "narrow5"}) {
    text += name + " rw { rangeValid { " + item() + ", " + item() + " } rangeValid (p != 1) { " +
            item() + " } rangeValid (p > 1) { " + item() + " } }\n";
  }
  return text;
}

class ParametersAgreement : public testing::Test {
 protected:
  // Returns whether the text could be served.
  bool compare(const std::string& text, const Texts& constants, uint32_t seed) {
    SCOPED_TRACE(text);
    Texts arguments = {"--debug", "--"};
    arguments.insert(arguments.end(), constants.begin(), constants.end());
    Daemon daemon({.text = text, .arguments = arguments, .busAddress = bus_.address()});
    Client client(bus_.address());
    if (!client.waitForService(daemon.process())) return false;
    {
      Agreement agreement(client, seed);
      for (int round = 0; round < 10; ++round) agreement.compareRound();
      states_ += agreement.states;
      sets_ += agreement.sets;
      refusing_ += agreement.refusing;
      changes_ += agreement.changes;
      limits_ += agreement.limits;
    }
    EXPECT_EQ(client.answer("die()"), "()");
    static_cast<void>(daemon.waitForEnd());
    static_cast<void>(daemon.newLogLines());
    return true;
  }
  [[nodiscard]] size_t refusing() const { return refusing_; }
  void expectMany() const {
    EXPECT_GT(states_, 1000U);
    EXPECT_GT(sets_, 200U);
    EXPECT_GT(changes_, 20U);
    EXPECT_GT(limits_, 3U);
  }

 private:
  PrivateBus bus_;
  size_t states_ = 0;
  size_t sets_ = 0;
  size_t refusing_ = 0;
  size_t changes_ = 0;
  size_t limits_ = 0;
};

TEST_F(ParametersAgreement, OnTextsOfNamesThatReferToOneAnother) {
  int served = 0;
  for (uint32_t seed = 0; served < 10 && !HasFailure(); ++seed) {
    RandomTexts random(seed);
    served += compare(random.text(), {}, seed) ? 1 : 0;
  }
  expectMany();
}

TEST_F(ParametersAgreement, OnTextsWithAllStatements) {
  int served = 0;
  for (uint32_t seed = 0; served < 10 && !HasFailure(); ++seed) {
    RandomDevice random(seed);
    served += compare(random.text(), {"MODEL=pro", "LIMIT=7", "EMPTY=", "STANDARD=1080i/50"}, seed)
                  ? 1
                  : 0;
  }
  expectMany();
}

TEST_F(ParametersAgreement, OnTextsWithBoundsThatShareNoValue) {
  for (uint32_t seed = 0; seed < 5 && !HasFailure(); ++seed) {
    EXPECT_TRUE(compare(textOfNarrowBounds(seed), {}, seed));
  }
  EXPECT_GT(refusing(), 5U);
}

}  // namespace
