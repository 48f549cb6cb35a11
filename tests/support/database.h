// A database made of a definition text, for tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "database/commit.h"
#include "database/database.h"
#include "deflang/text/definition_grammar.h"
#include "deflang/text/diagnostics.h"
#include "sw/parm/build/builder.h"

using Constants = std::map<std::string, std::string>;

/// Reads `text`; a line that is not accepted fails the test.
inline void readText(std::string_view text, DefinitionText& definitions) {
  ASSERT_EQ(readDefinitionText(linesIn(text), definitions), PARSE_DONE);
}

/// Fills `database` with the definitions of `text`. Whatever is wrong with the text fails the test.
inline void define(Database& database, std::string_view text, const Constants& constants = {}) {
  for (const auto& [name, value] : constants) {
    ASSERT_EQ(database.defineConstant(name, value), 0) << name;
  }
  DefinitionText definitions;
  ASSERT_NO_FATAL_FAILURE(readText(text, definitions));
  DiagnosticCollector diagnostics;
  const int result =
      buildDefinitions(diagnostics, definitions.records, definitions.lines, false, database);
  ASSERT_EQ(result, 0) << "code "
                       << (diagnostics.diagnostics().empty()
                               ? 0
                               : diagnostics.diagnostics().front().code);
}

/// Commits, and adds the names of what is to be reported to `names`.
inline int commitNames(Transaction& transaction, std::vector<std::string>& names) {
  std::vector<Change> changes;
  const int result = commit(transaction, changes);
  for (const Change& change : changes) names.push_back(change.name);
  return result;
}
