// Static checks: what can be said of a text without a look at all situations.
#pragma once

#include "check/static/explained_places.h"
#include "check/static/static_context.h"
#include "check/text/checked_text.h"
#include "check/text/findings.h"

/// Adds what is found in one text in one variant to `findings`. Returns the tokens about which
/// that says enough. Of a text that the engine has not built, only what needs no engine is looked
/// at; of one that is broken, what is missing is not missed. Nothing is evaluated with values.
ExplainedPlaces checkStatics(const CheckedText& checked, Findings& findings);

// One function for each subject, called by checkStatics(). Those that ask the engine's definitions
// need a text that is built.

/// merged: a name with more than one definition.
void checkMerged(StaticContext& context);
/// self-reference: a parameter whose range or availability follows the value that is judged.
void checkSelfReference(StaticContext& context);
/// octal: a number that is another one in decimal.
void checkOctal(StaticContext& context);
/// precedence: operators that bind otherwise than they look.
void checkPrecedence(StaticContext& context);
/// overlap: items and statements that say again, or not as meant, what another one says.
void checkOverlap(StaticContext& context);
/// indexed-index: statements of an index that nothing reads.
void checkIndexStatements(StaticContext& context);
/// write-only-condition: a trigger whose range follows a parameter.
void checkTriggers(StaticContext& context);
/// unused-index: an index that nothing uses.
void checkUnusedIndices(StaticContext& context);
/// quoted-number: a text where a number is meant.
void checkQuotedNumbers(StaticContext& context);
/// own-index: an index value that is not known where it is asked for.
void checkOwnIndices(StaticContext& context);
/// foreign-index: a name that means no instance.
void checkForeignIndices(StaticContext& context);
/// empty-text: comparisons with "".
void checkEmptyTexts(StaticContext& context);
/// other-standard, undefined-figure: what the holders of video standards select.
void checkStandards(StaticContext& context);
/// translation: translations that cannot be used, or take a valid value away. Asks the engine.
void checkTranslations(StaticContext& context);
/// disjoint: ranges that share no value with the one that always counts. Asks the engine.
void checkDisjoint(StaticContext& context);
/// doc-outside: documented values that no range accepts. Asks the engine.
void checkDocumented(StaticContext& context);
