#include "doc/page_parameter.h"

#include <algorithm>
#include <string_view>

#include "base/number.h"
#include "doc/html.h"
#include "doc/scale.h"

namespace {

// So many numbers of a span are shown one by one; more are a scale.
constexpr int64_t FEW_NUMBERS = 4;
// More names than these are a list that is opened.
constexpr size_t MANY_NAMES = 60;

std::string_view accessText(const std::string& access) {
  if (access == "ro") return "read-only";
  if (access == "rostrict") return "read-only, silent";
  if (access == "wo") return "trigger";
  return "read and write";
}

// Writes the card of one definition.
class Card {
 public:
  Card(std::string& html, const DocModel& model, const DocDefinition& definition)
      : html_(html), model_(model), definition_(definition) {}

  void description() {
    for (const std::string& paragraph : definition_.description) {
      html_ += "<p>";
      appendEscaped(html_, paragraph);
      html_ += "</p>";
    }
    if (definition_.description.empty()) html_ += "<p class=no>No description.</p>";
  }

  void values(const std::vector<DocRange>& ranges, std::string_view word, std::optional<int> mark) {
    if (ranges.empty()) return;
    const std::optional<Span> extent = extentOf(ranges);
    // All have a scale, so that they compare, where it says more of one than its numbers do.
    const bool hasScales = std::ranges::any_of(ranges, deservesScale);
    begin(word);
    for (const DocRange& range : ranges) {
      html_ += "<div>";
      condition(range.condition, "while ");
      items(range);
      if (extent && hasScales) appendScale(html_, range, *extent, mark);
      html_ += "</div>";
    }
    end();
  }

  void defaults(const std::vector<DocDefault>& list) {
    if (list.empty()) return;
    begin("Default");
    for (const DocDefault& one : list) {
      html_ += "<div>";
      condition(one.condition, "while ");
      appendSentence(html_, model_, one.value);
      html_ += "</div>";
    }
    end();
  }

  void conditions(const std::vector<DocCondition>& list, std::string_view word,
                  std::string_view between) {
    if (list.empty()) return;
    begin(word);
    for (const DocCondition& one : list) {
      html_ += "<div>";
      if (&one != &list.front()) html_ += between;
      html_ += one.sentence.empty() ? "always" : "while ";
      appendSentence(html_, model_, one.sentence);
      html_ += "</div>";
    }
    end();
  }

  void replacements() {
    if (definition_.replacements.empty()) return;
    begin("Replaced");
    for (const DocReplacement& one : definition_.replacements) {
      html_ += "<div><q>";
      appendEscaped(html_, one.source);
      html_ += "</q> becomes <q>";
      appendEscaped(html_, one.target);
      html_ += "</q></div>";
    }
    end();
  }

  void names(std::string_view word, const std::vector<std::string>& list) {
    if (list.empty()) return;
    begin(word);
    const bool isLong = list.size() > MANY_NAMES;
    if (isLong) {
      html_ += "<details><summary>" + std::to_string(list.size()) + " parameters</summary>";
    }
    appendNames(html_, model_, list);
    if (isLong) html_ += "</details>";
    end();
  }

  // Where the limits under each standard are.
  void standards() {
    if (definition_.standards.empty() || model_.standards.empty()) return;
    begin("By standard");
    html_ += "<a href=\"#standards\">limits and defaults</a>";
    end();
  }

  void begin(std::string_view word) { html_.append("<dt>").append(word).append("<dd>"); }
  void end() { html_ += "\n"; }

 private:
  // Whether it has many numbers in a row, or a gap.
  static bool deservesScale(const DocRange& range) {
    const auto isWide = [](const DocItem& item) {
      return item.span && int64_t{item.span->second} - item.span->first >= FEW_NUMBERS;
    };
    const auto hasSpan = [](const DocItem& item) { return item.span.has_value(); };
    return std::ranges::any_of(range.items, isWide) ||
           std::ranges::count_if(range.items, hasSpan) > 1;
  }

