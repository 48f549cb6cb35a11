#include "check/text/reading_causes.h"

#include "check/text/definition_causes.h"
#include "check/text/statement_causes.h"

ReadingCause causeOf(const ReadingFault& fault, const SourceText& source, std::string_view text) {
  const FaultView view(fault, source, text);
  if (!fault.keyword.empty()) return causeInStatement(view);
  return fault.isBodyOpen ? causeInBody(view) : causeInHead(view);
}
