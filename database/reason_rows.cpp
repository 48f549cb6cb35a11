#include "database/reason_rows.h"

#include <algorithm>

#include "base/system_log.h"
#include "database/explain.h"
#include "database/range_query.h"
#include "sw/parm/statement_text.h"

namespace {

using Rows = std::vector<ReasonRow>;

void add(Rows& rows, const char* question, const std::string& answer,
         const std::vector<Reason>& reasons) {
  if (reasons.empty()) rows.push_back({question, answer, {}});
  for (const Reason& reason : reasons) rows.push_back({question, answer, reason});
}

std::vector<Reason> listOf(const std::optional<Reason>& reason) {
  return reason ? std::vector{*reason} : std::vector<Reason>();
}

void addOnce(const Reason& reason, std::vector<Reason>& reasons) {
  if (std::ranges::find(reasons, reason) == reasons.end()) reasons.push_back(reason);
}

// Why a plain set would be stored, or would not.
const std::vector<Reason>& writableReasons(const Explanation& why) {
  if (!why.exists) return why.existence;
  return why.isReadOnly || why.takesAny ? why.readOnly : why.colliding;
}

const char* yesOrNo(bool isTrue) { return isTrue ? "yes" : "no"; }

// The range that clients are told, in the situation in which they are.
void addLimits(Transaction& transaction, std::string_view name, Rows& rows) {
  BoundsParm range;
  int code = 0;
  std::vector<Reason> reasons;
  std::vector<Reason> refusing;
  Database& database = transaction.database();
  const int result = visitQueried(
      database, transaction.staged(), name,
      [&](const ParmEntry& parm, const Situation& situation) {
        code = parm.parm.range(range, situation);
        reasons = listOf(ParmReasons(parm.parm, database.statementsOf(parm)).range(situation));
      },
      [&](const ParmEntry& parm, const Situation& situation) {
        const ParmReasons own(parm.parm, database.statementsOf(parm));
        for (const Reason& reason : own.colliding(situation)) addOnce(reason, refusing);
      });
  std::string answer = "none";
  if (result == 0 && code == 0) answer = range.count() == 0 ? "any" : rangeItemsText(range);
  add(rows, "limits", answer, refusing.empty() ? reasons : refusing);
}

void addValue(Transaction& transaction, const StagedValues& judged, std::string_view name,
              Rows& rows) {
  const std::string* const seen = transaction.find(name);
  const std::string value = seen == nullptr ? std::string() : *seen;
  ValueExplanation explained;
  static_cast<void>(explainValue(transaction.database(), judged, name, value, true, explained));
  std::vector<Reason> reasons;
  for (const ValueStep& step : explained.reasons.steps) addOnce(step.reason, reasons);
  if (explained.reasons.acceptedBy) addOnce(*explained.reasons.acceptedBy, reasons);
  add(rows, "value", value, reasons);
}

}  // namespace

std::optional<Rows> reasonRows(Transaction& transaction, const Outlook& outlook,
                               std::string_view name) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  const ParmEntry* const parm = transaction.database().findNamed(name);
  if (parm == nullptr) return std::nullopt;
  const StagedValues& judged = outlook.of(*parm);
  Explanation settled;
  Explanation why;
  Database& database = transaction.database();
  if (explain(database, outlook.values(), name, settled) != EXPLAIN_DONE) return std::nullopt;
  static_cast<void>(explain(database, judged, name, why));  // of the same name
  Rows rows;
  add(rows, "exists", yesOrNo(settled.exists), settled.existence);
  add(rows, "writable", yesOrNo(why.exists && !why.isReadOnly && why.takesAny),
      writableReasons(why));
  addLimits(transaction, name, rows);
  add(rows, "default", why.defaultValue, listOf(why.defaultDecider));
  addValue(transaction, judged, name, rows);
  return rows;
}
