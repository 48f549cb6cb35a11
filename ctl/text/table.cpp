#include "ctl/text/table.h"

#include <glib.h>

#include <algorithm>

namespace {

size_t widthOf(const std::string& cell) {
  return static_cast<size_t>(g_utf8_strlen(cell.data(), static_cast<gssize>(cell.size())));
}

}  // namespace

std::vector<std::string> tableLines(const std::vector<std::vector<std::string>>& rows) {
  std::vector<size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], widthOf(row[i]));
  }
  std::vector<std::string> lines;
  lines.reserve(rows.size());
  for (const auto& row : rows) {
    std::string line;
    for (size_t i = 0; i < row.size(); ++i) {
      line += row[i] + std::string(widths[i] - widthOf(row[i]) + 2, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    lines.push_back(std::move(line));
  }
  return lines;
}
