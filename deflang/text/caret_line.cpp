#include "deflang/text/caret_line.h"

#include <string>

void printCaretLine(FILE* out, std::string_view line, size_t column) {
  std::string report(line);
  if (!line.ends_with('\n')) report += '\n';
  report.append(column, ' ').append("^\n");
  fwrite(report.data(), 1, report.size(), out);
}
