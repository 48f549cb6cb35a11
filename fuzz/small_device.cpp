#include "fuzz/small_device.h"

#include <iterator>
#include <vector>

namespace {

constexpr uint32_t MAX_PARMS = 6;
constexpr uint32_t MAX_STATEMENTS = 5;

const char* const INDEX_LISTS[] = {"", "", "i", "t", "i, t"};
const char* const ACCESS_WORDS[] = {"rw", "rw", "rw", "rw", "ro", "rostrict", "wo"};
const char* const NUMBERS[] = {"0", "1", "2", "3", "5", "7", "9", "20"};
const char* const TEXTS[] = {"\"on\"", "\"off\"", "\"7\"", "\"1080i/50\"", "\"720p/50\""};
const char* const COMPARISONS[] = {"", " == ", " != ", " > ", " < "};
const char* const FIGURES[] = {"spal", "fr", "f1"};

// What is known of a parameter before its statements are made: others may refer to it.
struct Parm {
  std::string access;
  std::string indices;
};

class DeviceText {
 public:
  explicit DeviceText(FuzzInput& input) : input_(input), parms_(1 + input.below(MAX_PARMS)) {
    for (Parm& parm : parms_) {
      parm.access = input_.pick(ACCESS_WORDS);
      parm.indices = &parm == &parms_.front() ? "" : input_.pick(INDEX_LISTS);
    }
  }

  std::string text() {
    std::string text = indexText("i", "0..2", "0..1") + indexText("t", "\"a\", \"b\"", "\"b\"");
    for (own_ = 0; own_ < parms_.size(); ++own_) text += parmText();
    return text;
  }

 private:
  // An index refers to p0 only, which has no index itself, so everything else may depend on it.
  std::string indexText(const std::string& name, const std::string& values,
                        const std::string& fewer) {
    std::string text = name + " index { rangeValid { " + values + " }";
    if (input_.below(4) == 1) text += " rangeValid (p0 > 3) { " + fewer + " }";
    if (input_.below(4) == 1) text += " rangeValid (p0 <= 3) { " + values + " }";
    if (input_.below(4) == 1) text += " ctrlValid (p0 != 7)";
    if (input_.below(8) == 1) text += " valueChange { \"c\" -> \"a\" }";
    return text + " }\n";
  }

  std::string parmText() {
    const Parm& parm = parms_[own_];
    hasDefault_ = false;
    std::string text = "p" + std::to_string(own_) + " " + parm.access + " {";
    if (!parm.indices.empty()) text += " index { " + parm.indices + " }";
    const uint32_t statements = input_.below(MAX_STATEMENTS);
    for (uint32_t i = 0; i < statements; ++i) text += statement();
    return text + " }\n";
  }

  std::string statement() {
    switch (input_.below(9)) {
      case 0:
        return " ctrlValid (" + condition() + ")";
      case 1:
        return parms_[own_].access == "wo" ? "" : " ctrlRO (" + condition() + ")";
      case 2:
        return defaultStatement();
      case 3:
        return " valueChange { " + plainValue() + " -> " + plainValue() + " }";
      case 4:
        return " rangeDoc" + rangeBody();
      default:
        return " rangeValid" + rangeBody();
    }
  }

  std::string defaultStatement() {
    std::string text = " default";
    if (hasDefault_ || input_.flip()) {
      text += " (" + condition() + ")";
    } else {
      hasDefault_ = true;  // a second one for all situations is an error
    }
    return text + " { " + (input_.flip() ? plainValue() : "(" + reference() + " + 1)") + " }";
  }

  std::string rangeBody() {
    std::string text = input_.flip() ? " (" + condition() + ") {" : " {";
    const uint32_t items = 1 + input_.below(3);
    for (uint32_t i = 0; i < items; ++i) text += (i == 0 ? " " : ", ") + item();
    return text + " }";
  }

  std::string item() {
    switch (input_.below(6)) {
      case 0:
        return input_.pick(TEXTS);
      case 1:
        return plainValue();
      case 2:
        return "(" + reference() + ")";
      default:
        return span();
    }
  }

  // Limits that are known when the text is built are in order, else the text is refused.
  std::string span() {
    const size_t low = input_.below(std::size(NUMBERS));
    switch (own_ == 0 ? 0 : input_.below(4)) {
      case 0:
        return std::string(NUMBERS[low / 2]) + ".." + NUMBERS[low];
      case 1:
        return std::string(NUMBERS[low / 2]) + "..(" + parameter() + " + " + NUMBERS[low] + ")";
      case 2:
        return "(" + parameter() + ").." + NUMBERS[low];
      default:
        return "(" + parameter() + ")..(" + parameter() + " + " + NUMBERS[low] + ")";
    }
  }

  std::string condition() {
    const std::string comparison = input_.pick(COMPARISONS);
    return reference() + (comparison.empty() ? "" : comparison + input_.pick(NUMBERS));
  }

  std::string plainValue() {
    return input_.below(3) == 0 ? input_.pick(TEXTS) : input_.pick(NUMBERS);
  }

  std::string reference() {
    switch (input_.below(10)) {
      case 0:
        return ownIndex();
      case 1:
        return input_.flip() ? "CHANNELS" : "AUDIO";
      case 2:
        return "sw::this";
      default:
        return parameter();
    }
  }

  // Mostly a parameter below. A partner of its own, both referring to the other, shares its level;
  // a lone reference upwards may close a cycle, and then the text is refused.
  std::string parameter() {
    const size_t below = own_ == 0 ? 0 : input_.below(static_cast<uint32_t>(own_));
    switch (input_.below(12)) {
      case 0:
        return instance((own_ ^ 1) < parms_.size() ? own_ ^ 1 : below);
      case 1:
        return "p" + std::to_string(own_);
      case 2:
        return "vidStd::p" + std::to_string(below) + "::" + input_.pick(FIGURES);
      default:
        return instance(below);
    }
  }

  // The parameter's name, in part of the cases with index values.
  std::string instance(size_t parm) {
    std::string name = "p" + std::to_string(parm);
    const std::string& indices = parms_[parm].indices;
    if (indices.empty() || input_.flip()) return name;
    if (indices.front() == 'i') name += "[" + std::to_string(input_.below(3)) + "]";
    if (indices.back() == 't') name += input_.flip() ? "[a]" : "[b]";
    return name;
  }

  std::string ownIndex() {
    const std::string& indices = parms_[own_].indices;
    if (indices.empty()) return "FITTED";
    return std::string(1, input_.flip() ? indices.front() : indices.back());
  }

  FuzzInput& input_;
  std::vector<Parm> parms_;
  size_t own_ = 0;           // the parameter that is being made
  bool hasDefault_ = false;  // whether it has a default for all situations
};

}  // namespace

std::string smallDevice(FuzzInput& input) { return DeviceText(input).text(); }
