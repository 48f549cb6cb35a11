#include "check/static/static_checks.h"

ExplainedPlaces checkStatics(const CheckedText& checked, Findings& findings) {
  ExplainedPlaces explained;
  StaticContext context(checked, findings, explained);
  checkMerged(context);
  checkSelfReference(context);
  checkOctal(context);
  checkPrecedence(context);
  checkOverlap(context);
  checkIndexStatements(context);
  checkTriggers(context);
  checkOwnIndices(context);
  checkEmptyTexts(context);
  // What could not be read would be missed, and reported twice.
  if (checked.text.isBroken) return explained;
  checkUnusedIndices(context);
  checkQuotedNumbers(context);
  checkForeignIndices(context);
  if (!checked.variant.isBuilt) return explained;
  checkStandards(context);
  checkTranslations(context);
  checkDisjoint(context);
  checkDocumented(context);
  return explained;
}
