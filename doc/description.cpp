#include "doc/description.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

namespace {

constexpr std::string_view WHITE_SPACE = " \t\r\v\f";
constexpr std::string_view ORNAMENTS = "-=*#~";

std::string_view trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(WHITE_SPACE);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(WHITE_SPACE) - first + 1);
}

// What a comment line says; nothing where it is none.
std::optional<std::string_view> commentOf(std::string_view line) {
  line = trimmed(line);
  if (!line.starts_with('#')) return {};
  return trimmed(line.substr(1));
}

bool isOrnament(std::string_view comment) {
  return !comment.empty() &&
         comment.find_first_not_of(std::string(ORNAMENTS) + " ") == std::string_view::npos;
}

// The title of a section that `comment` begins, or an empty one.
std::string_view titleOf(std::string_view comment) {
  const size_t title = comment.find_first_not_of(ORNAMENTS);
  if (title == std::string_view::npos || title < 2) return {};
  comment.remove_prefix(title);
  return trimmed(comment.substr(0, comment.find_last_not_of(ORNAMENTS) + 1));
}

// Goes through a text once, from its first line to its last.
class Describer {
 public:
  explicit Describer(const SourceText& source) : source_(source) {}

  void describe(const DefinitionLayout& definition, Description& description) {
    readSectionsTo(definition.name.line);
    if (description.section.empty()) description.section = section_;
    // Behind the end of a definition of an earlier line, what is above belongs to that one.
    if (definition.name.line != line_) isBehindOther_ = lastEnd_ == definition.name.line;
    line_ = definition.name.line;
    lastEnd_ = definition.extent.to.line;
    if (!isBehindOther_) addParagraphs(line_, description.paragraphs);
  }

 private:
  void readSectionsTo(uint32_t line) {
    for (; next_ < line; ++next_) {
      const std::optional<std::string_view> comment = commentOf(source_.line(next_));
      if (!comment) continue;
      const std::string_view title = titleOf(*comment);
      if (!title.empty()) section_ = title;
    }
  }

  [[nodiscard]] bool isDescribing(uint32_t line) const {
    const std::optional<std::string_view> comment = commentOf(source_.line(line));
    return comment && !isOrnament(*comment) && titleOf(*comment).empty();
  }

  void addParagraphs(uint32_t line, std::vector<std::string>& paragraphs) const {
    uint32_t first = line;
    while (first > 1 && isDescribing(first - 1)) --first;
    bool isOpen = false;
    for (; first < line; ++first) {
      const std::string_view comment = *commentOf(source_.line(first));
      if (comment.starts_with("check:")) continue;
      if (comment.empty()) {
        isOpen = false;
      } else if (isOpen) {
        paragraphs.back().append(" ").append(comment);
      } else {
        paragraphs.emplace_back(comment);
        isOpen = true;
      }
    }
  }

  const SourceText& source_;
  uint32_t next_ = 1;     // the first line that has not been looked at for a section
  uint32_t line_ = 0;     // of the last definition's name
  uint32_t lastEnd_ = 0;  // of its last brace
  bool isBehindOther_ = false;
  std::string section_;
};

}  // namespace

std::map<const ParameterRecord*, Description> describe(const SourceText& source,
                                                       const TextLayout& layout) {
  std::map<const ParameterRecord*, Description> descriptions;
  Describer describer(source);
  for (const DefinitionLayout& definition : layout.definitions) {
    describer.describe(definition, descriptions[definition.record]);
  }
  return descriptions;
}
