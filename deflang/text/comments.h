// Comments: what the comment lines of a definition text say of what follows them.
//
//   # ---- Picture ----          the title of a section
//
//   # The gain of the picture.   describes what follows
//   # check: allow octal         is for the checker
//   gain rw { ... }
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

/// What a comment line says, without its sign and the blanks around; nullopt where `line` is none.
std::optional<std::string_view> commentIn(std::string_view line);

/// The title of a section that a comment begins: one of the form `---- TITLE ----`, with two or
/// more of one of - = * # ~ at least before it. Empty where it begins none.
std::string_view sectionTitle(std::string_view comment);

/// What a line says of the definition that follows; nullopt where it says nothing of it, and what
/// is above it does not either: where it is no comment, is the title of a section, or has signs
/// only.
std::optional<std::string_view> describingComment(std::string_view line);

/// Whether a describing comment is for the checker: no part of the description.
bool isForChecker(std::string_view comment);

/// Gathers the comment lines directly before other lines while a text is read.
class LeadingComments {
 public:
  /// To be called for each line or piece of a line in turn, as TextCursor counts them.
  void add(std::string_view line);
  /// The comment lines directly before line `number` (from 1), joined by newlines; empty where
  /// there are none.
  [[nodiscard]] std::string_view before(uint32_t number) const;

 private:
  uint32_t line_ = 0;
  std::string open_;  // the comment lines up to here, each with its newline
  std::unordered_map<uint32_t, std::string> closed_;
};
