#include "play/session_reader.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "base/nearest_word.h"

namespace {

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
constexpr std::string_view BLANKS = " \t";
// The words that are no operations.
constexpr std::string_view FOR = "for";
constexpr std::string_view INCLUDE = "include";

using Words = std::vector<SessionWord>;

std::string inQuotes(std::string_view text) { return std::string("\"").append(text).append("\""); }

// One line with words.
struct WordLine {
  SessionPlace place;     // of its first word
  std::string_view text;  // without newline
  std::string_view indentation;
  Words words;
  std::optional<WordError> error;
};

std::string directoryOf(const std::string& name) {
  return std::filesystem::path(name).parent_path().string();
}

std::string pathFrom(const std::string& file, const std::string& name) {
  return (std::filesystem::path(directoryOf(file)) / name).lexically_normal().string();
}

// What the parts of a session have in common while it is read.
struct Reading {
  const ReadSessionFile& readFile;
  Session& session;
  std::vector<SessionError>& errors;
  std::vector<std::string> openFiles = {};  // each is included by the one before
  std::vector<std::string> variables = {};  // of the loops that are open
  size_t depth = 0;
};

class FileReader {
 public:
  FileReader(Reading& reading, const std::string& name, std::string text) : reading_(reading) {
    reading_.session.files.push_back(
        std::make_unique<SessionFile>(SessionFile{name, std::move(text)}));
    file_ = reading_.session.files.back().get();
  }

  void read(std::vector<SessionStep>& steps) {
    splitLines();
    readBlock({}, steps);
  }

 private:
  void splitLines() {
    const std::string_view text = file_->text;
    size_t number = 0;
    for (size_t begin = 0; begin < text.size();) {
      const size_t newline = std::min(text.find('\n', begin), text.size());
      addLine(text.substr(begin, newline - begin), ++number, begin);
      begin = newline + 1;
    }
  }

  void addLine(std::string_view text, size_t number, size_t begin) {
    if (begin == 0 && text.starts_with(BYTE_ORDER_MARK)) {
      text.remove_prefix(BYTE_ORDER_MARK.size());
      begin = BYTE_ORDER_MARK.size();
    }
    if (text.ends_with('\r')) text.remove_suffix(1);
    WordLine line = {{file_, number, begin, 0}, text, {}, {}, {}};
    line.error = readSessionWords(text, line.words);
    if (line.words.empty() && !line.error) return;
    line.place.at = std::min(text.find_first_not_of(BLANKS), text.size());
    line.indentation = text.substr(0, line.place.at);
    lines_.push_back(std::move(line));
  }

  // Reads the lines from the next one on that have this indentation. What is indented more belongs
  // to a loop, and is passed over where the line before it is wrong, which may have been one.
  void readBlock(std::string_view indentation, std::vector<SessionStep>& steps) {
    bool isWrong = false;
    while (next_ < lines_.size()) {
      const WordLine& line = lines_[next_];
      if (line.indentation != indentation && isWithin(line.indentation)) return;
      ++next_;
      const size_t errors = reading_.errors.size();
      if (line.indentation == indentation) {
        readLine(line, steps);
      } else if (!isWrong) {
        failAt(line.place, "the indentation is that of no loop around");
      }
      isWrong = isWrong && line.indentation != indentation;
      isWrong = isWrong || reading_.errors.size() > errors;
    }
  }

  // Whether a loop that is open further out goes on with this indentation.
  [[nodiscard]] bool isWithin(std::string_view indentation) const {
    return std::ranges::find(outer_, indentation) != outer_.end();
  }

  void readLine(const WordLine& line, std::vector<SessionStep>& steps) {
    if (!line.error) return readStatement(line, line.words, steps);
    failAt({file_, line.place.line, line.place.begin, line.error->at}, line.error->text);
  }

  void readStatement(const WordLine& line, std::span<const SessionWord> words,
                     std::vector<SessionStep>& steps) {
    if (words.front().is(FOR)) {
      readLoop(line, words, steps);
    } else if (words.front().is(INCLUDE)) {
      readInclude(line, words, steps);
    } else {
      readOperation(line, words, steps);
    }
  }

