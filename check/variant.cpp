#include "check/variant.h"

#include <utility>

#include "deflang/text/diagnostics.h"
#include "sw/parm/build/builder.h"

std::vector<NamedValues> variantsOf(const ConstantChoices& choices) {
  std::vector<NamedValues> variants = {{}};
  for (const auto& [name, values] : choices) {
    std::vector<NamedValues> longer;
    for (const NamedValues& variant : variants) {
      for (const std::string& value : values) {
        longer.push_back(variant);
        longer.back().emplace_back(name, value);
      }
    }
    variants = std::move(longer);
  }
  return variants;
}

Variant buildVariant(const SourceText& /*source*/, const ReadText& text, NamedValues constants,
                     Findings& findings) {
  Variant variant = {std::move(constants), std::make_unique<Database>()};
  for (const auto& [name, value] : variant.constants) {
    static_cast<void>(variant.database->defineConstant(name, value));
  }
  DiagnosticCollector diagnostics;
  const int result = buildDefinitions(diagnostics, text.definitions.records, text.definitions.lines,
                                      false, *variant.database);
  variant.isBuilt = result == 0 && !text.isBroken;
  for (const Diagnostic& diagnostic : diagnostics.diagnostics()) {
    const bool hasPlace = diagnostic.at.line != NO_POSITION;
    findings.add({"builder",
                  hasPlace ? TextPlace{diagnostic.at.line, diagnostic.at.column, 0} : TextPlace{},
                  diagnosticMessage(diagnostic.code)});
  }
  return variant;
}
