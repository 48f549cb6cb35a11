// Built texts: a definition text read and built into a database as at start-up.
#pragma once

#include <string>
#include <string_view>

#include "database/database.h"
#include "deflang/text/definition_grammar.h"
#include "deflang/text/diagnostics.h"

/// The constants of every built text, as given on the command line.
struct Constant {
  const char* name;
  const char* value;
};
constexpr Constant CONSTANTS[] = {
    {"AUDIO", "1"}, {"CHANNELS", "2"}, {"FITTED", "0"}, {"MODEL", "pro"}, {"STANDARD", "1080i/50"}};

/// Stays where it is made.
struct BuiltText {
  /// Reads `text`, and builds it when it can be read. With `checkOnly` nothing is registered.
  explicit BuiltText(std::string_view text, bool checkOnly = false);
  BuiltText(const BuiltText&) = delete;
  BuiltText& operator=(const BuiltText&) = delete;

  Database database;
  DefinitionText definitions;
  DiagnosticCollector diagnostics;
  bool readable = true;
  int result = 0;      ///< of the builder
  std::string errors;  ///< what was printed, the diagnostics not among it

  /// Whether nobody had anything to say about the text.
  [[nodiscard]] bool isClean() const {
    return readable && result == 0 && errors.empty() && diagnostics.diagnostics().empty();
  }
};
