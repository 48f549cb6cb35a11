// Level choices: which codes are reported, and as what.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "check/checker.h"
#include "check/text/finding_codes.h"

/// What the command line says of codes; later choices win over earlier ones.
class LevelChoices {
 public:
  /// Takes what follows "-W": "CODE" has it reported, "no-CODE" not, "error=CODE" as an error;
  /// "error" makes errors of all warnings. A code whose name begins with "no-" is taken first.
  /// Returns what is wrong with it, or an empty text.
  std::string take(std::string_view choice);
  /// Takes away from `report` what is not to be reported, and gives every finding its level.
  void apply(CheckReport& report) const;

 private:
  std::string silence(const FindingCode& code);
  void apply(std::vector<Finding>& findings) const;

  std::set<std::string_view> silent_;
  std::set<std::string_view> errors_;
  bool areWarningsErrors_ = false;
};

/// 'there is no code "octl"; did you mean "octal"?'
std::string unknownCodeMessage(std::string_view name);
