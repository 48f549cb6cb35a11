// That the checker finds an error in exactly the texts that the daemon refuses: in the texts of the
// tests and the examples, and in what becomes of them by small mistakes.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "check/text/finding_codes.h"
#include "check/text/read_text.h"
#include "check/text/variant.h"
#include "deflang/text/definition_grammar.h"
#include "deflang/text/text_pieces.h"
#include "sw/parm/build/builder.h"
#include "tests/support/end_observer.h"

namespace {

constexpr uint32_t MUTATED_TEXTS = 20000;

std::vector<std::string> textsOfTheProject() {
  std::vector<std::string> texts;
  for (const char* folder : {DEFINITIONS_DIRECTORY, EXAMPLES_DIRECTORY}) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      const std::filesystem::path kind = entry.path().extension();
      if (kind != ".def" && kind != ".ostrel") continue;
      std::ifstream file(entry.path(), std::ios::binary);
      texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
  }
  std::sort(texts.begin(), texts.end());
  return texts;
}

// How the daemon reads a text, which is in `source` without its byte order mark.
ParseResult readAsTheDaemon(std::string_view text, ParameterRecords& records, bool& isUnfinished) {
  const auto nextPiece = [text](std::string_view& piece) mutable {
    piece = firstPiece(text);
    text.remove_prefix(piece.size());
    return !piece.empty();
  };
  TextCursor cursor(nextPiece, records.arena());
  EndObserver observer;
  const ParseResult result = readDefinitions(cursor, records, &observer);
  isUnfinished = observer.isUnfinished;
  return result;
}

bool isBuiltByTheDaemon(const ParameterRecords& records) {
  DiagnosticCollector diagnostics;
  Database database;
  return buildDefinitions(diagnostics, records, LineTexts(), false, database) == 0;
}

bool isError(const Finding& finding) {
  const FindingCode* const code = findFindingCode(finding.code);
  EXPECT_NE(code, nullptr) << finding.code;
  if (code == nullptr) return true;
  return finding.level.value_or(code->level) == LEVEL_ERROR;
}

struct Counts {
  size_t unreadable = 0;
  size_t refused = 0;
  size_t accepted = 0;
};

void expectAgreement(const std::string& text, Counts& counts) {
  const SourceText source("text", text);
  bool isUnfinished = false;
  ParameterRecords records;
  const bool isRead = readAsTheDaemon(source.text(), records, isUnfinished) == PARSE_DONE;
  const bool isBuilt = isRead && isBuiltByTheDaemon(records);
  ++(isBuilt ? counts.accepted : isRead ? counts.refused : counts.unreadable);
  ReadText read;
  Findings findings;
  readText(source, read, findings);
  const auto ofReading = std::ranges::count_if(findings.all(), isError);
  const Variant variant = buildVariant(source, read, {}, findings);
  const auto errors = std::ranges::count_if(findings.all(), isError);
  if (!isRead) {
    EXPECT_GT(ofReading, 0) << text;
  } else if (!isUnfinished) {
    EXPECT_EQ(ofReading, 0) << text << "\n" << findings.all().front().text;
    EXPECT_EQ(errors > 0, !isBuilt) << text;
  }
  if (isRead && !isBuilt) {
    EXPECT_GT(errors, 0) << text;
  }
  for (const Finding& finding : findings.all()) {
    EXPECT_LE(finding.at.line, source.lineCount()) << text << "\n" << finding.text;
    EXPECT_LE(finding.at.column + finding.at.length, source.line(finding.at.line).size() + 1)
        << text << "\n"
        << finding.text;
  }
}

// Mistakes of somebody who types, and of somebody who moves lines about.
class Mistakes {
 public:
  explicit Mistakes(uint32_t seed) : random_(seed) {}

  std::string in(std::string text) {
    for (size_t count = 1 + below(3); count > 0; --count) makeOne(text);
    return text;
  }

 private:
  size_t below(size_t limit) { return limit == 0 ? 0 : random_() % limit; }

  std::string sign() {
    static const std::string_view signs[] = {"{",
                                             "}",
                                             "(",
                                             ")",
                                             "\"",
                                             ",",
                                             "=",
                                             "==",
                                             "!",
                                             "[",
                                             "]",
                                             "..",
                                             ".",
                                             "->",
                                             "#",
                                             "# x\n",
                                             "default { 1 }",
                                             "index",
                                             "rw",
                                             "rangeValid",
                                             ";",
                                             "0",
                                             "-1",
                                             "a rw {",
                                             "\n",
                                             "\"a\"",
                                             " ",
                                             "// comment",
                                             "'a'"};
    if (below(40) == 0) return std::string(1, '\0');
    if (below(200) == 0) return "#" + std::string(1020 + below(10), 'x') + " y z\n";
    if (below(200) == 0) return std::string(1000 + below(30), ' ');
    return std::string(signs[below(std::size(signs))]);
  }

  void makeOne(std::string& text) {
    const size_t at = below(text.size() + 1);
    switch (below(6)) {
      case 0:
        text.erase(at, 1 + below(3));
        break;
      case 1:
        text.insert(at, sign());
        break;
      case 2:
        text.resize(at);
        break;
      case 3:
        eraseSign(text, at);
        break;
      case 4:
        text.insert(at, text.substr(below(text.size() + 1), below(60)));
        break;
      default:
        eraseLine(text, at);
    }
  }

  static void eraseSign(std::string& text, size_t from) {
    const size_t at = text.find_first_of("{}()\",=>", from);
    if (at != std::string::npos) text.erase(at, 1);
  }

  static void eraseLine(std::string& text, size_t from) {
    const size_t end = text.find('\n', from);
    if (end != std::string::npos) text.erase(from, end - from);
  }

  std::mt19937 random_;
};

TEST(CheckAgreement, HoldsForTheTextsOfTheProject) {
  const std::vector<std::string> texts = textsOfTheProject();
  ASSERT_GT(texts.size(), 50U);
  Counts counts;
  for (const std::string& text : texts) expectAgreement(text, counts);
  EXPECT_GT(counts.unreadable, 30U);
  EXPECT_GT(counts.refused, 30U);
  EXPECT_GT(counts.accepted, 20U);
}

TEST(CheckAgreement, HoldsForTextsWithMistakes) {
  const std::vector<std::string> texts = textsOfTheProject();
  Counts counts;
  for (uint32_t seed = 0; seed < MUTATED_TEXTS && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    expectAgreement(Mistakes(seed).in(texts[seed % texts.size()]), counts);
  }
  EXPECT_GT(counts.unreadable, MUTATED_TEXTS / 4);
  EXPECT_GT(counts.refused, MUTATED_TEXTS / 25);
  EXPECT_GT(counts.accepted, MUTATED_TEXTS / 20);
}

TEST(CheckAgreement, HoldsForAnyBytes) {
  Counts counts;
  for (uint32_t seed = 0; seed < MUTATED_TEXTS && !HasFailure(); ++seed) {
    std::mt19937 random(seed);
    std::string text;
    constexpr std::string_view bytes = "ab {}()\"[],=.-#\n0index rw default";
    const size_t size = random() % 200;
    while (text.size() < size) text += bytes[random() % bytes.size()];
    expectAgreement(text, counts);
  }
  EXPECT_GT(counts.unreadable, MUTATED_TEXTS / 2);
}

}  // namespace
