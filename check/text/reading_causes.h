// Reading causes: why the grammar cannot read a text at some place, and where to go on.
#pragma once

#include <optional>
#include <string_view>

#include "check/text/finding.h"
#include "check/text/recovery.h"
#include "check/text/source_text.h"
#include "deflang/text/parse_result.h"
#include "deflang/text/record.h"

/// A place at which the grammar stopped. Places are bytes of the text.
struct ReadingFault {
  size_t at = 0;
  /// PARSE_DONE where the text has ended within the definition.
  ParseResult result = PARSE_DONE;
  const ParameterRecord* record = nullptr;  ///< the open definition; never null
  size_t nameAt = 0;                        ///< of its name
  bool isBodyOpen = false;                  ///< whether its brace has been read
  std::string_view keyword;                 ///< of the statement that is open, else empty
  size_t keywordAt = 0;
  /// The last statement of the open definition that is complete; empty extent where there is none.
  size_t statementAt = 0;
  size_t statementEnd = 0;
  /// The last definition that is complete, if there is one.
  std::optional<RelatedPlace> closed;
};

/// What is said about it.
struct ReadingCause {
  Finding finding;
  ResumePoint next;
  /// A bare word where a text or an expression belongs: which of the two is known once all names
  /// are, see nameBareWord().
  std::string_view bareWord = {};
};

/// Why the reading stopped, and where it goes on: behind `fault.nameAt`, and not always behind
/// `fault.at`, because a sign that is missing may let the grammar run on. `text` is that of
/// `source`, perhaps with other bytes where no text may have them.
ReadingCause causeOf(const ReadingFault& fault, const SourceText& source, std::string_view text);

/// Says in `finding` what a bare word wants: parentheses where it is a name, else quotes.
void nameBareWord(Finding& finding, std::string_view word, bool isName);
