#include "sw/parm/build/reference_check.h"

#include <cstddef>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "deflang/expression/variables.h"
#include "deflang/expression/vid_std_name.h"
#include "sw/parm/parm_name.h"

namespace {

class ReferenceCheck {
 public:
  ReferenceCheck(const ParameterRecord& record, BuildContext& context)
      : context_(context), mayNameEveryIndex_(record.access == ACCESS_INDEX) {
    for (const IndexName& index : firstIndexStatement(record)) ownIndices_.insert(index.name);
  }

  void check(const Expression& expression) {
    Variables seen;
    for (const Token& token : expression.tokens) {
      if (token.kind != TOKEN_VARIABLE) continue;
      const size_t before = seen.size();
      seen.intern(token.text);
      if (seen.size() > before) checkName(token);
    }
  }

 private:
  static const IndexStatement& firstIndexStatement(const ParameterRecord& record) {
    static const IndexStatement none;
    return record.indices.empty() ? none : record.indices.front();
  }

  void checkName(const Token& token) {
    const std::string_view name = referencedName(token.text);
    if (name == THIS_VALUE) return;
    const ParameterRecord* const named = context_.findRecord(baseName(name));
    if (named != nullptr) {
      if (!fits(splitName(name).indices, *named)) {
        context_.report(SEVERITY_ERROR, DIAG_INDEX_MISMATCH, token.at, {});
      }
    } else if (context_.findConstant(name) == nullptr) {
      context_.report(SEVERITY_ERROR, DIAG_UNDEFINED_VARIABLE, token.at, std::string(token.text));
    }
  }

  [[nodiscard]] bool fits(const IndexTuple& values, const ParameterRecord& named) {
    if (named.access == ACCESS_INDEX) {
      return values.empty() && (mayNameEveryIndex_ || ownIndices_.contains(named.name));
    }
    // A parameter's bare name means the instance that shares the index values.
    if (values.empty()) return true;
    // A wrong number of them is told without a look at the indices, of which there may be many.
    return values.size() == firstIndexStatement(named).size() &&
           fitIndices(indicesOf(named), values);
  }

  // An index that is missing has been reported where it is listed; here it is null.
  [[nodiscard]] std::vector<const IndexDef*> indicesOf(const ParameterRecord& record) const {
    std::vector<const IndexDef*> indices;
    for (const IndexName& index : firstIndexStatement(record)) {
      indices.push_back(context_.registry().findIndex(index.name));
    }
    return indices;
  }

  BuildContext& context_;
  bool mayNameEveryIndex_;
  std::unordered_set<std::string_view> ownIndices_;
};

}  // namespace

void checkReferences(const ParameterRecord& record,
                     const std::vector<const Expression*>& expressions, BuildContext& context) {
  if (expressions.empty()) return;
  ReferenceCheck references(record, context);
  for (const Expression* expression : expressions) references.check(*expression);
}
