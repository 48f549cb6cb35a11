// Findings: what is wrong with a definition text, or may be meant otherwise.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// How much a finding matters.
enum FindingLevel {
  LEVEL_ERROR,    ///< the daemon refuses the text, or the device is wrong in some situation
  LEVEL_WARNING,  ///< most likely not what was meant
  LEVEL_NOTE,     ///< worth a look
};

/// A place in a text. Lines count from 1, 0 meaning that there is no place; columns are byte
/// offsets from 0. A length of 0 is a place without extent, which gets a caret.
struct TextPlace {
  uint32_t line = 0;
  uint32_t column = 0;
  uint32_t length = 0;
  // NOLINTNEXTLINE(modernize-use-nullptr): the comparison with 0 that is made of it is no pointer.
  auto operator<=>(const TextPlace&) const = default;
};

/// A second place that explains a finding: "defined here".
struct RelatedPlace {
  TextPlace at;
  std::string text;
};

/// What would be right, where that is certain: the bytes at `at` replaced by `text`. Without a
/// length the text is to be inserted.
struct Proposal {
  TextPlace at;
  std::string text;
};

/// The values of a situation, by full name, in the order in which they are printed.
using NamedValues = std::vector<std::pair<std::string, std::string>>;

/// One finding.
struct Finding {
  std::string_view code;  ///< a name of finding_codes.h
  TextPlace at;
  std::string text;  ///< one sentence without a full stop, starting with a small letter
  std::vector<RelatedPlace> related = {};
  std::optional<Proposal> proposal = {};
  NamedValues witness = {};  ///< a situation that shows it; the engine has been in it
  std::string variant = {};  ///< "MODEL=pro" where it does not hold in all variants, else empty
  std::optional<FindingLevel> level = {};  ///< where it is not the one of its code
};
