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

/// Command-line constants: value texts by name.
using Constants = std::map<std::string, std::string>;

/// Reads `text` into `definitions`. A text that cannot be read fails the test.
inline void readText(std::string_view text, DefinitionText& definitions) {
  ASSERT_EQ(readDefinitionText(linesIn(text), definitions), PARSE_DONE);
}

/// Fills `database`, which is empty, with the constants and the definitions of `text`. A text whose
/// build fails also fails the test; warnings do not.
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

/// Commits `transaction`, and adds the names of what the commit reports to `names`. Returns the
/// CommitResult.
inline int commitNames(Transaction& transaction, std::vector<std::string>& names) {
  std::vector<Change> changes;
  const int result = commit(transaction, changes);
  for (const Change& change : changes) names.push_back(change.name);
  return result;
}
