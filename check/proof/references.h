// References: which names a definition uses.
#pragma once

#include "check/text/record_expressions.h"
#include "deflang/expression/vid_std_name.h"
#include "sw/parm/parm_name.h"

/// Calls `visit` with the base name of each parameter, index or constant that `record` names, as
/// often as it does.
template <typename Visit>
void forEachReference(const ParameterRecord& record, const Visit& visit) {
  for (const IndexStatement& statement : record.indices) {
    for (const IndexName& index : statement) visit(index.name);
  }
  forEachExpression(record, [&](const Expression& expression) {
    for (const Token& token : expression.tokens) {
      if (token.kind == TOKEN_VARIABLE) visit(baseName(referencedName(token.text)));
    }
  });
}
