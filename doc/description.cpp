#include "doc/description.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "deflang/text/comments.h"

namespace {

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
      const std::optional<std::string_view> comment = commentIn(source_.line(next_));
      if (!comment) continue;
      const std::string_view title = sectionTitle(*comment);
      if (!title.empty()) section_ = title;
    }
  }

  void addParagraphs(uint32_t line, std::vector<std::string>& paragraphs) const {
    uint32_t first = line;
    while (first > 1 && describingComment(source_.line(first - 1))) --first;
    bool isOpen = false;
    for (; first < line; ++first) {
      const std::string_view comment = *describingComment(source_.line(first));
      if (isForChecker(comment)) continue;
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
