// The static checks for their tests: what one of them finds in a text.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "check/static/static_checks.h"
#include "check/static/token_place.h"
#include "check/text/finding_codes.h"
#include "tests/support/database.h"
#include "vid_std.h"

/// A text, and what is found in it: for each finding its line, its column from 1, and the bytes
/// that it marks, as "2:15 gain".
struct StaticCase {
  std::string_view text;
  std::vector<std::string> found = {};
};

/// What `check` finds in `text`, in the order of the text. A text that the engine refuses fails the
/// test.
inline std::vector<Finding> findingsOf(void (*check)(StaticContext&), const SourceText& source,
                                       const NamedValues& constants = {}) {
  initVidStdTables();
  Findings findings;
  ReadText text;
  readText(source, text, findings);
  ConstantChoices choices;
  for (const auto& [name, value] : constants) choices.push_back({name, {value}});
  const Variant variant = buildVariant(source, text, constants, findings);
  EXPECT_TRUE(variant.isBuilt) << source.text();
  const CheckedText checked = {source, text, choices, variant};
  Findings found;
  ExplainedPlaces explained;
  StaticContext context(checked, found, explained);
  check(context);
  for (const Finding& finding : found.all()) EXPECT_NE(findFindingCode(finding.code), nullptr);
  return found.inTextOrder();
}

/// As StaticCase::found.
inline std::vector<std::string> placesOf(void (*check)(StaticContext&), std::string_view text,
                                         const NamedValues& constants = {}) {
  const SourceText source("text", std::string(text));
  std::vector<std::string> places;
  for (const Finding& finding : findingsOf(check, source, constants)) {
    places.push_back(std::to_string(finding.at.line) + ":" + std::to_string(finding.at.column + 1) +
                     " " + std::string(textAt(source, finding.at)));
  }
  return places;
}

/// The texts of what `check` finds in `text`.
inline std::vector<std::string> messagesOf(void (*check)(StaticContext&), std::string_view text,
                                           const NamedValues& constants = {}) {
  const SourceText source("text", std::string(text));
  std::vector<std::string> messages;
  for (const Finding& finding : findingsOf(check, source, constants)) {
    messages.push_back(finding.text);
  }
  return messages;
}

/// What would be written instead, for each finding with a proposal: the bytes it takes the place
/// of, "->" and it.
inline std::vector<std::string> proposalsOf(void (*check)(StaticContext&), std::string_view text) {
  const SourceText source("text", std::string(text));
  std::vector<std::string> proposals;
  for (const Finding& finding : findingsOf(check, source)) {
    if (!finding.proposal) continue;
    proposals.push_back(std::string(textAt(source, finding.proposal->at)) + " -> " +
                        finding.proposal->text);
  }
  return proposals;
}

/// Checks each of `cases`.
template <size_t N>
void expectFound(void (*check)(StaticContext&), const StaticCase (&cases)[N]) {
  for (const StaticCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(placesOf(check, c.text), c.found);
  }
}

/// One value that a client or, with "!" before its name, the device sets, each in a commit.
struct Set {
  std::string name;
  std::string value;
};

/// What `name` holds once all of `sets` are committed, one after the other, in a device of `text`:
/// so tests show that the engine does what a finding says.
inline std::string heldAfter(std::string_view text, const std::vector<Set>& sets,
                             std::string_view name) {
  initVidStdTables();
  Database database;
  define(database, text);
  for (const Set& set : sets) {
    const bool isForced = set.name.starts_with('!');
    Transaction transaction(database);
    static_cast<void>(transaction.set(set.name.substr(isForced ? 1 : 0), set.value, isForced));
    std::vector<std::string> names;
    static_cast<void>(commitNames(transaction, names));
  }
  std::string value;
  EXPECT_EQ(Transaction(database).get(name, value), 0) << name;
  return value;
}
