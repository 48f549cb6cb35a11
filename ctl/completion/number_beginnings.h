// Number beginnings: the integers of spans that begin with what is typed, found without going
// through the spans.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ctl/service/answers.h"

/// How many integers of the spans, which share none, begin with `text` where they are written in
/// decimal.
uint64_t countNumbers(const std::vector<Span>& spans, const std::string& text);

/// Those integers, ascending. There should not be many.
std::vector<std::string> numbersFrom(const std::vector<Span>& spans, const std::string& text);

/// What they begin with: `text` where it is one of them, and `text` with one more sign. At most 12.
std::vector<std::string> numberBeginnings(const std::vector<Span>& spans, const std::string& text);
