// Random devices, for tests: definition texts with whatever statements and expressions there are.
#pragma once

#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <vector>

/// Writes texts of three indices and up to seven parameters, most of which can be built. They name
/// the constants MODEL, LIMIT, EMPTY and STANDARD.
class RandomDevice {
 public:
  using Choices = std::vector<std::string>;

  /// All operators.
  inline static const Choices OPERATORS = {"||", "&&", "|",  "^", "&", "==", "!=", "<", ">", "<=",
                                           ">=", "<<", ">>", "+", "-", "*",  "/",  "%", "$"};

  explicit RandomDevice(uint32_t seed) : random_(seed) {}

  std::string text() {
    const size_t count = 2 + below(std::size(NAMES) - 1);
    for (size_t i = 0; i < count; ++i) lists_.push_back(i == 0 ? "" : oneOf(INDEX_LISTS));
    std::string text =
        indexText("i", oneOf({"1..3", "0..1", "1, 2, \"x\"", "-1..1", "\"\xFE\", 1"}), "p");
    text += indexText("t", oneOf({"\"a\", \"b\"", "\"b][\", \"a\"", "1, \"1\""}), "p");
    text += indexText("k", oneOf({"1..2", "\"a\", 1"}), oneOf({"i", "i", "t"}));
    for (own_ = 0; own_ < count; ++own_) text += parmText();
    return text;
  }

 private:
  size_t below(size_t end) { return random_() % end; }
  bool chance(size_t outOf) { return below(outOf) == 0; }
  std::string oneOf(const Choices& choices) { return choices[below(choices.size())]; }

  // An index is narrowed by the first parameter, the last one by the value of another index.
  std::string indexText(const std::string& name, const std::string& values,
                        const std::string& follows) {
    const auto condition = [&] {
      const std::string left = chance(6) ? "vidStd::" + follows + "::fr" : follows;
      return left + oneOf({" != ", " > ", " == ", " $ "}) + oneOf({"0", "1", "\"a\"", "\"1\""});
    };
    std::string text = name + " index { rangeValid { " + values + " }";
    if (chance(3)) text += " rangeValid (" + condition() + ") { " + values + " }";
    if (chance(4)) text += " rangeValid (" + condition() + ") { 0..(" + follows + " + 1), \"a\" }";
    if (chance(4)) text += " ctrlValid (" + condition() + ")";
    if (chance(5)) text += " valueChange { \"b\" -> \"a\" }";
    return text + " }\n";
  }

  std::string parmText() {
    const std::string access = own_ == 0 ? "rw" : oneOf({"rw", "rw", "rw", "ro", "rostrict", "wo"});
    std::string text = std::string(NAMES[own_]) + " " + access + " {";
    if (!lists_[own_].empty()) text += " index { " + lists_[own_] + " }";
    hasDefault_ = false;
    for (size_t count = below(6); count > 0; --count) text += statement(access);
    return text + " }\n";
  }

  std::string statement(const std::string& access) {
    switch (below(10)) {
      case 0:
        return " ctrlValid (" + condition() + ")";
      case 1:
        return access == "wo" ? "" : " ctrlRO (" + condition() + ")";
      case 2:
      case 3:
        return defaultText();
      case 4:
        return " valueChange { " + plainValue() + " -> " + plainValue() + " }";
      case 5:
        return " rangeDoc" + rangeBody();
      default:
        return " rangeValid" + rangeBody();
    }
  }

  std::string defaultText() {
    const bool isConditional = hasDefault_ || chance(2);
    hasDefault_ = hasDefault_ || !isConditional;
    return " default " + (isConditional ? "(" + condition() + ") " : std::string()) + "{ " +
           (chance(2) ? plainValue() : "(" + expression(2) + ")") + " }";
  }

  std::string rangeBody() {
    std::string text = chance(2) ? " {" : " (" + condition() + ") {";
    for (size_t i = 0, count = 1 + below(3); i < count; ++i) text += (i == 0 ? " " : ", ") + item();
    return text + " }";
  }

  std::string item() {
    switch (below(7)) {
      case 0:
        return quoted();
      case 1:
        return oneOf({"7", "0", "0x10", "010", "12"});
      case 2:
        return "(" + expression(2) + ")";
      case 3:
        return "(" + expression(1) + ")..(" + expression(1) + ")";
      case 4:
        return "0..(" + expression(2) + ")";
      default:
        return oneOf({"0..9", "0..1", "2..5", "20..29", "7..7", "8..2147483647"});
    }
  }

  std::string quoted() {
    return oneOf({"\"a\"", "\"on\"", "\"1080i/50\"", "\"720p/50\"", "\"7\"", "\"\xC3\xA9\"",
                  "\"z\xFFz\"", "\"12ab\"", "\"<b>\""});
  }
  std::string plainValue() { return chance(2) ? quoted() : oneOf({"0", "1", "7", "0x1F", "20"}); }

  std::string condition() { return chance(4) ? reference() : expression(3); }

  std::string expression(size_t depth) {
    if (depth == 0 || chance(3)) return operand();
    const std::string left = chance(3) ? "(" + expression(depth - 1) + ")" : operand();
    const std::string right = chance(3)   ? "(" + expression(depth - 1) + ")"
                              : chance(8) ? oneOf({"-1", "-8"})
                                          : operand();
    return left + " " + oneOf(OPERATORS) + " " + right;
  }

  std::string operand() {
    if (chance(4)) {
      return oneOf({"0", "1", "2", "3", "7", "0x1F", "2147483647", "4294967299", "31", "40"});
    }
    return chance(6) ? quoted() : reference();
  }

  std::string reference() {
    switch (below(9)) {
      case 0:
        return oneOf({"MODEL", "LIMIT", "EMPTY", "vidStd::STANDARD::spal"});
      case 1:
        return ownIndex();
      case 2:
        return "vidStd::" + instance() + "::" + oneOf({"fr", "spal", "f1", "clkDiv"});
      default:
        return instance();
    }
  }

  std::string ownIndex() {
    const std::string& indices = lists_[own_];
    if (indices.empty()) return "sw::this";
    return std::string(1, chance(2) ? indices.front() : indices.back());
  }

  // Mostly a parameter before this one; a partner of its own shares its level.
  std::string instance() {
    size_t parm = own_ == 0 ? 0 : below(own_);
    if (chance(8)) parm = own_;
    if (chance(8) && (own_ ^ 1U) < lists_.size()) parm = own_ ^ 1U;
    std::string name(NAMES[parm]);
    const std::string& indices = lists_[parm];
    if (indices.empty() || chance(2)) return name;
    for (size_t at = 0; at < indices.size(); at += 3) {
      name += "[" +
              oneOf(indices[at] == 'i'   ? Choices{"1"}
                    : indices[at] == 't' ? Choices{"a"}
                                         : Choices{"1"}) +
              "]";
    }
    return name;
  }

  static constexpr const char* NAMES[] = {"p", "Mode", "gain.x", "\xC3\x9C", "a:b\xFE", "z_9", "~"};
  inline static const Choices INDEX_LISTS = {"", "", "i", "t", "i, t", "i, k", "k"};

  std::mt19937 random_;
  std::vector<std::string> lists_;  // of indices, by parameter
  size_t own_ = 0;                  // the parameter that is being written
  bool hasDefault_ = false;         // whether it has one without a condition
};
