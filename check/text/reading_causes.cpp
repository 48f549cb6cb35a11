#include "check/text/reading_causes.h"

#include "check/text/definition_causes.h"
#include "check/text/name_words.h"
#include "check/text/statement_causes.h"

ReadingCause causeOf(const ReadingFault& fault, const SourceText& source, std::string_view text) {
  const FaultView view(fault, source, text);
  if (!fault.keyword.empty()) return causeInStatement(view);
  return fault.isBodyOpen ? causeInBody(view) : causeInHead(view);
}

void nameBareWord(Finding& finding, std::string_view word, bool isName) {
  const std::string bare(word);
  if (isName) {
    finding.code = "syntax";
    finding.text = "an expression has to be in parentheses: (" + bare + ")";
    finding.proposal = {finding.at, "(" + bare + ")"};
  } else if (isConstantName(word)) {
    finding.text =
        "a text has to be in quotes: \"" + bare + "\", and a name in parentheses: (" + bare + ")";
  } else {
    finding.text = "a text has to be in quotes: \"" + bare + "\"";
    finding.proposal = {finding.at, "\"" + bare + "\""};
  }
}
