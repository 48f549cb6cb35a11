#include "play/session_reader.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <map>

#include "play/session_line.h"

namespace {

using Texts = std::vector<std::string>;
using Files = std::map<std::string, std::string>;

std::string shown(const std::vector<SessionStep>& steps);

std::string shown(const SessionStep& step) {
  if (step.loop == nullptr) {
    const Operation& operation = step.operation;
    const std::string name = operation.transaction.empty() ? "" : operation.transaction + "/";
    return name + std::string(operation.word->word) + std::to_string(operation.arguments.size());
  }
  std::string text = "for";
  for (const std::string& variable : step.loop->variables) text += " " + variable;
  return text + " in " + std::to_string(step.loop->list.size()) + " {" + shown(step.loop->body) +
         "}";
}

std::string shown(const std::vector<SessionStep>& steps) {
  std::string text;
  for (const SessionStep& step : steps) text += (text.empty() ? "" : " ") + shown(step);
  return text;
}

// Reads the file "s" of `files`. Gives its steps, or what is wrong.
std::string read(const Files& files) {
  Session session;
  std::vector<SessionError> errors;
  const auto readFile = [&](const std::string& name, std::string& text) {
    const auto found = files.find(name);
    if (found == files.end()) return ENOENT;
    text = found->second;
    return 0;
  };
  readSession("s", files.at("s"), readFile, session, errors);
  if (errors.empty()) return shown(session.steps);
  std::string text;
  for (const SessionError& error : errors) text += shownError(error) + "\n";
  return text;
}

std::string read(const std::string& text) { return read(Files{{"s", text}}); }

TEST(SessionReader, ReadsOperations) {
  const struct {
    const char* text;
    const char* steps;
  } cases[] = {
      {"", ""},
      {"# nothing\n\n  \n", ""},
      {"\xEF\xBB\xBF"
       "up\r\ncommit\r\n",
       "up0 commit0"},
      {"up\nset a 1 b 2\nget a -> 1\ncommit", "up0 set4 get1 commit0"},
      {"up a=1 b=2\nconstants\nconstants A=", "up2 constants0 constants1"},
      {"start\nend", "start0 end0"},
      {"start a\na: set x 1\na: commit\nend a", "a/start0 a/set2 a/commit0 a/end0"},
      {"start a\na: end", "a/start0 a/end0"},
      {"a: start\nend a", "a/start0 a/end0"},
      {"index range x", "index range1"},
      {"set set set", "set2"},
      {"set \"->\" \"#\" -> ", "set2"},
      {"commit -> refused: of this\ncommit -> a=1 refused:", "commit0 commit0"},
  };
  for (const auto& c : cases) EXPECT_EQ(read(c.text), c.steps) << c.text;
}

TEST(SessionReader, ReadsLoops) {
  const struct {
    const char* text;
    const char* steps;
  } cases[] = {
      {"for s in $standards: set mode $s\nup", "for s in 1 {set2} up0"},
      {"for s in a b : up", "for s in 2 {up0}"},
      {"for s in \"a:\" b: up", "for s in 2 {up0}"},
      {"for a b in 1 2: set $a $b", "for a b in 2 {set2}"},
      {"for s in a:\n  up\n\n# not indented\n  commit\nup", "for s in 1 {up0 commit0} up0"},
      {"for a in 1:\n\tfor b in 2:\n\t\tset $a $b\n\tup\nup",
       "for a in 1 {for b in 1 {set2} up0} up0"},
      {"for a in 1: for b in 2: set $a $b", "for a in 1 {for b in 1 {set2}}"},
      {"for a in 1: for b in 2:\n  set $a $b\nup", "for a in 1 {for b in 1 {set2}} up0"},
      {"for a in 1:\n  for b in x:\n    up\ncommit", "for a in 1 {for b in 1 {up0}} commit0"},
      {"for a in 1: up\nfor a in $gain[x]: up", "for a in 1 {up0} for a in 1 {up0}"},
      {"for a in 1: for b in $gain[$a]: up", "for a in 1 {for b in 1 {up0}}"},
      {"for a in 1: get x -> $a ${a}b refused: $a", "for a in 1 {get1}"},
  };
  for (const auto& c : cases) EXPECT_EQ(read(c.text), c.steps) << c.text;
}

TEST(SessionReader, NamesLineAndColumnOfWhatIsWrong) {
  const struct {
    const char* text;
    const char* errors;
  } cases[] = {
      {"up\n  comit\n", "s:2:3: the indentation is that of no loop around\n"},
      {"up\ncomit\n", "s:2:1: there is no operation \"comit\"; did you mean \"commit\"?\n"},
      {"\"up\"", "s:1:1: there is no operation \"up\"; did you mean \"up\"?\n"},
      {"xyzzy",
       "s:1:1: there is no operation \"xyzzy\"; a line begins with a word such as \"set\", "
       "\"commit\" or \"get\"\n"},
      {"set gain", "s:1:9: the form is \"set NAME VALUE [NAME VALUE...]\"\n"},
      {"set a 1 b -> x", "s:1:10: the form is \"set NAME VALUE [NAME VALUE...]\"\n"},
      {"get a->7", "s:1:5: write a blank on both sides of \"->\", or the word in quotes\n"},
      {"get a ->7", "s:1:7: write a blank on both sides of \"->\", or the word in quotes\n"},
      {"commit now", "s:1:8: the form is \"commit\"\n"},
      {"get", "s:1:4: the form is \"get NAME...\"\n"},
      {"deps a b", "s:1:8: the form is \"deps NAME\"\n"},
      {"validate a 1 2", "s:1:14: the form is \"validate NAME VALUE\"\n"},
      {"up a", "s:1:4: the form is \"up [NAME=VALUE...]\"\n"},
      {"start a b", "s:1:9: the form is \"start [TRANSACTION]\"\n"},
      {"start a-b", "s:1:7: the name of a transaction has letters, digits and \"_\" only\n"},
      {"a-b: up", "s:1:1: the name of a transaction has letters, digits and \"_\" only\n"},
      {"a: commit", "s:1:1: there is no transaction \"a\"; \"start a\" opens it\n"},
      {"end a\nstart a", "s:1:1: there is no transaction \"a\"; \"start a\" opens it\n"},
      {"start a\na: end b", "s:2:8: two transactions are named\n"},
      {"get a -> 1 -> 2", "s:1:12: a second \"->\"; a value \"->\" is written in quotes\n"},
      {"get $a", "s:1:5: no loop around has the variable \"a\"; write \\$ for the sign \"$\"\n"},
      {"get a -> $a",
       "s:1:10: no loop around has the variable \"a\"; write \\$ for the sign \"$\"\n"},
      {"for a in 1: up\nget $a",
       "s:2:5: no loop around has the variable \"a\"; write \\$ for the sign \"$\"\n"},
      {"for", "s:1:1: a loop is written \"for NAME in VALUES: ...\"\n"},
      {"for a in", "s:1:7: a loop is written \"for NAME in VALUES: ...\"\n"},
      {"for in a: up", "s:1:11: a loop is written \"for NAME in VALUES: ...\"\n"},
      {"for a of b: up", "s:1:13: a loop is written \"for NAME in VALUES: ...\"\n"},
      {"for a in b up", "s:1:12: the values of a loop end with \":\"\n"},
      {"for a in : up", "s:1:10: a loop has at least one value\n"},
      {"for a-b in 1: up",
       "s:1:5: the name of a loop variable has letters, digits and \"_\" only\n"},
      {"for a in 1: for a in 2: up", "s:1:17: there is a loop variable \"a\" already\n"},
      {"for a a in 1 2: up", "s:1:7: there is a loop variable \"a\" already\n"},
      {"for a in 1:\nup",
       "s:1:1: the loop has no operation: one follows its \":\", or indented lines\n"},
      {"for a in 1:",
       "s:1:1: the loop has no operation: one follows its \":\", or indented lines\n"},
      {"for a in 1:\n    up\n  up\nup", "s:3:3: the indentation is that of no loop around\n"},
      {"  up", "s:1:3: the indentation is that of no loop around\n"},
      // One cause is one report; the next line is looked at again.
      {"fro a in 1:\n  get $a\n  up x\nget \"\ncommit 1",
       "s:1:1: there is no operation \"fro\"; did you mean \"for\"?\n"
       "s:4:5: a quote is not closed\n"
       "s:5:8: the form is \"commit\"\n"},
      {"include", "s:1:1: one file is included: include FILE\n"},
      {"include a b", "s:1:11: one file is included: include FILE\n"},
      {"include none", "s:1:9: cannot read none: No such file or directory\n"},
      {"for a in 1: include $a", "s:1:21: the name of a file has no variable\n"},
  };
  for (const auto& c : cases) EXPECT_EQ(read(c.text), c.errors) << c.text;
}

TEST(SessionReader, IncludesFiles) {
  EXPECT_EQ(read({{"s", "include d/a\nup"}, {"d/a", "include b\nset a 1"}, {"d/b", "commit"}}),
            "commit0 set2 up0");
  // A variable of a loop around is one of the included file too, and a transaction stays known.
  EXPECT_EQ(read({{"s", "for s in 1: include a\nt: commit"}, {"a", "start t\nget $s"}}),
            "for s in 1 {t/start0 get1} t/commit0");
  EXPECT_EQ(read({{"s", "include a\ninclude a"}, {"a", "up"}}), "up0 up0");
  EXPECT_EQ(read({{"s", "up\ninclude a\nupp"}, {"a", "comit\nend"}}),
            "a:1:1: there is no operation \"comit\"; did you mean \"commit\"?\n"
            "s:3:1: there is no operation \"upp\"; did you mean \"up\"?\n");
}

TEST(SessionReader, NamesTheRingOfFilesThatIncludeEachOther) {
  EXPECT_EQ(read({{"s", "include s"}}), "s:1:9: the files include each other: s -> s\n");
  EXPECT_EQ(read({{"s", "include d/a"}, {"d/a", "include b"}, {"d/b", "include ../d/a"}}),
            "d/b:1:9: the files include each other: d/a -> d/b -> d/a\n");
}

TEST(SessionReader, HasLimits) {
  std::string deep;
  for (size_t i = 0; i <= MAX_SESSION_DEPTH; ++i) deep += "for a" + std::to_string(i) + " in 1: ";
  EXPECT_EQ(read(deep + "up"), "s:1:" + std::to_string(deep.rfind("1:") + 1) +
                                   ": more than 32 loops and files are within each other\n");
  deep.erase(deep.rfind("for"));
  EXPECT_EQ(read(deep + "up").find("error"), std::string::npos);

  // Files that include others twice would be more than anybody can read.
  Files files = {{"a11", "up"}};
  for (int i = 0; i < 11; ++i) {
    const std::string next = "include a" + std::to_string(i + 1) + "\n";
    files["a" + std::to_string(i)] = next + next;
  }
  files["s"] = "include a0";
  EXPECT_NE(read(files).find("the session has more than 1000 files"), std::string::npos);
}

TEST(SessionReader, TakesLongLines) {
  const std::string value(100000, 'x');
  EXPECT_EQ(read("set a " + value + " -> " + value + " # " + value), "set2");
  EXPECT_EQ(read(std::string(1000, '\n') + "set a \"" + value),
            "s:1001:7: a quote is not closed\n");
}

std::string lineWith(const std::string& line, std::string_view outcome, size_t column = 0) {
  Session session;
  std::vector<SessionError> errors;
  readSession(
      "s", "up\n" + line + "\nup", [](const std::string&, std::string&) { return 1; }, session,
      errors);
  EXPECT_TRUE(errors.empty()) << line;
  const Operation& operation = session.steps.at(1).operation;
  EXPECT_EQ(std::string(lineOf(operation)), line);
  return ::lineWith(operation, outcome, column);
}

TEST(SessionLine, ChangesOnlyTheOutcome) {
  const struct {
    const char* line;
    const char* outcome;
    const char* result;
  } cases[] = {
      {"commit", "a=1", "commit -> a=1"},
      {"commit  # c", "a=1", "commit -> a=1  # c"},
      {"commit ->", "a=1", "commit -> a=1"},
      {"commit ->   ", "a=1", "commit -> a=1"},
      {"commit ->   # c", "a=1", "commit -> a=1   # c"},
      {"commit  ->  a=2", "a=1", "commit  ->  a=1"},
      {"commit -> a=2 refused: x   # c", "a=1", "commit -> a=1   # c"},
      {"commit -> a=2", "", "commit ->"},
      {"commit -> a=2  # c", "", "commit ->  # c"},
      {"commit -> \"a b\"# no comment", "", "commit ->"},
  };
  for (const auto& c : cases) EXPECT_EQ(lineWith(c.line, c.outcome), c.result) << c.line;
  EXPECT_EQ(lineWith("commit", "a=1", 10), "commit    -> a=1");
  EXPECT_EQ(lineWith("commit # c", "a=1", 10), "commit    -> a=1 # c");
  EXPECT_EQ(lineWith("commit", "a=1", 3), "commit -> a=1");
}

}  // namespace
