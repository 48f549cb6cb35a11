#include "check/level_choices.h"

#include <vector>

std::string unknownCodeMessage(std::string_view name) {
  const std::string message = "there is no code \"" + std::string(name) + "\"";
  if (name == "all" || name == "extra") return message + "; all codes are reported without it";
  const FindingCode* const nearest = nearestFindingCode(name);
  if (nearest == nullptr) return message + "; --list-codes lists them";
  return message + "; did you mean \"" + std::string(nearest->name) + "\"?";
}

std::string LevelChoices::take(std::string_view choice) {
  constexpr std::string_view NO = "no-";
  constexpr std::string_view ERROR = "error=";
  if (choice == "error") {
    areWarningsErrors_ = true;
    return {};
  }
  if (const FindingCode* const code = findFindingCode(choice)) {
    silent_.erase(code->name);
    return {};
  }
  const bool isNo = choice.starts_with(NO);
  const bool isError = choice.starts_with(ERROR);
  if (isNo) choice.remove_prefix(NO.size());
  if (isError) choice.remove_prefix(ERROR.size());
  const FindingCode* const code = findFindingCode(choice);
  if (code == nullptr) return unknownCodeMessage(choice);
  if (isNo) return silence(*code);
  silent_.erase(code->name);
  errors_.insert(code->name);
  return {};
}

std::string LevelChoices::silence(const FindingCode& code) {
  if (code.isRefusal(code.level)) {
    return "the daemon refuses a text with \"" + std::string(code.name) +
           "\", so it cannot be switched off";
  }
  silent_.insert(code.name);
  return {};
}

void LevelChoices::apply(CheckReport& report) const {
  apply(report.findings);
  apply(report.allowed);
  apply(report.undecided);
}

void LevelChoices::apply(std::vector<Finding>& findings) const {
  std::erase_if(findings, [&](const Finding& finding) {
    const bool isRefusal = findFindingCode(finding.code)->isRefusal(levelOf(finding));
    return silent_.contains(finding.code) && !isRefusal;
  });
  for (Finding& finding : findings) {
    const FindingLevel level = levelOf(finding);
    const bool isRaised =
        errors_.contains(finding.code) || (areWarningsErrors_ && level == LEVEL_WARNING);
    finding.level = isRaised ? LEVEL_ERROR : level;
  }
}
