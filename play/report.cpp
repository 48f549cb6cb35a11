#include "play/report.h"

#include <glib.h>

#include <string_view>
#include <utility>
#include <vector>

#include "play/session_line.h"

namespace {

bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == '\x7f'; }

// Comments of a session may hold anything; a terminal shall not act on it, and what reads a report
// wants valid UTF-8.
std::string printable(std::string_view text) {
  gchar* const valid = g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()));
  std::string result = valid;
  g_free(valid);
  for (char& c : result) c = isControl(c) && c != '\t' ? '?' : c;
  return result;
}

std::string placeText(const PlayedOperation& played) {
  const SessionPlace& place = played.operation.place;
  return printable(place.file->name) + ":" + std::to_string(place.line);
}

std::string titleText(const PlayedOperation& played) {
  std::string title = placeText(played) + ": " + printable(operationText(played.operation));
  if (!played.variables.empty()) title += " (" + played.variables + ")";
  return title;
}

// What was expected, as it is in the session.
std::string_view expectedText(const Operation& operation) {
  return lineOf(operation).substr(operation.expectedBegin,
                                  operation.expectedEnd - operation.expectedBegin);
}

void print(std::FILE* out, std::string_view text) { std::fwrite(text.data(), 1, text.size(), out); }

class TextReport final : public PlayReport {
 public:
  TextReport(bool isQuiet, std::FILE* out) : isQuiet_(isQuiet), out_(out) {}

  void begin(const std::string& /*name*/) override {}
  void played(const PlayedOperation& played) override {
    note(played);
    const Operation& operation = played.operation;
    const std::string outcome = played.outcome.shown();
    if (!played.isAsExpected) {
      std::string heading = placeText(played) + ": not as expected";
      if (!played.variables.empty()) heading += " with " + played.variables;
      print(out_, heading + "\n-" + printable(lineOf(operation)) + "\n+" +
                      printable(lineWith(operation, outcome)) + "\n");
      printNotes(played.outcome);
    } else if (!operation.hasExpectation && !isQuiet_ &&
               (!outcome.empty() || operation.word->kind == OPERATION_WHY)) {
      print(out_, titleText(played) + (outcome.empty() ? "" : " -> " + outcome) + "\n");
      printNotes(played.outcome);
    }
  }
  void failed(const std::string& error) override {
    // They are in order also where both streams are one.
    std::fflush(out_);
    print(stderr, printable(error) + "\n");
  }
  void finish() override {}

 private:
  void printNotes(const Outcome& outcome) {
    for (const std::string& line : outcome.notes) print(out_, "  " + printable(line) + "\n");
  }

  const bool isQuiet_;
  std::FILE* const out_;
};

// What TAP and JUnit know of a test.
struct TestCase {
  std::string title;
  bool isMet = true;
  bool isError = false;       // there was no test to make
  std::string expected = {};  // where it is not met
  std::string got = {};       // or why there was no test
};

TestCase testCaseOf(const PlayedOperation& played) {
  TestCase test = {titleText(played), played.isAsExpected};
  if (test.isMet) return test;
  test.expected = printable(expectedText(played.operation));
  test.got = played.outcome.shown();
  return test;
}

class TapReport final : public PlayReport {
 public:
  TapReport(bool isQuiet, std::FILE* out) : isQuiet_(isQuiet), out_(out) {
    print(out_, "TAP version 14\n");
  }

  void begin(const std::string& name) override { name_ = name; }
  void played(const PlayedOperation& played) override {
    note(played);
    if (played.operation.hasExpectation) {
      write(testCaseOf(played));
    } else if (const std::string outcome = played.outcome.shown(); !outcome.empty() && !isQuiet_) {
      print(out_, "# " + titleText(played) + " -> " + outcome + "\n");
    }
  }
  void failed(const std::string& error) override {
    write({printable(name_), false, true, {}, printable(error)});
  }
  void finish() override { print(out_, "1.." + std::to_string(count_) + "\n"); }

