// What the program prints, in the form that was asked for.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "ctl/service/answers.h"
#include "ctl/text/style.h"

using Json = nlohmann::ordered_json;

enum OutputForm : int {
  FORM_TEXT,  ///< for people
  FORM_JSON,  ///< one value in JSON
  FORM_NULL,  ///< texts as they are, a NUL behind each
};

/// Standard output. Where nothing is to be printed, nothing is.
class Output {
 public:
  Output(OutputForm form, bool isQuiet, Style style)
      : form_(form), isQuiet_(isQuiet), style_(style) {}

  [[nodiscard]] OutputForm form() const { return form_; }
  [[nodiscard]] bool isJson() const { return form_ == FORM_JSON; }
  [[nodiscard]] const Style& style() const { return style_; }

  /// A line, of the form for people.
  void line(const std::string& text) const;
  /// A text as it is, of the form with NULs.
  void record(const std::string& text) const;
  /// One name or value: a line, quoted where it has to be, or a record.
  void text(const std::string& text) const;
  /// name=value: a line, quoted where it has to be, or a record.
  void assignment(const std::string& name, const std::string& value) const;
  /// The rows of a table (table.h), of which the first is the heading, as lines.
  void table(const std::vector<std::vector<std::string>>& rows) const;
  void json(const Json& value) const;

 private:
  OutputForm form_;
  bool isQuiet_;
  Style style_;
};

/// What an instance takes, in JSON: {"spans": [[0, 9]], "texts": ["off"]}; null where it takes any
/// value, false where that cannot be computed.
Json rangeJson(const InstanceState& state);
