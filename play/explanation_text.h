// Explanations in words: why an instance is as it is, and what becomes of a value.
#pragma once

#include <string>
#include <vector>

#include "database/transaction.h"

/// Sentences about the instance `name` as `transaction` sees it: whether it exists and may be
/// written, its range and its default, each with the statement that decided. One sentence where
/// there is no such instance. May raise WorkExceeded.
std::vector<std::string> explanationLines(Transaction& transaction, const std::string& name);
/// Sentences about what becomes of `value` when a client writes it to the instance `name`.
std::vector<std::string> explanationLines(Transaction& transaction, const std::string& name,
                                          const std::string& value);
