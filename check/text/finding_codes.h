// Finding codes: every kind of finding, with its level and its explanation.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "check/text/finding.h"

/// What has to be asked to find it.
enum FindingGroup {
  GROUP_READING,  ///< the grammar
  GROUP_BUILDER,  ///< the builder of the definitions
  GROUP_STATIC,   ///< the definitions as they are
  GROUP_PROVED,   ///< all situations
  GROUP_OWN,      ///< the checker's own comments in the text
};

/// One kind of finding.
struct FindingCode {
  std::string_view name;  ///< as in "[never-true]" and -W never-true
  FindingGroup group;
  FindingLevel level;        ///< of findings that do not say another
  std::string_view summary;  ///< one line, for --list-codes
  /// For --explain: what it means, why it matters, an example and its mending. Lines of at most 80
  /// bytes, each with its newline.
  std::string_view explanation;

  /// Whether the daemon refuses a text with such a finding, so that nothing can silence it.
  [[nodiscard]] bool isRefusal(FindingLevel actual) const {
    return actual == LEVEL_ERROR && (group == GROUP_READING || group == GROUP_BUILDER);
  }
};

/// All codes, ascending by name.
std::span<const FindingCode> findingCodes();

/// The code of a name, or null.
const FindingCode* findFindingCode(std::string_view name);

/// The code that an unknown name most likely means, or null.
const FindingCode* nearestFindingCode(std::string_view name);

/// The level of a finding: its own, else that of its code.
FindingLevel levelOf(const Finding& finding);

/// "error", "warning" or "note".
const char* levelWord(FindingLevel level);
