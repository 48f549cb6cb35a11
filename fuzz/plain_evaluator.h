// The plain evaluator: a second reading of the rules for expressions, which the first is held
// against. It works on the tokens as they were read, by recursion, and shares no code with the
// first.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "deflang/expression/token.h"

/// A number or a text; nullopt where there is no value.
using PlainValue = std::optional<std::variant<int32_t, std::string>>;

/// Names and value texts.
using PlainVariables = std::map<std::string, std::string, std::less<>>;

struct PlainResult {
  int failedAt;      ///< 0 when well formed, -1 when empty, else the position (from 1) of the fault
  PlainValue value;  ///< of a well-formed expression
};

/// Whether parentheses nest too deep for evaluatePlainly, which recurs with them.
bool nestsTooDeep(std::span<const Token> tokens);

PlainResult evaluatePlainly(std::span<const Token> tokens, const PlainVariables& variables);
