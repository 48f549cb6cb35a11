#include "check/proof/present_value.h"

Value presentValue(const CompiledExpression& expression, const Reader& reader,
                   const StagedValues& staged) {
  Situation situation(expression.variables.size());
  for (uint32_t slot = 0; slot < expression.sources.size(); ++slot) {
    situation.bind(slot, reader.valueOf(expression.sources[slot], staged));
  }
  return expression.program.evaluate(situation);
}
