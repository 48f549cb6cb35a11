#include "play/session_line.h"

#include <algorithm>

std::string_view lineOf(const Operation& operation) {
  const std::string_view text = operation.place.file->text;
  const size_t begin = operation.place.begin;
  const size_t end = std::min(text.find('\n', begin), text.size());
  const std::string_view line = text.substr(begin, end - begin);
  return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

std::string_view operationText(const Operation& operation) {
  return lineOf(operation).substr(operation.place.at, operation.end - operation.place.at);
}

std::string lineWith(const Operation& operation, std::string_view outcome, size_t column) {
  std::string line(lineOf(operation));
  if (!operation.hasExpectation) {
    const size_t blanks = std::max(column, operation.end + 1) - operation.end;
    return line.insert(operation.end, std::string(blanks, ' ').append("-> ").append(outcome));
  }
  const bool isEmpty = operation.expectedBegin == operation.expectedEnd;
  const size_t begin = isEmpty || outcome.empty() ? operation.arrow : operation.expectedBegin;
  // Blanks stay before a comment, and are not left at the end of the line.
  const bool isLast = line.find_first_not_of(" \t", operation.expectedEnd) == std::string::npos;
  line.replace(
      begin, (isLast ? line.size() : operation.expectedEnd) - begin,
      std::string(begin == operation.arrow && !outcome.empty() ? " " : "").append(outcome));
  return line;
}
