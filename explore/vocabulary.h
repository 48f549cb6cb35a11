// Vocabulary: which values of a definition text's parameters may make a difference, and which
// statements look at which parameters.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "coverage/text_coverage.h"

/// What the text says of a name, or about it.
struct NameVocabulary {
  /// Worth trying: items of its ranges, what it is compared with, and their neighbours; defaults,
  /// and the words that are translated. Ascending, each once.
  std::vector<std::string> values;
  bool isStatus = false;    ///< the device sets it: "ro" and "rostrict"
  bool isSelector = false;  ///< figures of the video standard that it selects are used
};

/// What a text says, by base name and by statement.
class Vocabulary {
 public:
  /// Of the text of `coverage`.
  explicit Vocabulary(const TextCoverage& coverage);

  /// Of a parameter or an index; of a name that the text does not define, nothing.
  [[nodiscard]] const NameVocabulary& of(std::string_view name) const;
  /// The base names of the parameters and indices that statement `number`, as a place in
  /// TextCoverage::statements(), refers to.
  [[nodiscard]] const std::set<std::string>& namesIn(size_t number) const { return names_[number]; }

 private:
  class Reading;

  std::map<std::string, NameVocabulary, std::less<>> vocabularies_;
  std::vector<std::set<std::string>> names_;
};
