// Holds the grammar against the line parser that it replaces, on texts and on mutations of them:
//   difference MUTATIONS SEED FILE...
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "deflang/text/definition_grammar.h"
#include "deflang/text/definition_parser.h"
#include "fuzz/captured_stderr.h"
#include "fuzz/pieces.h"
#include "fuzz/record_text.h"

namespace {

struct Reading {
  int result = PARSE_DONE;
  std::string report;
  std::string records;
  std::string lines;
  bool operator==(const Reading&) const = default;
};

Reading finished(int result, CapturedStderr& captured, const DefinitionText& text, size_t pieces) {
  Reading reading = {result, captured.restore(), recordsText(text.records), {}};
  if (result != PARSE_DONE) return reading;  // nobody looks at the lines any more
  for (uint32_t number = 0; number <= pieces + 1; ++number) {
    const auto line = text.lines.find(number);
    if (line) reading.lines += std::to_string(number) + ":" + std::string(*line);
  }
  return reading;
}

Reading parsed(const std::vector<std::string>& pieces) {
  CapturedStderr captured;
  DefinitionText text;
  DefinitionParser parser;
  int result = PARSE_DONE;
  for (uint32_t line = 1; line <= pieces.size() && result == PARSE_DONE; ++line) {
    result = acceptLine(parser, text, pieces[line - 1], line);
  }
  return finished(result, captured, text, pieces.size());
}

Reading read(const std::vector<std::string>& pieces) {
  CapturedStderr captured;
  DefinitionText text;
  size_t next = 0;
  std::string buffer;
  const auto nextLine = [&](std::string_view& line) {
    if (next == pieces.size()) return false;
    // A line is gone when the next one is asked for.
    std::fill(buffer.begin(), buffer.end(), '?');
    buffer = pieces[next++];
    line = buffer;
    return true;
  };
  const int result = readDefinitionText(nextLine, text);
  return finished(result, captured, text, pieces.size());
}

using Random = std::mt19937_64;

size_t below(Random& random, size_t end) { return end == 0 ? 0 : random() % end; }

void mutate(std::string& text, const std::vector<std::string>& texts, Random& random) {
  static const std::string SIGNS("\"#{}()[]\n \t\0.,->=!&|:\\*%$<x10\xff", 33);
  const size_t at = below(random, text.size() + 1);
  const size_t length = std::min(text.size() - at, below(random, 12));
  const std::string& other = texts[below(random, texts.size())];
  const size_t from = below(random, other.size() + 1);
  switch (below(random, 6)) {
    case 0:
      text.erase(at, length);
      break;
    case 1:
      text.insert(at, 1, SIGNS[below(random, SIGNS.size())]);
      break;
    case 2:
      if (at < text.size()) text[at] = SIGNS[below(random, SIGNS.size())];
      break;
    case 3:
      text.insert(at, other.substr(from, below(random, 40)));
      break;
    case 4:
      text.insert(at, below(random, 50) == 0 ? std::string(below(random, 3000), 'a') : "\n# c\n");
      break;
    default:
      text.resize(below(random, 20) == 0 ? at : text.size());
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> texts;
  for (int i = 3; i < argc; ++i) {
    std::ifstream file(argv[i], std::ios::binary);
    texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    if (texts.back().size() > 20000) texts.back().resize(20000);
  }
  Random random(static_cast<uint64_t>(atoll(argv[2])));
  size_t refused = 0;
  const size_t runs = texts.size() + static_cast<size_t>(atoll(argv[1]));
  for (size_t i = 0; i < runs; ++i) {
    std::string text = texts[i < texts.size() ? i : below(random, texts.size())];
    for (size_t edits = i < texts.size() ? 0 : 1 + below(random, 4); edits > 0; --edits) {
      mutate(text, texts, random);
    }
    const std::vector<std::string> pieces = piecesOf(text);
    const Reading before = parsed(pieces);
    const Reading after = read(pieces);
    refused += before.result == PARSE_DONE ? 0 : 1;
    if (before == after) continue;
    std::cout << "DIFFERENT\n"
              << text << "\n--- " << before.result << "\n"
              << before.report << before.records << before.lines << "\n--- " << after.result << "\n"
              << after.report << after.records << after.lines << "\n";
    return 1;
  }
  std::cout << runs << " texts, " << refused << " refused, no difference\n";
}
