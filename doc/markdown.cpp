#include "doc/markdown.h"

#include <string_view>

#include "base/number.h"
#include "doc/html.h"
#include "doc/matrix.h"

namespace {

// A text that is no markup: a backslash before every sign that may be some, which is what the
// dialects have in common. A "<" that could begin a tag is one of them.
std::string plain(std::string_view text) {
  std::string result;
  for (const char byte : text) {
    if (std::string_view("\\`*_{}[]<>()#+-.!|&~:\"'=$^%@").find(byte) != std::string_view::npos) {
      result += '\\';
    }
    result += byte;
  }
  return result;
}

class MarkdownWriter {
 public:
  explicit MarkdownWriter(const DocModel& model) : model_(model) {}

  std::string write() {
    text_ = "# " + plain(model_.title) + "\n\n";
    line(std::to_string(model_.parameters.size()) + " parameters, from " + plain(model_.file));
    for (const DocConstant& constant : model_.constants) {
      item(plain(constant.name) + " is " + quoted(constant.value));
    }
    text_ += "\n## Parameters\n\n";
    std::string section;
    for (const DocParameter& parameter : model_.parameters) {
      if (parameter.section != section && !parameter.section.empty()) {
        text_ += "### " + plain(parameter.section) + "\n\n";
      }
      section = parameter.section;
      write(parameter);
    }
    if (!model_.indices.empty()) text_ += "## Indices\n\n";
    for (const DocIndex& index : model_.indices) write(index);
    if (!model_.standards.empty()) text_ += "## Video standards\n\n";
    for (const DocStandards& standards : model_.standards) write(standards);
    return std::move(text_);
  }

 private:
  void line(const std::string& words) { text_ += words + "\n\n"; }
  void item(const std::string& words) { text_ += "- " + words + "\n"; }
  static std::string quoted(const std::string& text) { return "“" + plain(text) + "”"; }

  // A link to the heading of a name; the anchors are written out, because no two dialects make the
  // same of a heading.
  [[nodiscard]] std::string name(const std::string& full) const {
    const std::string base = baseNameOf(full);
    const bool isParameter = model_.find(base) != nullptr;
    if (!isParameter && !model_.indexPlaces.contains(base)) return plain(full);
    return "[" + plain(full) + "](" + fragment(isParameter ? "p" : "i", base) + ")";
  }
  [[nodiscard]] std::string names(const std::vector<std::string>& list) const {
    std::string words;
    for (const std::string& one : list) words += (words.empty() ? "" : ", ") + name(one);
    return words;
  }
  [[nodiscard]] std::string sentence(const Sentence& parts) const {
    std::string words;
    for (const SentencePart& part : parts) {
      switch (part.kind) {
        case PART_OF_NAME:
          words += name(part.text);
          break;
        case PART_OF_TEXT:
          words += quoted(part.text);
          break;
        default:
          words += plain(part.text);
      }
    }
    return words;
  }
  [[nodiscard]] std::string condition(const Sentence& parts) const {
    return parts.empty() ? "" : ", while " + sentence(parts);
  }

  [[nodiscard]] std::string items(const DocRange& range) const {
    std::string words;
    for (const DocItem& item : range.items) {
      if (!words.empty()) words += ", ";
      if (item.span) {
        const auto& [low, high] = *item.span;
        words += plain(numberText(low));
        if (low != high) words += " … " + plain(numberText(high));
      } else if (item.text) {
        words += quoted(*item.text);
      } else {
        words += sentence(item.lower);
        if (!item.upper.empty()) words += " … " + sentence(item.upper);
      }
    }
    return words;
  }

  void heading(std::string_view kind, const DocDefinition& definition) {
    text_ += "#### <a id=\"" + std::string(kind) + "-" + escaped(definition.name) + "\"></a>" +
             plain(definition.name) + "\n\n";
    for (const std::string& paragraph : definition.description) line(plain(paragraph));
  }

  void common(const DocDefinition& definition) {
    for (const DocCondition& one : definition.available) {
      item("exists " + (one.sentence.empty() ? "always" : "while " + sentence(one.sentence)));
    }
    for (const DocRange& range : definition.ranges) {
      item("values: " + items(range) + condition(range.condition));
    }
    for (const DocReplacement& one : definition.replacements) {
      item(quoted(one.source) + " becomes " + quoted(one.target));
    }
    if (!definition.follows.empty()) item("follows " + names(definition.follows));
  }

  void write(const DocParameter& parameter) {
    heading("p", parameter);
    item(parameter.access + ", level " + std::to_string(parameter.level));
    if (!parameter.indices.empty()) item("indexed by " + names(parameter.indices));
    if (parameter.isNever) item("never exists in this variant");
    common(parameter);
    for (const DocRange& menu : parameter.menus) {
      item("offered: " + items(menu) + condition(menu.condition));
    }
    for (const DocDefault& one : parameter.defaults) {
      item("default: " + sentence(one.value) + condition(one.condition));
    }
    for (const DocCondition& one : parameter.readOnly) {
      item("read\\-only " + (one.sentence.empty() ? "always" : "while " + sentence(one.sentence)));
    }
    if (!parameter.followedBy.empty()) item("followed by " + names(parameter.followedBy));
    text_ += '\n';
  }

  void write(const DocIndex& index) {
    heading("i", index);
    common(index);
    if (!index.parameters.empty()) item("indexes " + names(index.parameters));
    text_ += '\n';
  }

  void write(const DocStandards& standards) {
    line("By the standard of " + name(standards.selector) + ":");
    text_ += "| Parameter |";
    for (const std::string& standard : standards.standards) text_ += " " + plain(standard) + " |";
    text_ += "\n|---|";
    for (size_t i = 0; i < standards.standards.size(); ++i) text_ += "---|";
    text_ += '\n';
    for (const DocStandardRow& row : standards.rows) {
      text_ += "| " + name(row.parameter);
      if (!row.instances.empty()) text_ += " " + plain(row.instances);
      text_ += " |";
      for (const DocStandardCell& cell : row.cells) text_ += " " + cellText(cell) + " |";
      text_ += '\n';
    }
    text_ += '\n';
  }

  static std::string cellText(const DocStandardCell& cell) {
    if (!cell.exists) return "absent";
    std::string words = cell.hasRange ? plain(rangeText(cell)) : "no range";
    if (!cell.value.empty() && cell.value != rangeText(cell)) {
      words += "; default " + plain(cell.value);
    }
    return words;
  }

  const DocModel& model_;
  std::string text_;
};

}  // namespace

std::string markdownText(const DocModel& model) { return MarkdownWriter(model).write(); }
