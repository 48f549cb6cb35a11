// Reading causes: why the grammar cannot read a text at some place, and where to go on.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

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

/// A word where a text or an expression belongs.
struct BareWord {
  TextPlace at;               ///< with quotes that the language does not have
  std::string_view word;      ///< without them; a view of the text
  bool isText = false;        ///< whether it cannot be a name
  bool isClosed = true;       ///< whether such quotes are closed
  bool isBehindWord = false;  ///< whether there is only white space between the word before and it
};

/// What is said about it.
struct ReadingCause {
  Finding finding;
  ResumePoint next;
  /// The bare words of a statement: what to say about them is known once all names are, see
  /// findingOfBareWords().
  std::vector<BareWord> bareWords = {};
};

/// Why the reading stopped, and where it goes on: behind `fault.nameAt`, and not always behind
/// `fault.at`, because a sign that is missing may let the grammar run on. `text` is that of
/// `source`, perhaps with other bytes where no text may have them.
ReadingCause causeOf(const ReadingFault& fault, const SourceText& source, std::string_view text);