  // for VARIABLE... in VALUE...: [STATEMENT]
  void readLoop(const WordLine& line, std::span<const SessionWord> words,
                std::vector<SessionStep>& steps) {
    auto loop = std::make_unique<Loop>();
    loop->place = placeOf(line, words.front());
    const auto in =
        std::ranges::find_if(words, [](const SessionWord& word) { return word.is("in"); });
    if (in - words.begin() < 2 || in == words.end() || in + 1 == words.end()) {
      return fail(line, words.back(), "a loop is written \"for NAME in VALUES: ...\"");
    }
    for (auto word = words.begin() + 1; word != in; ++word) {
      if (!takeVariable(line, *word, *loop)) return;
    }
    words = {in + 1, words.end()};
    const auto last = std::ranges::find_if(words, &SessionWord::endsWithColon);
    if (last == words.end()) return fail(line, words.back(), "the values of a loop end with \":\"");
    const size_t count = static_cast<size_t>(last - words.begin()) + 1;
    loop->list.assign(words.begin(), words.begin() + static_cast<ptrdiff_t>(count));
    loop->list.back().dropColon();
    if (loop->list.back().pieces.empty()) loop->list.pop_back();
    if (loop->list.empty()) return fail(line, *last, "a loop has at least one value");
    for (const SessionWord& word : loop->list) checkListed(line, word);
    if (!enter(line, words.front())) return;
    std::vector<std::string>& open = reading_.variables;
    open.insert(open.end(), loop->variables.begin(), loop->variables.end());
    readBody(line, words.subspan(count), *loop);
    open.resize(open.size() - loop->variables.size());
    --reading_.depth;
    steps.push_back({{}, std::move(loop)});
  }

  bool takeVariable(const WordLine& line, const SessionWord& word, Loop& loop) {
    const std::string name = word.text();
    const auto isTaken = [&](const std::vector<std::string>& names) {
      return std::ranges::find(names, name) != names.end();
    };
    if (!isVariableName(word)) {
      fail(line, word, "the name of a loop variable has letters, digits and \"_\" only");
      return false;
    }
    if (isTaken(reading_.variables) || isTaken(loop.variables)) {
      fail(line, word, "there is a loop variable " + inQuotes(name) + " already");
      return false;
    }
    loop.variables.push_back(name);
    return true;
  }

  void readBody(const WordLine& line, std::span<const SessionWord> rest, Loop& loop) {
    if (!rest.empty()) return readStatement(line, rest, loop.body);
    const bool hasBody = next_ < lines_.size() &&
                         lines_[next_].indentation.size() > line.indentation.size() &&
                         lines_[next_].indentation.starts_with(line.indentation);
    if (!hasBody) {
      return failAt(loop.place,
                    "the loop has no operation: one follows its \":\", or indented lines");
    }
    outer_.push_back(line.indentation);
    readBlock(lines_[next_].indentation, loop.body);
    outer_.pop_back();
  }

  void readInclude(const WordLine& line, std::span<const SessionWord> words,
                   std::vector<SessionStep>& steps) {
    if (words.size() != 2) return fail(line, words.back(), "one file is included: include FILE");
    if (words[1].hasVariable()) return fail(line, words[1], "the name of a file has no variable");
    const std::string name = pathFrom(file_->name, words[1].text());
    const auto open = std::ranges::find(reading_.openFiles, name);
    if (open != reading_.openFiles.end()) {
      std::string ring = "the files include each other: ";
      for (auto file = open; file != reading_.openFiles.end(); ++file) ring += *file + " -> ";
      return fail(line, words[1], ring + name);
    }
    if (reading_.session.files.size() == MAX_SESSION_FILES) {
      return fail(line, words[1], "the session has more than 1000 files");
    }
    std::string text;
    const int error = reading_.readFile(name, text);
    if (error != 0) {
      return fail(line, words[1],
                  std::string("cannot read ").append(name).append(": ").append(strerror(error)));
    }
    if (!enter(line, words[1])) return;
    reading_.openFiles.push_back(name);
    FileReader(reading_, name, std::move(text)).read(steps);
    reading_.openFiles.pop_back();
    --reading_.depth;
  }

