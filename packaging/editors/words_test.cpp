// The editors' syntax files know the words of the languages: all of them, and no others.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include "deflang/text/definition_grammar.h"
#include "play/operation_words.h"
#include "srcs/vid_std_figures.h"

namespace {

using Words = std::set<std::string>;

// Adds the words of `text`: its runs of letters, digits and "_".
void addWords(std::string_view text, Words& words) {
  constexpr std::string_view LETTERS =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
  for (size_t end = 0;;) {
    const size_t begin = text.find_first_of(LETTERS, end);
    if (begin == std::string_view::npos) return;
    end = std::min(text.find_first_not_of(LETTERS, begin), text.size());
    words.emplace(text.substr(begin, end - begin));
  }
}

// The words of a file between each `from` and the next `to`, without those of its own format.
Words wordsBetween(const std::string& file, std::string_view from, std::string_view to) {
  std::ifstream stream(std::string(EDITORS_DIRECTORY "/") + file);
  const std::string text(std::istreambuf_iterator<char>(stream), {});
  Words words;
  for (size_t end = 0;;) {
    size_t begin = text.find(from, end);
    if (begin == std::string::npos) break;
    begin += from.size();
    end = text.find(to, begin);
    addWords(std::string_view(text).substr(begin, end - begin), words);
  }
  words.erase("contained");
  words.erase("keyword");
  return words;
}

Words accesses() { return {accessWords().begin(), accessWords().end()}; }
Words statements() { return {statementKeywords().begin(), statementKeywords().end()}; }

Words figures() {
  Words words;
  for (const vidFigure_t& figure : vidFigures()) words.emplace(figure.name);
  return words;
}

Words operations() {
  Words words;
  for (const OperationWord& operation : operationWords()) addWords(operation.word, words);
  return words;
}

TEST(SyntaxFiles, KnowTheWordsOfTheLanguages) {
  struct WordsCase {
    const char* file;
    const char* from;
    const char* to;
    Words words;
  };
  const WordsCase cases[] = {
      {"vim/syntax/ostrel.vim", "syntax keyword ostrelAccess", "nextgroup", accesses()},
      {"vim/syntax/ostrel.vim", "syntax keyword ostrelStatement", "\n", statements()},
      {"vim/syntax/ostrel.vim", "::\\%(", ")", figures()},
      {"vim/syntax/ostrelsession.vim", "syntax keyword ostrelsessionOperation", "\n", operations()},
      {"nano/ostrel.nanorc", "color green \"\\<(", ")", accesses()},
      {"nano/ostrel.nanorc", "color brightblue \"\\<(", ")", statements()},
      {"nano/ostrel.nanorc", "+::(", ")", figures()},
      {"nano/ostrelsession.nanorc", "color green \"\\<(", ")", operations()},
      {"gtksourceview/ostrel.lang", "</suffix>", "</context>", accesses()},
      {"gtksourceview/ostrel.lang", "\"statement\" style-ref=\"statement\">", "</context",
       statements()},
      {"gtksourceview/ostrel.lang", "+?::</prefix>", "</context", figures()},
      {"gtksourceview/ostrelsession.lang", "style-ref=\"operation\">", "</context", operations()},
  };
  for (const WordsCase& c : cases) {
    SCOPED_TRACE(std::string(c.file) + " behind " + c.from);
    EXPECT_EQ(wordsBetween(c.file, c.from, c.to), c.words);
  }
}

}  // namespace
