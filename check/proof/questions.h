// The questions: each function asks one kind about a whole text, and adds its findings.
#pragma once

#include "check/proof/explained.h"
#include "check/proof/proof.h"

/// An index of more values is not looked at: to ask each of them in each situation takes too long.
constexpr size_t MAX_INDEX_VALUES = 1000;

/// The parts of a longer expression are not asked one by one: that would take the square of it.
constexpr size_t MAX_ASKED_TOKENS = 300;

/// never-true and always-true: conditions.
void askConditions(Proof& proof, Explained& explained);
/// always-true and never-true: controls that several statements together lock for good.
void askControls(Proof& proof, Explained& explained);
/// unreachable: defaults and ranges that an earlier statement always covers.
void askReachability(Proof& proof, Explained& explained);
/// dead-comparison: comparisons in an item, a default or a part of a condition that are the same in
/// all situations.
void askComparisons(Proof& proof, const Explained& explained);
/// empty-range and no-value: values that do not exist in some situation.
void askValues(Proof& proof, const Explained& explained);
/// uncovered: situations in which no statement of a kind applies.
void askCoverage(Proof& proof, const Explained& explained);
/// disjoint: values that a range with a condition and the one without move to and fro.
void askRefusals(Proof& proof, const Explained& explained);
/// doc-outside and translation: values that are offered or written and that no situation keeps.
void askDocumented(Proof& proof, const Explained& explained);
/// default-outside: defaults that no situation keeps.
void askDefaults(Proof& proof, const Explained& explained);
/// narrowed-away: situations in which instances are out of reach.
void askIndices(Proof& proof, const Explained& explained);
/// overflow: sums and products that pass 32 bits.
void askOverflow(Proof& proof, const Explained& explained);
/// default-outside and unsettled: what a start and a second commit do.
void askStart(Proof& proof, const Explained& explained);
/// unsettled: what parameters that refer to each other do after a change.
void askRings(Proof& proof, const Explained& explained);
/// late-follower: values that are lost where they are set together with what they follow.
void askFollowers(Proof& proof);
/// over-budget: changes that no commit takes.
void askBudget(Proof& proof);
