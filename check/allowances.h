// Allowances: the comments with which an author silences findings.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "check/text/finding_codes.h"
#include "check/text/findings.h"
#include "check/text/source_text.h"
#include "check/text/text_layout.h"

/// The lines `# check: allow CODE[, CODE]` of a text. Each silences the findings of these codes in
/// the statement that follows it in its definition; outside definitions, in the whole definition
/// that follows. In the midst of a statement it is about that statement. What the daemon refuses
/// cannot be silenced.
class Allowances {
 public:
  /// Reads them. Both have to outlive this.
  Allowances(const SourceText& source, const TextLayout& layout);

  /// Whether a comment silences `finding`. That comment has then done something.
  bool allow(const Finding& finding);
  /// Adds what is wrong with the comments: those of another form, codes that do not exist, and
  /// codes that have silenced nothing. `isAsked` says whether all has been asked that findings of
  /// a code come from; where it has not, nobody knows.
  void report(const std::function<bool(const FindingCode&)>& isAsked, Findings& findings) const;

 private:
  struct Allowance {
    const FindingCode* code;
    TextPlace at;       // of the code in the comment
    TextExtent extent;  // empty where nothing follows
    bool hasSilenced = false;
    bool hasMetRefusal = false;
  };

  void readLine(uint32_t number, std::string_view line);
  void readCode(TextPlace at, std::string_view name, const TextExtent& extent);
  [[nodiscard]] TextExtent extentBehind(Position comment) const;

  const TextLayout& layout_;
  std::vector<Allowance> allowances_;
  Findings wrong_;
};
