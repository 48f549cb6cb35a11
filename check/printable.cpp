#include "check/printable.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace {

constexpr char32_t REPLACEMENT = 0xFFFD;
constexpr char32_t CONTROL_PICTURES = 0x2400;
constexpr char32_t DELETE = 0x7F;
constexpr char32_t DELETE_PICTURE = 0x2421;

struct Span {
  char32_t from;
  char32_t to;
};

// Both ascending. Marks that are drawn over the character before them, and characters of two
// columns: Unicode Standard Annex 11, joined where no assigned character lies between.
constexpr Span MARKS[] = {{0x300, 0x36F},   {0x483, 0x489},   {0x591, 0x5BD},   {0x610, 0x61A},
                          {0x64B, 0x65F},   {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x20D0, 0x20FF},
                          {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};
constexpr Span WIDE[] = {
    {0x1100, 0x115F}, {0x2E80, 0x303E},   {0x3041, 0x33FF},   {0x3400, 0x4DBF},  {0x4E00, 0xA4CF},
    {0xA960, 0xA97F}, {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},  {0xFF00, 0xFF60},
    {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};
// What steers a terminal, or is read in another order than it is written.
constexpr Span STEERING[] = {{0x80, 0x9F},     {0xAD, 0xAD},     {0x61C, 0x61C},
                             {0x200B, 0x200F}, {0x2028, 0x202E}, {0x2060, 0x206F},
                             {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE0FFF}};

template <size_t N>
bool isIn(const Span (&spans)[N], char32_t point) {
  const auto* const next = std::ranges::upper_bound(spans, point, {}, &Span::from);
  return next != std::begin(spans) && point <= std::prev(next)->to;
}

// The forms of UTF-8, by the bits that lead the first byte; `least` refuses longer forms.
struct Form {
  uint8_t mask;
  uint8_t lead;
  size_t length;
  char32_t least;
};
constexpr Form FORMS[] = {
    {0x80, 0x00, 1, 0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

bool isCharacter(char32_t point) {
  const bool isSurrogate = point >= 0xD800 && point <= 0xDFFF;
  return point <= 0x10FFFF && !isSurrogate;
}

}  // namespace

Character firstCharacter(std::string_view text) {
  const auto first = static_cast<uint8_t>(text.front());
  for (const Form& form : FORMS) {
    if ((first & form.mask) != form.lead || text.size() < form.length) continue;
    char32_t point = first & static_cast<uint8_t>(~form.mask);
    for (const char c : text.substr(1, form.length - 1)) {
      const auto byte = static_cast<uint8_t>(c);
      if ((byte & 0xC0U) != 0x80U) return {1, REPLACEMENT};
      point = point << 6U | (byte & 0x3FU);
    }
    if (point >= form.least && isCharacter(point)) return {form.length, point};
  }
  return {1, REPLACEMENT};
}

size_t characterCount(std::string_view text) {
  size_t count = 0;
  for (; !text.empty(); ++count) text.remove_prefix(firstCharacter(text).length);
  return count;
}

size_t columnsOf(char32_t point) {
  if (isIn(MARKS, point)) return 0;
  return isIn(WIDE, point) ? 2 : 1;
}

char32_t shownAs(char32_t point) {
  if (point < U' ') return CONTROL_PICTURES + point;
  if (point == DELETE) return DELETE_PICTURE;
  return isIn(STEERING, point) ? REPLACEMENT : point;
}

void appendCharacter(char32_t point, std::string& text) {
  const auto form = std::find_if(std::rbegin(FORMS), std::rend(FORMS),
                                 [&](const Form& f) { return point >= f.least; });
  const size_t start = text.size();
  for (size_t i = 1; i < form->length; ++i) {
    text.insert(text.begin() + static_cast<ptrdiff_t>(start),
                static_cast<char>(0x80U | (point & 0x3FU)));
    point >>= 6U;
  }
  text.insert(text.begin() + static_cast<ptrdiff_t>(start), static_cast<char>(form->lead | point));
}

std::string printable(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    appendCharacter(shownAs(character.point), shown);
    text.remove_prefix(character.length);
  }
  return shown;
}
