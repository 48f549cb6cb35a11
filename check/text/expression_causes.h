// Expression causes: why an expression is not well formed, or never has a value.
#pragma once

#include "check/text/finding.h"
#include "check/text/text_facts.h"

/// What is wrong with `expression`, which the engine refuses at `at`.
Finding causeOfInvalidExpression(const TextFacts& facts, const Expression& expression, Position at);