  void readOperation(const WordLine& line, std::span<const SessionWord> words,
                     std::vector<SessionStep>& steps) {
    Operation operation;
    operation.place = placeOf(line, words.front());
    if (words.size() > 1 && words.front().endsWithColon()) {
      SessionWord name = words.front();
      name.dropColon();
      operation.transaction = name.text();
      if (!isVariableName(name)) {
        return fail(line, name, "the name of a transaction has letters, digits and \"_\" only");
      }
      words = words.subspan(1);
    }
    operation.word = operationOf(line, words);
    if (operation.word == nullptr) return;
    words = words.subspan(operation.word->word.find(' ') == std::string_view::npos ? 1 : 2);
    for (const SessionWord& word : words) {
      const bool hasArrow = !word.isQuoted() && word.text().find("->") != std::string::npos;
      if (hasArrow && !word.is("->")) {
        return fail(line, word, "write a blank on both sides of \"->\", or the word in quotes");
      }
    }
    const auto arrow =
        std::ranges::find_if(words, [](const SessionWord& word) { return word.is("->"); });
    operation.arguments.assign(words.begin(), arrow);
    operation.end = (arrow == words.begin() ? *(words.data() - 1) : *(arrow - 1)).end;
    if (!takeTransaction(line, operation) || !checkArguments(line, operation)) return;
    if (arrow != words.end() && !takeExpectation(line, {arrow, words.end()}, operation)) return;
    for (const SessionWord& word : operation.arguments) checkVariables(line, word);
    for (const SessionWord& word : operation.expected.words) checkVariables(line, word);
    for (const SessionWord& word : operation.expected.reason) checkVariables(line, word);
    steps.push_back({std::move(operation), nullptr});
  }

  const OperationWord* operationOf(const WordLine& line, std::span<const SessionWord> words) {
    const SessionWord& first = words.front();
    std::string word = first.text();
    if (word == "index" && words.size() > 1) word += " " + words[1].text();
    const OperationWord* const found = first.isQuoted() ? nullptr : findOperationWord(word);
    if (found != nullptr) return found;
    const std::string mistaken = first.text();  // a NearestWord views it
    NearestWord nearest(mistaken);
    for (const OperationWord& candidate : operationWords()) nearest.offer(candidate.word);
    nearest.offer(FOR);
    nearest.offer(INCLUDE);
    const std::string proposal =
        nearest.found() ? "; did you mean " + inQuotes(*nearest.found()) + "?"
                        : "; a line begins with a word such as \"set\", \"commit\" or \"get\"";
    fail(line, first, "there is no operation " + inQuotes(mistaken) + proposal);
    return nullptr;
  }

  // The name of the transaction that "start" and "end" have behind them. Returns whether there is
  // such a transaction.
  bool takeTransaction(const WordLine& line, Operation& operation) {
    if (operation.word->arguments == ARGUMENTS_TRANSACTION && operation.arguments.size() == 1) {
      const SessionWord& word = operation.arguments.front();
      if (!operation.transaction.empty() && word.text() != operation.transaction) {
        fail(line, word, "two transactions are named");
        return false;
      }
      if (!isVariableName(word)) {
        fail(line, word, "the name of a transaction has letters, digits and \"_\" only");
        return false;
      }
      operation.transaction = word.text();
      operation.arguments.clear();
    }
    const std::string& name = operation.transaction;
    if (operation.word->kind == OPERATION_START) reading_.session.transactions.insert(name);
    if (name.empty() || reading_.session.transactions.contains(name)) return true;
    failAt(operation.place,
           "there is no transaction " + inQuotes(name) + "; \"start " + name + "\" opens it");
    return false;
  }

  bool checkArguments(const WordLine& line, const Operation& operation) {
    const size_t count = operation.arguments.size();
    if (isFitting(operation.word->arguments, count)) return checkSettings(line, operation);
    const size_t most = mostOf(operation.word->arguments);
    const size_t at = count > most ? operation.arguments[most].begin : operation.end;
    failAt({file_, line.place.line, line.place.begin, at},
           "the form is \"" + std::string(operation.word->usage) + "\"");
    return false;
  }

  bool checkSettings(const WordLine& line, const Operation& operation) {
    if (operation.word->arguments != ARGUMENTS_SETTINGS) return true;
    for (const SessionWord& word : operation.arguments) {
      if (word.text().find('=') != std::string::npos) continue;
      fail(line, word, "the form is \"" + std::string(operation.word->usage) + "\"");
      return false;
    }
    return true;
  }

  static bool isFitting(OperationArguments arguments, size_t count) {
    switch (arguments) {
      case ARGUMENTS_NONE:
      case ARGUMENTS_TRANSACTION:
        return count == 0;
      case ARGUMENTS_NAME:
        return count == 1;
      case ARGUMENTS_NAMES:
        return count > 0;
      case ARGUMENTS_PAIR:
        return count == 2;
      case ARGUMENTS_QUESTION:
        return count == 1 || count == 2;
      case ARGUMENTS_PAIRS:
        return count > 0 && count % 2 == 0;
      case ARGUMENTS_SETTINGS:
        return true;
    }
    return false;
  }

