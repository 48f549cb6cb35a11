// Finding codes: every kind of finding, with its level and its explanation.
#pragma once

#include <span>
#include <string_view>

#include "check/finding.h"

/// One kind of finding.
struct FindingCode {
  std::string_view name;     ///< as in "[never-true]" and -W never-true
  FindingLevel level;        ///< of findings that do not say another
  std::string_view summary;  ///< one line, for --list-codes
  /// For --explain: what it means, why it matters, an example and its mending. Lines of at most 80
  /// bytes, each with its newline.
  std::string_view explanation;
};

/// All codes, ascending by name.
std::span<const FindingCode> findingCodes();

/// The code of a name, or null.
const FindingCode* findFindingCode(std::string_view name);
