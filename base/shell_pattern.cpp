#include "base/shell_pattern.h"

#include <cstddef>

namespace {

size_t byteOf(char c) { return static_cast<unsigned char>(c); }

// Reads the set behind "[", and goes past its "]". Returns false where it has no end.
bool readSet(std::string_view& text, std::bitset<256>& set) {
  const bool isInverted = text.starts_with('!') || text.starts_with('^');
  if (isInverted) text.remove_prefix(1);
  const auto next = [&text] {
    if (text.size() > 1 && text.front() == '\\') text.remove_prefix(1);
    const char c = text.front();
    text.remove_prefix(1);
    return byteOf(c);
  };
  for (bool isFirst = true; !text.empty() && (isFirst || text.front() != ']'); isFirst = false) {
    const size_t low = next();
    size_t high = low;
    if (text.size() > 1 && text.front() == '-' && text[1] != ']') {
      text.remove_prefix(1);
      high = next();
    }
    for (size_t c = low; c <= high; ++c) set.set(c);
  }
  if (text.empty()) return false;
  text.remove_prefix(1);
  if (isInverted) set.flip();
  return true;
}

}  // namespace

std::optional<ShellPattern> ShellPattern::parse(std::string_view text, std::string_view& error) {
  ShellPattern pattern;
  while (!text.empty()) {
    const char c = text.front();
    text.remove_prefix(1);
    Element element{ONE_OF, {}};
    if (c == '*') {
      element.kind = ANY;
    } else if (c == '?') {
      element.kind = ANY_ONE;
    } else if (c == '[') {
      if (!readSet(text, element.set)) {
        error = "a \"[\" has no \"]\"";
        return std::nullopt;
      }
    } else if (c == '\\') {
      if (text.empty()) {
        error = "a \"\\\" is at its end";
        return std::nullopt;
      }
      element.set.set(byteOf(text.front()));
      text.remove_prefix(1);
    } else {
      element.set.set(byteOf(c));
    }
    const bool isSameAgain =
        element.kind == ANY && !pattern.elements_.empty() && pattern.elements_.back().kind == ANY;
    if (!isSameAgain) pattern.elements_.push_back(element);
  }
  return pattern;
}

size_t ShellPattern::taken(const Element& element, std::string_view name) {
  if (name.empty()) return 0;
  if (element.kind == ONE_OF) return element.set.test(byteOf(name.front())) ? 1 : 0;
  size_t length = 1;
  while (length < name.size() && (byteOf(name[length]) & 0xC0U) == 0x80U) ++length;
  return length;
}

// Of several "*" only the last one met ever has to take more: what is before it fits already.
bool ShellPattern::matches(std::string_view name) const {
  size_t element = 0;
  size_t at = 0;
  std::optional<size_t> star;  // the last "*" met
  size_t starEnd = 0;          // where what it takes ends
  while (at < name.size() || element < elements_.size()) {
    if (element < elements_.size()) {
      if (elements_[element].kind == ANY) {
        star = element++;
        starEnd = at;
        continue;
      }
      if (const size_t length = taken(elements_[element], name.substr(at)); length > 0) {
        at += length;
        ++element;
        continue;
      }
    }
    if (!star || starEnd >= name.size()) return false;
    at = ++starEnd;
    element = *star + 1;
  }
  return true;
}
