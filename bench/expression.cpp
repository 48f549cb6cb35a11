// Evaluation of expressions whose variables are bound.
#include <benchmark/benchmark.h>

#include <cassert>
#include <string>

#include "deflang/expression/program.h"
#include "deflang/text/expression_grammar.h"

namespace {

Program compiled(const std::string& text, Variables& variables) {
  const std::string line = "(" + text + ")";
  Arena memory;
  TextCursor cursor(linesIn(line), memory);
  Expression expression;
  const bool isRead = readExpression(cursor, expression);
  Program program;
  const int failed = Program::compile(expression, variables, program);
  assert(isRead && failed == 0);
  return program;
}

void evaluate(benchmark::State& state, const char* text) {
  Variables variables;
  const Program program = compiled(text, variables);
  Situation situation(variables.size());
  const std::string values[] = {"auto", "1080", "9"};
  for (uint32_t slot = 0; slot < variables.size(); ++slot) {
    situation.bind(slot, operandOf(values[slot]));
  }
  while (state.KeepRunning()) benchmark::DoNotOptimize(program.isTrue(situation));
}

BENCHMARK_CAPTURE(evaluate, number, "5");
BENCHMARK_CAPTURE(evaluate, variable, "mode");
BENCHMARK_CAPTURE(evaluate, comparedTexts, "mode == \"auto\"");
BENCHMARK_CAPTURE(evaluate, comparedNumbers, "mode != 1 && lines > 720");
BENCHMARK_CAPTURE(evaluate, arithmetic, "(mode == \"auto\") * (lines - 2 * gain) / 2 + 1");
BENCHMARK_CAPTURE(evaluate, joinedTexts, "mode + lines + gain");

}  // namespace
