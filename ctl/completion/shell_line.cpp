#include "ctl/completion/shell_line.h"

#include <glib.h>

namespace {

constexpr std::string_view BLANKS = " \t\n";
constexpr std::string_view PLAIN = "_-+=.,:/@%";
constexpr std::string_view ESCAPED_IN_DOUBLE = "\"\\$`";

bool isAmong(char c, std::string_view all) { return all.find(c) != std::string_view::npos; }

// Reads a line, a character at a time.
class Splitter {
 public:
  ShellLine split(std::string_view line) {
    for (size_t i = 0; i < line.size(); ++i) take(line[i], i);
    if (!isInWord_) begin(line.size());
    return std::move(result_);
  }

 private:
  void begin(size_t at) {
    isInWord_ = true;
    result_.begin = at;
    result_.words.emplace_back();
  }
  void take(char c, size_t at) {
    if (!isInWord_ && !isAmong(c, BLANKS)) begin(at);
    if (isEscaped_) return takeEscaped(c);
    if (c == '\\' && result_.quote != '\'') {
      isEscaped_ = true;
    } else if (result_.quote != '\0') {
      takeQuoted(c);
    } else if (isAmong(c, BLANKS)) {
      isInWord_ = false;
    } else if (c == '\'' || c == '"') {
      result_.quote = c;
    } else {
      result_.words.back() += c;
    }
  }
  void takeEscaped(char c) {
    isEscaped_ = false;
    const bool isKept = result_.quote == '"' && !isAmong(c, ESCAPED_IN_DOUBLE);
    if (isKept) result_.words.back() += '\\';
    result_.words.back() += c;
  }
  void takeQuoted(char c) {
    if (c == result_.quote) {
      result_.quote = '\0';
    } else {
      result_.words.back() += c;
    }
  }

  ShellLine result_;
  bool isInWord_ = false;
  bool isEscaped_ = false;
};

bool isPlain(char c) {
  return g_ascii_isalnum(c) || isAmong(c, PLAIN) || static_cast<unsigned char>(c) >= 0x80;
}

std::string quotedIn(char quote, std::string_view text) {
  std::string quoted;
  for (const char c : text) {
    if (quote == '\'' && c == '\'') {
      quoted += "'\\'";
    } else if (quote == '"' ? isAmong(c, ESCAPED_IN_DOUBLE) : quote == '\0' && !isPlain(c)) {
      quoted += '\\';
    }
    quoted += c;
  }
  return quoted;
}

}  // namespace

ShellLine shellLine(std::string_view line) { return Splitter().split(line); }

std::string shellReply(const std::string& word, std::string_view typed, std::string_view replaced) {
  if (!typed.ends_with(replaced)) return {};
  const ShellLine kept = shellLine(typed.substr(0, typed.size() - replaced.size()));
  const std::string& start = kept.words.back();
  if (!word.starts_with(start)) return {};
  return quotedIn(kept.quote, std::string_view(word).substr(start.size()));
}