  void condition(const Sentence& sentence, std::string_view word) {
    if (sentence.empty()) return;
    html_.append("<span class=c>").append(word);
    appendSentence(html_, model_, sentence);
    html_ += ":</span> ";
  }

  void items(const DocRange& range) {
    for (const DocItem& item : range.items) {
      if (&item != &range.items.front()) html_ += ' ';
      if (item.span) {
        span(*item.span);
      } else if (item.text) {
        html_ += "<b>";
        appendEscaped(html_, *item.text);
        html_ += "</b>";
      } else {
        computed(item);
      }
    }
  }

  void span(const Span& span) {
    const int64_t numbers = int64_t{span.second} - span.first + 1;
    if (numbers > FEW_NUMBERS) {
      html_ += "<b>" + numberText(span.first) + " … " + numberText(span.second) + "</b>";
      return;
    }
    for (int64_t number = span.first; number <= span.second; ++number) {
      if (number != span.first) html_ += ' ';
      html_ += "<b>" + std::to_string(number) + "</b>";
    }
  }

  void computed(const DocItem& item) {
    html_ += "<b class=x>";
    appendSentence(html_, model_, item.lower);
    if (!item.upper.empty()) {
      html_ += " … ";
      appendSentence(html_, model_, item.upper);
    }
    html_ += "</b>";
  }

  std::string& html_;
  const DocModel& model_;
  const DocDefinition& definition_;
};

// The number of the one default that always counts, to be marked on the scale.
std::optional<int> markOf(const DocParameter& parameter) {
  if (parameter.defaults.size() != 1) return {};
  const DocDefault& only = parameter.defaults.front();
  if (!only.condition.empty() || only.value.size() != 1) return {};
  if (only.value.front().kind != PART_OF_NUMBER) return {};
  return wholeNumber(only.value.front().text);
}

void appendHeading(std::string& html, std::string_view kind, const std::string& level,
                   const DocDefinition& definition) {
  html.append("<h" + level + "><a href=\"").append(fragment(kind, definition.name)).append("\">");
  appendEscaped(html, definition.name);
  html += "</a>";
}

void appendId(std::string& html, std::string_view kind, const std::string& name) {
  html.append("<article id=\"").append(kind).append("-");
  appendEscaped(html, name);
  html += '"';
}

}  // namespace

void appendParameter(std::string& html, const DocModel& model, const DocParameter& parameter,
                     int heading) {
  const std::string level = std::to_string(heading);
  appendId(html, "p", parameter.name);
  html += " data-a=" + parameter.access + " data-l=" + std::to_string(parameter.level) + ">";
  appendHeading(html, "p", level, parameter);
  for (const std::string& index : parameter.indices) {
    html.append("<a class=i href=\"").append(fragment("i", index)).append("\">[");
    appendEscaped(html, index);
    html += "]</a>";
  }
  html.append("<span class=\"a ").append(parameter.access).append("\">");
  html.append(accessText(parameter.access)).append("</span></h" + level + ">");
  Card card(html, model, parameter);
  card.description();
  html += "<dl>";
  if (parameter.isNever) {
    card.begin("Exists");
    html += "never in this variant";
    card.end();
  }
  card.conditions(parameter.available, "Exists", "and ");
  card.values(parameter.ranges, "Values", markOf(parameter));
  card.values(parameter.menus, "Offered", std::nullopt);
  card.defaults(parameter.defaults);
  card.replacements();
  card.conditions(parameter.readOnly, "Read-only", "or ");
  card.standards();
  card.names("Follows", parameter.follows);
  card.names("Followed by", parameter.followedBy);
  html += "</dl></article>\n";
}

void appendIndex(std::string& html, const DocModel& model, const DocIndex& index) {
  appendId(html, "i", index.name);
  html += ">";
  appendHeading(html, "i", "3", index);
  html += "<span class=a>index</span></h3>";
  Card card(html, model, index);
  card.description();
  html += "<dl>";
  card.conditions(index.available, "Exists", "and ");
  card.values(index.ranges, "Values", std::nullopt);
  card.replacements();
  card.names("Follows", index.follows);
  card.names("Indexes", index.parameters);
  html += "</dl></article>\n";
}