 private:
  void write(const TestCase& test) {
    const std::string number = std::to_string(++count_);
    print(out_, (test.isMet ? "ok " : "not ok ") + number + " - " + escaped(test.title) + "\n");
    if (test.isMet) return;
    print(out_, "  ---\n");
    if (test.isError) {
      print(out_, "  message: " + scalar(test.got) + "\n");
    } else {
      print(out_, "  expected: " + scalar(test.expected) + "\n  got: " + scalar(test.got) + "\n");
    }
    print(out_, "  ...\n");
  }

  // A "#" in a description would begin a directive.
  static std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
      if (c == '\\' || c == '#') result += '\\';
      result += c;
    }
    return result;
  }

  // In YAML, between quotes. There are no control characters but tabs.
  static std::string scalar(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
      if (c == '\\' || c == '"') result += '\\';
      result += c == '\t' ? std::string("\\t") : std::string(1, c);
    }
    return result + '"';
  }

  const bool isQuiet_;
  std::FILE* const out_;
  std::string name_;
  size_t count_ = 0;
};

class JunitReport final : public PlayReport {
 public:
  explicit JunitReport(std::FILE* out) : out_(out) {}

  void begin(const std::string& name) override { suites_.push_back({name, {}}); }
  void played(const PlayedOperation& played) override {
    note(played);
    if (played.operation.hasExpectation) suites_.back().tests.push_back(testCaseOf(played));
  }
  void failed(const std::string& error) override {
    Suite& suite = suites_.back();
    suite.tests.push_back({printable(suite.name), false, true, {}, printable(error)});
  }
  void finish() override {
    print(out_, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n");
    for (const Suite& suite : suites_) write(suite);
    print(out_, "</testsuites>\n");
  }

 private:
  struct Suite {
    std::string name;
    std::vector<TestCase> tests;
  };

  void write(const Suite& suite) {
    size_t failures = 0;
    size_t errors = 0;
    for (const TestCase& test : suite.tests) {
      if (!test.isMet) ++(test.isError ? errors : failures);
    }
    const std::string name = escaped(printable(suite.name));
    print(out_, "  <testsuite name=\"" + name + "\" tests=\"" + std::to_string(suite.tests.size()) +
                    "\" failures=\"" + std::to_string(failures) + "\" errors=\"" +
                    std::to_string(errors) + "\">\n");
    for (const TestCase& test : suite.tests) write(name, test);
    print(out_, "  </testsuite>\n");
  }

  void write(const std::string& suite, const TestCase& test) {
    print(out_, "    <testcase classname=\"" + suite + "\" name=\"" + escaped(test.title) + "\"");
    if (test.isMet) {
      print(out_, "/>\n");
    } else if (test.isError) {
      print(out_, ">\n      <error message=\"" + escaped(test.got) + "\"/>\n    </testcase>\n");
    } else {
      print(out_,
            ">\n      <failure message=\"not as expected\">expected: " + escaped(test.expected) +
                "\ngot: " + escaped(test.got) + "</failure>\n    </testcase>\n");
    }
  }

  static std::string escaped(std::string_view text) {
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
      const std::string_view rest = text.substr(i);
      // The two characters beside control characters that no XML document may have.
      if (rest.starts_with("\xEF\xBF\xBE") || rest.starts_with("\xEF\xBF\xBF")) {
        result += "\xEF\xBF\xBD";
        i += 2;
        continue;
      }
      const char c = text[i];
      switch (c) {
        case '&':
          result += "&amp;";
          break;
        case '<':
          result += "&lt;";
          break;
        case '>':
          result += "&gt;";
          break;
        case '"':
          result += "&quot;";
          break;
        default:
          result += c;
      }
    }
    return result;
  }

  std::FILE* const out_;
  std::vector<Suite> suites_;
};

}  // namespace

std::unique_ptr<PlayReport> newPlayReport(PlayFormat format, bool isQuiet, std::FILE* out) {
  switch (format) {
    case PLAY_TAP:
      return std::make_unique<TapReport>(isQuiet, out);
    case PLAY_JUNIT:
      return std::make_unique<JunitReport>(out);
    default:
      return std::make_unique<TextReport>(isQuiet, out);
  }
}
