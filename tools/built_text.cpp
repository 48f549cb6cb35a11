#include "tools/built_text.h"

#include <cstdio>
#include <utility>

#include "check/report.h"
#include "check/report_text.h"

std::unique_ptr<BuiltText> buildText(const std::string& name, std::string text,
                                     NamedValues constants) {
  auto built = std::make_unique<BuiltText>();
  FileReport file = {std::make_unique<SourceText>(name, std::move(text)), {}};
  Findings findings;
  readText(*file.source, built->text, findings);
  built->variant = buildVariant(*file.source, built->text, std::move(constants), findings);
  file.report.findings = findings.inTextOrder();
  keepErrors(file.report);
  if (hasErrors(file.report)) {
    writeText(file, {}, stderr);
    return nullptr;
  }
  built->source = std::move(file.source);
  return built;
}
