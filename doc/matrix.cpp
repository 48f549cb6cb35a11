#include "doc/matrix.h"

#include "base/number.h"
#include "doc/html.h"

namespace {

void appendCell(std::string& html, const DocStandardCell& cell) {
  if (!cell.exists) {
    html += "<td class=no>absent";
    return;
  }
  html += "<td>";
  const std::string range = rangeText(cell);
  if (range.empty()) html += "<span class=no>no range</span>";
  appendEscaped(html, range);
  // Of a value that is the only one there is nothing more to say.
  if (cell.value.empty() || cell.value == range) return;
  html += "<br><span class=c>default</span> ";
  appendEscaped(html, cell.value);
}

void appendTable(std::string& html, const DocModel& model, const DocStandards& standards) {
  html += "<div class=v tabindex=0 role=region aria-label=\"Standards of ";
  appendEscaped(html, standards.selector);
  html += "\"><table><caption>By the standard of ";
  appendName(html, model, standards.selector);
  html += "</caption>\n<thead><tr><th scope=col>Parameter";
  for (const std::string& standard : standards.standards) {
    html += "<th scope=col>";
    appendEscaped(html, standard);
  }
  html += "</thead><tbody>\n";
  for (const DocStandardRow& row : standards.rows) {
    html += "<tr><th scope=row>";
    appendName(html, model, row.parameter);
    if (!row.instances.empty()) {
      html += " <span class=c>";
      appendEscaped(html, row.instances);
      html += "</span>";
    }
    for (const DocStandardCell& cell : row.cells) appendCell(html, cell);
    html += '\n';
  }
  html += "</tbody></table></div>\n";
}

}  // namespace

std::string rangeText(const DocStandardCell& cell) {
  if (!cell.hasRange) return {};
  std::string text;
  const auto add = [&text](const std::string& item) { text += (text.empty() ? "" : ", ") + item; };
  for (const auto& [low, high] : cell.spans) {
    add(low == high ? numberText(low) : numberText(low) + " … " + numberText(high));
  }
  for (const std::string& one : cell.texts) add(one);
  if (cell.isCut) add("…");
  return text.empty() ? "any value" : text;
}

std::string matrixHtml(const DocModel& model) {
  if (model.standards.empty()) return {};
  std::string html =
      "<section id=standards aria-labelledby=standards-title>"
      "<h2 id=standards-title>Video standards</h2>\n"
      "<p class=hint>Limits and defaults under each standard that can be selected, after a reset "
      "of "
      "all that follows it.</p>\n";
  for (const DocStandards& standards : model.standards) appendTable(html, model, standards);
  return html + "</section>\n";
}
