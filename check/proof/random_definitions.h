// Random definitions of a few parameters, for tests that walk through all situations.
#pragma once

#include <random>
#include <string>
#include <vector>

/// What a text has beside plain parameters.
enum TextKind {
  PLAIN_TEXT,
  TEXT_WITH_INDICES,  ///< "i" and "j" of few values, and parameters that have them
  TEXT_WITH_RING,     ///< the first two parameters follow each other, or all three
};

/// Writes texts of 2 or 3 parameters "p0", "p1" and "p2", of which each refers to those before it.
class RandomDefinitions {
 public:
  explicit RandomDefinitions(unsigned seed) : random_(seed) {}

  std::string write(TextKind kind) {
    kind_ = kind;
    std::string text;
    isMutual_ = kind == TEXT_WITH_RING && below(3) == 0;
    hasSecondIndex_ = kind == TEXT_WITH_INDICES && below(4) == 0;
    if (kind == TEXT_WITH_INDICES) text += index("i");
    if (hasSecondIndex_) text += index("j");
    const unsigned count = hasSecondIndex_ ? 2 : 2 + below(2);
    ringSize_ = kind == TEXT_WITH_RING && count == 3 && below(3) == 0 ? 3 : 2;
    for (unsigned i = 0; i < count; ++i) {
      own_.clear();
      if (kind == TEXT_WITH_INDICES && below(3) > 0) own_ = {"i"};
      if (hasSecondIndex_ && below(3) > 0) own_.emplace_back("j");
      text += definition(i);
    }
    return text;
  }

 private:
  unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
  std::string oneOf(std::initializer_list<const char*> choices) {
    return *(choices.begin() + below(static_cast<unsigned>(choices.size())));
  }

  std::string literal() { return oneOf({"0", "1", "2", "3", "\"a\"", "\"b\"", "\"\"", "\"1\""}); }

  // A parameter before the one of `before`, or beside it in a ring, or an index.
  std::string name(unsigned before) {
    if (kind_ == TEXT_WITH_INDICES && (before == 0 || below(4) == 0)) {
      return hasSecondIndex_ && below(3) == 0 ? "j" : "i";
    }
    const unsigned parmNumber =
        isInRing(before) ? (before + 1 + below(ringSize_ - 1)) % ringSize_ : below(before);
    std::string parm = "p" + std::to_string(parmNumber);
    if (kind_ == TEXT_WITH_INDICES && below(4) == 0) parm += oneOf({"[1]", "[2]", "[1]", "[3]"});
    return parm;
  }
  [[nodiscard]] bool isInRing(unsigned number) const {
    return kind_ == TEXT_WITH_RING && number < ringSize_;
  }

  std::string operand(unsigned before) { return below(3) == 0 ? literal() : name(before); }

  std::string condition(unsigned before, unsigned depth = 0) {
    if (depth < 2 && below(3) == 0) {
      return "(" + condition(before, depth + 1) + oneOf({" && ", " || ", " && "}) +
             condition(before, depth + 1) + ")";
    }
    switch (below(8)) {
      case 0:
        return name(before);
      case 1:
        return name(before) +
               oneOf({" + ", " - ", " * ", " / ", " % ", " & ", " | ", " ^ ", " << ", " >> "}) +
               operand(before) + oneOf({" == ", " > ", " < "}) + literal();
      case 2:
        return name(before) + oneOf({" == ", " != ", " < ", " >= ", " $ "}) + operand(before);
      default:
        return name(before) + oneOf({" == ", " != ", " < ", " > ", " <= ", " >= "}) + literal();
    }
  }

  std::string item(unsigned before) {
    const bool followsOthers = before > 0 || kind_ == TEXT_WITH_RING;
    switch (followsOthers ? below(6) : below(4)) {
      case 0:
        return oneOf({"0..1", "0..2", "1..3", "2..3"});
      case 1:
        return oneOf({"\"a\", \"b\"", "\"a\"", "\"b\", 1"});
      case 2:
        return oneOf({"0", "1", "2"});
      case 3:
        return oneOf({"0..1, \"a\"", "-1..0"});
      case 4:
        return isInRing(before) ? oneOf({"0..(3 - ", "0..(1 + "}) + name(before) + ")"
                                : "0..(" + name(before) + ")";
      default:
        return "(" + name(before) + (before == 0 ? " + 1" : oneOf({" + 1", "", " / p0"})) + ")";
    }
  }

  // An index, which may follow the first parameter, and the second one the first one.
  std::string index(const std::string& indexName) {
    std::string text = indexName + " index {";
    if (below(5) > 0) text += " rangeValid { " + oneOf({"1..2", "1..2", "1, \"a\"", "1"}) + " }";
    const auto follows = [&] {
      const std::string other = indexName == "j" && below(2) == 0 ? "i" : "p0";
      return other + oneOf({" == ", " != ", " < ", " > "}) + oneOf({"0", "1", "2"});
    };
    if (below(3) == 0) {
      text += " rangeValid (" + follows() + ") { " + oneOf({"1", "1..2", "2..3"}) + " }";
    }
    if (below(4) == 0) text += " ctrlValid (" + follows() + ")";
    return text + " }\n";
  }

  // A parameter that another one limits, and that limits that one.
  std::string mutual(unsigned number) {
    const std::string other = name(number);
    return "p" + std::to_string(number) + " rw { rangeValid { " +
           oneOf({"0..(3 - ", "0..(1 + ", "0..("}) + other + ") } default { " +
           oneOf({"0", "1", "2"}) + " } }\n";
  }

  std::string definition(unsigned number) {
    if (isMutual_ && isInRing(number)) return mutual(number);
    const std::string access = oneOf({"rw", "ro", "wo", "rw"});
    std::string text = "p" + std::to_string(number) + " " + access + " {";
    if (!own_.empty()) {
      text += " index { " + own_[0] + (own_.size() > 1 ? ", " + own_[1] : "") + " }";
    }
    if (below(5) > 0) text += " rangeValid { " + item(number) + " }";
    if (number > 0 || kind_ == TEXT_WITH_RING || (!own_.empty() && below(3) == 0)) {
      for (unsigned i = below(3); i > 0; --i) {
        text += " rangeValid (" + condition(number) + ") { " + item(number) + " }";
      }
      if (number > 0 && below(4) == 0) text += " ctrlValid (" + condition(number) + ")";
      for (unsigned i = below(3); i > 0; --i) {
        text += " default (" + condition(number) + ") { " + literal() + " }";
      }
    }
    if (kind_ == TEXT_WITH_RING) text += " default { " + literal() + " }";
    if (isInRing(number) && access == "rw" && below(4) == 0) {
      text += " ctrlRO (" + condition(number) + ")";
    }
    if (below(6) == 0) text += " valueChange { \"a\" -> " + oneOf({"1", "\"b\"", "2"}) + " }";
    return text + " }\n";
  }

  std::mt19937 random_;
  TextKind kind_ = PLAIN_TEXT;
  bool isMutual_ = false;  // whether those of a ring limit each other
  unsigned ringSize_ = 2;
  bool hasSecondIndex_ = false;
  std::vector<std::string> own_;  // the indices of the definition that is being written
};
