#include "ctl/words/arguments.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "ctl/service/exit_status.h"
#include "ctl/text/assignment.h"

namespace {

constexpr char MARK = '\x01';

std::string unmarked(std::string text) {
  if (text.starts_with(MARK)) text.erase(0, 1);
  return text;
}

}  // namespace

Texts markedArguments(int argc, char** argv) {
  Texts marked;
  bool isBehindSign = false;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (!isBehindSign && argument == "--") {
      isBehindSign = true;
      continue;
    }
    const bool needsMark = isBehindSign || argument.starts_with('[') || argument.starts_with(MARK);
    marked.push_back((needsMark ? std::string(1, MARK) : "") + std::string(argument));
  }
  return marked;
}

void addTexts(CLI::App& word, const std::string& name, Texts& texts, const std::string& help,
              bool isOptional) {
  CLI::Option* const option = word.add_option(name, texts, help)->transform(unmarked);
  option->check(correctBrackets(name.find('=') != std::string::npos));
  option->type_name("")->expected(isOptional ? 0 : 1, -1);
  if (!isOptional) option->required();
}

CLI::Option* addText(CLI::App& word, const std::string& name, std::string& text,
                     const std::string& help) {
  return word.add_option(name, text, help)->transform(unmarked)->type_name("");
}

void addRepeated(CLI::App& word, const std::string& name, Texts& texts, const std::string& help) {
  word.add_option(name, texts, help)
      ->transform(unmarked)
      ->check(correctBrackets(true))
      ->expected(1)
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->type_name("NAME=VALUE");
}

void addWith(CLI::App& word, Texts& texts) {
  addRepeated(word, "--with", texts, "As it would be after setting this; may be repeated");
}

CLI::Validator correctBrackets(bool isAssignment) {
  const auto faultOf = [isAssignment](const std::string& text) -> std::string {
    const size_t sign = isAssignment ? signOfAssignment(text) : std::string::npos;
    const std::string name = text.substr(0, sign);
    const std::string_view fault = isNamePattern(name) ? "" : faultOfBrackets(name);
    return fault.empty() ? "" : "\"" + name + "\": " + std::string(fault);
  };
  return {faultOf, ""};
}

CLI::Validator wholeNumber(uint32_t least, uint32_t most) {
  const auto faultOf = [least, most](const std::string& text) -> std::string {
    uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, number);
    if (fault == std::errc() && stop == end && number >= least && number <= most) return "";
    return "\"" + unmarked(text) + "\" is not a whole number from " + std::to_string(least) +
           " to " + std::to_string(most);
  };
  return {faultOf, ""};
}

CLI::Validator numberFromZero() {
  const auto faultOf = [](const std::string& text) -> std::string {
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
    if (fault == std::errc() && stop == end && std::isfinite(number) && number >= 0) return "";
    return "\"" + unmarked(text) + "\" is not a number from 0 on";
  };
  return {faultOf, ""};
}

std::vector<Assignment> assignmentsOf(const Texts& texts) {
  std::vector<Assignment> assignments;
  for (const std::string& text : texts) {
    std::optional<Assignment> assignment = assignmentOf(text);
    if (!assignment) endWith(STATUS_USAGE, "\"" + text + "\" is not of the form NAME=VALUE");
    if (std::ranges::count(assignments, assignment->name, &Assignment::name) > 0) {
      endWith(STATUS_USAGE, "\"" + assignment->name + "\" is given two values");
    }
    assignments.push_back(*std::move(assignment));
  }
  return assignments;
}
