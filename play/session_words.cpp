#include "play/session_words.h"

#include <glib.h>

#include <algorithm>
#include <array>

namespace {

constexpr std::string_view BLANKS = " \t";
// What may follow a backslash, and what the two mean.
constexpr std::array<std::pair<char, char>, 7> ESCAPES = {
    {{'\\', '\\'}, {'"', '"'}, {'#', '#'}, {'$', '$'}, {'n', '\n'}, {'t', '\t'}, {'r', '\r'}}};

bool isBlank(char c) { return BLANKS.find(c) != std::string_view::npos; }

bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == '\x7f'; }

bool isNameLetter(char c) {
  return ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z') || ('0' <= c && c <= '9') || c == '_';
}

int hexDigit(char c) { return g_ascii_xdigit_value(c); }

bool isUtf8(std::string_view text) {
  return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
}

// Reads the words of one line.
class WordReader {
 public:
  explicit WordReader(std::string_view line) : line_(line) {}

  std::optional<WordError> read(std::vector<SessionWord>& words) {
    while (!error_) {
      while (at_ < line_.size() && isBlank(line_[at_])) ++at_;
      if (at_ == line_.size() || line_[at_] == '#') break;
      readWord();
      if (!error_) words.push_back(std::move(word_));
    }
    return error_;
  }

 private:
  void readWord() {
    word_ = SessionWord();
    word_.begin = at_;
    isInQuotes_ = false;
    while (!error_ && at_ < line_.size() && (isInQuotes_ || !isBlank(line_[at_]))) readSign();
    if (!error_ && isInQuotes_) fail(quote_, "a quote is not closed");
    word_.end = at_;
    for (const WordPiece& piece : word_.pieces) {
      if (!error_ && !isUtf8(piece.text)) fail(word_.begin, "a word has bytes that are no UTF-8");
    }
  }

  void readSign() {
    const char c = line_[at_];
    if (c == '"') {
      quote_ = at_++;
      isInQuotes_ = !isInQuotes_;
      if (isInQuotes_) word_.pieces.push_back({{}, false, true});
    } else if (c == '\\') {
      readEscape();
    } else if (c == '$') {
      readVariable();
    } else if (isControl(c) && c != '\t') {
      fail(at_, "a control character; write \\x and two hexadecimal digits");
    } else {
      add(c);
      ++at_;
    }
  }

  void readEscape() {
    const char next = at_ + 1 < line_.size() ? line_[at_ + 1] : '\0';
    const auto* const escape =
        std::ranges::find(ESCAPES, next, [](const auto& pair) { return pair.first; });
    if (escape != ESCAPES.end()) {
      add(escape->second);
      at_ += 2;
    } else if (next == 'x') {
      readByte();
    } else {
      fail(at_, R"(after a backslash comes one of \ " # $ n t r, or x and two hexadecimal digits)");
    }
  }

  void readByte() {
    const int high = at_ + 2 < line_.size() ? hexDigit(line_[at_ + 2]) : -1;
    const int low = at_ + 3 < line_.size() ? hexDigit(line_[at_ + 3]) : -1;
    if (high < 0 || low < 0) {
      fail(at_, "after \\x come two hexadecimal digits");
    } else if (high == 0 && low == 0) {
      fail(at_, "no text has a NUL byte");
    } else {
      add(static_cast<char>(high * 16 + low));
      at_ += 4;
    }
  }

  void readVariable() {
    const size_t sign = at_++;
    const bool hasBraces = at_ < line_.size() && line_[at_] == '{';
    if (hasBraces) ++at_;
    const size_t begin = at_;
    while (at_ < line_.size() && isNameLetter(line_[at_])) ++at_;
    std::string name(line_.substr(begin, at_ - begin));
    if (name.empty() || (hasBraces && (at_ == line_.size() || line_[at_] != '}'))) {
      fail(sign, "a \"$\" begins the name of a loop variable; write \\$ for the sign itself");
      return;
    }
    if (hasBraces) ++at_;
    word_.pieces.push_back({std::move(name), true, isInQuotes_});
  }

  void add(char c) {
    std::vector<WordPiece>& pieces = word_.pieces;
    if (pieces.empty() || pieces.back().isVariable || pieces.back().isQuoted != isInQuotes_) {
      pieces.push_back({{}, false, isInQuotes_});
    }
    pieces.back().text += c;
  }

  void fail(size_t at, std::string text) { error_ = {at, std::move(text)}; }

  std::string_view line_;
  size_t at_ = 0;
  size_t quote_ = 0;  // the last one
  bool isInQuotes_ = false;
  SessionWord word_;
  std::optional<WordError> error_;
};

bool isPlain(std::string_view text) {
  return !text.empty() && text.front() != '#' && text.back() != ':' &&
         text.find("->") == std::string_view::npos && std::ranges::none_of(text, [](char c) {
           return isBlank(c) || isControl(c) || c == '"' || c == '\\' || c == '$';
         });
}

std::string escapedByte(char c) {
  constexpr std::string_view DIGITS = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(c);
  return std::string("\\x") + DIGITS[byte / 16] + DIGITS[byte % 16];
}

}  // namespace

bool SessionWord::isQuoted() const { return std::ranges::any_of(pieces, &WordPiece::isQuoted); }

bool SessionWord::hasVariable() const {
  return std::ranges::any_of(pieces, &WordPiece::isVariable);
}

std::string SessionWord::text() const {
  std::string text;
  for (const WordPiece& piece : pieces) {
    if (!piece.isVariable) text += piece.text;
  }
  return text;
}

bool SessionWord::is(std::string_view sign) const {
  return !isQuoted() && !hasVariable() && text() == sign;
}

bool SessionWord::endsWithColon() const {
  if (pieces.empty()) return false;
  const WordPiece& last = pieces.back();
  return !last.isVariable && !last.isQuoted && last.text.ends_with(':');
}

void SessionWord::dropColon() {
  pieces.back().text.pop_back();
  if (pieces.back().text.empty()) pieces.pop_back();
  --end;
}

std::optional<WordError> readSessionWords(std::string_view line, std::vector<SessionWord>& words) {
  return WordReader(line).read(words);
}

std::string spelledWord(std::string_view text) {
  return isPlain(text) ? std::string(text) : quotedWord(text);
}

std::string quotedWord(std::string_view text) {
  std::string word = "\"";
  for (const char c : text) {
    const auto* const escape =
        std::ranges::find(ESCAPES, c, [](const auto& pair) { return pair.second; });
    if (escape != ESCAPES.end() && c != '#') {
      word += '\\';
      word += escape->first;
    } else if (isControl(c)) {
      word += escapedByte(c);
    } else {
      word += c;
    }
  }
  return word + '"';
}

std::string spelledChange(std::string_view change) {
  const std::string_view name = change.substr(0, change.find('='));
  if (name.size() == change.size()) return spelledWord(change);
  const std::string_view value = change.substr(name.size() + 1);
  return spelledWord(name) + "=" + (value.empty() ? std::string() : spelledWord(value));
}
