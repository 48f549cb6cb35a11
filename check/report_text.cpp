#include "check/report_text.h"

#include "check/finding_codes.h"

void writeText(const SourceText& source, const CheckReport& report, std::FILE* out) {
  for (const Finding& finding : report.findings) {
    std::fprintf(out, "%s:%u:%u: %s [%.*s]\n", source.name().c_str(), finding.at.line,
                 finding.at.column + 1, finding.text.c_str(), static_cast<int>(finding.code.size()),
                 finding.code.data());
  }
}