  // How many arguments there may be; what is behind them is one too many.
  static size_t mostOf(OperationArguments arguments) {
    switch (arguments) {
      case ARGUMENTS_NONE:
        return 0;
      case ARGUMENTS_TRANSACTION:
      case ARGUMENTS_NAME:
        return 1;
      case ARGUMENTS_PAIR:
      case ARGUMENTS_QUESTION:
        return 2;
      default:
        return SIZE_MAX;
    }
  }

  bool takeExpectation(const WordLine& line, std::span<const SessionWord> words,
                       Operation& operation) {
    if (operation.word->kind == OPERATION_WHY) {
      fail(line, words.front(), "\"why\" explains, and nothing is compared behind it");
      return false;
    }
    operation.hasExpectation = true;
    operation.arrow = words.front().end;
    words = words.subspan(1);
    operation.expectedBegin = words.empty() ? operation.arrow : words.front().begin;
    operation.expectedEnd = words.empty() ? operation.arrow : words.back().end;
    const auto second =
        std::ranges::find_if(words, [](const SessionWord& word) { return word.is("->"); });
    if (second != words.end()) {
      fail(line, *second, "a second \"->\"; a value \"->\" is written in quotes");
      return false;
    }
    const auto refused =
        std::ranges::find_if(words, [](const SessionWord& word) { return word.is("refused:"); });
    operation.expected.words.assign(words.begin(), refused);
    operation.expected.isRefusal = refused != words.end();
    if (refused != words.end()) operation.expected.reason.assign(refused + 1, words.end());
    return true;
  }

  // In the list of a loop, a word may begin with what is no variable: $standards, or the name of an
  // index or parameter.
  void checkListed(const WordLine& line, const SessionWord& word) {
    checkVariables(line, word, std::span(word.pieces).subspan(word.pieces.empty() ? 0 : 1));
  }

  void checkVariables(const WordLine& line, const SessionWord& word) {
    checkVariables(line, word, word.pieces);
  }

  void checkVariables(const WordLine& line, const SessionWord& word,
                      std::span<const WordPiece> pieces) {
    for (const WordPiece& piece : pieces) {
      if (!piece.isVariable) continue;
      if (std::ranges::find(reading_.variables, piece.text) != reading_.variables.end()) continue;
      return fail(line, word,
                  "no loop around has the variable " + inQuotes(piece.text) +
                      "; write \\$ for the sign \"$\"");
    }
  }

  bool enter(const WordLine& line, const SessionWord& word) {
    if (reading_.depth < MAX_SESSION_DEPTH) {
      ++reading_.depth;
      return true;
    }
    fail(line, word, "more than 32 loops and files are within each other");
    return false;
  }

  static bool isVariableName(const SessionWord& word) {
    const std::string name = word.text();
    return !word.isQuoted() && !word.hasVariable() && !name.empty() &&
           name.find_first_not_of(
               "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_") ==
               std::string::npos;
  }

  SessionPlace placeOf(const WordLine& line, const SessionWord& word) const {
    return {file_, line.place.line, line.place.begin, word.begin};
  }

  void fail(const WordLine& line, const SessionWord& word, std::string text) {
    failAt(placeOf(line, word), std::move(text));
  }

  void failAt(const SessionPlace& place, std::string text) {
    std::vector<SessionError>& errors = reading_.errors;
    const bool isTold = !errors.empty() && errors.back().line == place.line &&
                        errors.back().file == place.file->name;
    if (!isTold) errors.push_back({place.file->name, place.line, place.at + 1, std::move(text)});
  }

  Reading& reading_;
  SessionFile* file_;
  std::vector<WordLine> lines_;  // those with words
  size_t next_ = 0;
  std::vector<std::string_view> outer_;  // the indentations of the loops that are open here
};

}  // namespace

std::string shownError(const SessionError& error) {
  return error.file + ":" + std::to_string(error.line) + ":" + std::to_string(error.column) + ": " +
         error.text;
}

void readSession(const std::string& name, std::string text, const ReadSessionFile& readFile,
                 Session& session, std::vector<SessionError>& errors) {
  Reading reading = {readFile, session, errors};
  reading.openFiles.push_back(std::filesystem::path(name).lexically_normal().string());
  FileReader(reading, name, std::move(text)).read(session.steps);
}
