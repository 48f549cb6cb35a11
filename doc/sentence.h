// Sentences: expressions of a definition text in words that a person reads.
//
//   mode == "auto" && level > 3      becomes   mode is “auto” and level is greater than 3
//   vidStd::standard::spal - 1       becomes   standard’s active samples − 1
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "deflang/expression/program.h"

/// What a part of a sentence is.
enum SentencePartKind : uint8_t {
  PART_OF_WORDS,   ///< words, signs and blanks
  PART_OF_NAME,    ///< a name of the text, with its index values in brackets
  PART_OF_NUMBER,  ///< a number in decimal
  PART_OF_TEXT,    ///< a quoted text, without its quotes
};

/// One part.
struct SentencePart {
  SentencePartKind kind = PART_OF_WORDS;
  std::string text;
  bool operator==(const SentencePart& other) const = default;
};

/// Its parts, from left to right. Two parts of words are never neighbours.
using Sentence = std::vector<SentencePart>;

/// Says when `condition` is true. Its names have their slots in `variables`. Empty where it is
/// constantly true. Takes linear time, at any depth of parentheses.
Sentence conditionSentence(const Program& condition, const Variables& variables);
/// Says what `value` is.
Sentence valueSentence(const Program& value, const Variables& variables);

/// The base name that a name of an expression begins with: "gain" of "gain[1][red]".
std::string baseNameOf(const std::string& name);

/// The whole sentence; texts are in curved quotes.
std::string plainText(const Sentence& sentence);
