#include "check/checker.h"

#include "check/checked_text.h"

CheckReport checkText(const SourceText& source, const CheckOptions& options) {
  Findings findings;
  ReadText text;
  readText(source, text, findings);
  for (NamedValues& constants : variantsOf(options.constants)) {
    const Variant variant = buildVariant(source, text, std::move(constants), findings);
  }
  return {findings.inTextOrder(), {}, {}};
}
