#include "deflang/text/comments.h"

#include "deflang/text/text_cursor.h"

namespace {

constexpr std::string_view ORNAMENTS = "-=*#~";
constexpr std::string_view ORNAMENTS_AND_BLANK = "-=*#~ ";

bool isOrnament(std::string_view comment) {
  return !comment.empty() &&
         comment.find_first_not_of(ORNAMENTS_AND_BLANK) == std::string_view::npos;
}

}  // namespace

std::optional<std::string_view> commentIn(std::string_view line) {
  const size_t first = firstWord(line);
  if (first == line.size() || line[first] != '#') return std::nullopt;
  return trimmed(line.substr(first + 1));
}

std::string_view sectionTitle(std::string_view comment) {
  const size_t title = comment.find_first_not_of(ORNAMENTS);
  if (title == std::string_view::npos || title < 2) return {};
  comment.remove_prefix(title);
  return trimmed(comment.substr(0, comment.find_last_not_of(ORNAMENTS) + 1));
}

std::optional<std::string_view> describingComment(std::string_view line) {
  const std::optional<std::string_view> comment = commentIn(line);
  if (!comment || isOrnament(*comment) || !sectionTitle(*comment).empty()) return std::nullopt;
  return comment;
}

bool isForChecker(std::string_view comment) { return comment.starts_with("check:"); }

void LeadingComments::add(std::string_view line) {
  ++line_;
  if (const std::optional<std::string_view> comment = describingComment(line)) {
    if (!isForChecker(*comment)) open_.append(*comment).append("\n");
    return;
  }
  if (open_.empty()) return;
  open_.pop_back();
  const bool isFollowed = firstWord(line) < line.size() && !commentIn(line);
  if (isFollowed) closed_.emplace(line_, open_);
  open_.clear();
}

std::string_view LeadingComments::before(uint32_t number) const {
  const auto found = closed_.find(number);
  return found == closed_.end() ? std::string_view() : std::string_view(found->second);
}
