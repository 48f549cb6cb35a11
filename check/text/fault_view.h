// Fault view: what the functions that explain a fault of reading ask about the text around it.
#pragma once

#include <string>
#include <string_view>

#include "check/text/reading_causes.h"
#include "check/text/wording.h"

/// A fault and its text. All of it has to outlive the view.
class FaultView {
 public:
  FaultView(const ReadingFault& reading, const SourceText& source, std::string_view text)
      : fault(reading), source_(source), text_(text) {}

  const ReadingFault& fault;

  /// All bytes of the text.
  [[nodiscard]] std::string_view text() const { return text_; }
  /// The text from `from` on, to the end of the line.
  [[nodiscard]] std::string_view lineFrom(size_t from) const;
  /// The byte at `at`, or a newline at the end of the text.
  [[nodiscard]] char byteAt(size_t at) const { return at < text_.size() ? text_[at] : '\n'; }
  [[nodiscard]] TextScan scanFrom(size_t from) const { return {source_, text_, from}; }
  /// The part of which the byte at `at` is one, where the scan comes from `from`.
  [[nodiscard]] TextPart partAt(size_t at) const { return scanFrom(at).next(); }
  [[nodiscard]] TextPlace place(size_t from, size_t length) const;
  [[nodiscard]] TextPlace placeOf(const TextPart& part) const;
  /// Behind the line of `at`.
  [[nodiscard]] size_t nextLine(size_t at) const;
  [[nodiscard]] std::string name() const { return std::string(fault.record->name); }
  [[nodiscard]] TextPlace namePlace() const { return place(fault.nameAt, name().size()); }

 private:
  const SourceText& source_;
  std::string_view text_;
};

/// A comment that begins behind code, with `next` as the place to go on.
ReadingCause commentAfterCode(const FaultView& view, size_t at, ResumePoint next);

/// The definition that is open when `at`, another one or the end of the text, comes.
ReadingCause openDefinition(const FaultView& view, const TextPart& at);
