#include "ctl/text/range_text.h"

#include <algorithm>
#include <vector>

#include "base/number.h"
#include "ctl/text/quoted.h"

namespace {

std::string spanText(const Span& span) {
  const std::string low = std::to_string(span.first);
  return span.first == span.second ? low : low + ".." + std::to_string(span.second);
}

}  // namespace

std::string rangeText(const InstanceState& state) {
  if (state.is(STATE_NO_LIMITS)) return "unknown";
  if (!state.is(STATE_LIMITED)) return "any value";
  std::string text;
  const auto add = [&](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
  for (const Span& span : state.spans) add(spanText(span));
  for (const std::string& allowed : state.texts) add(quotedWord(allowed));
  return text.empty() ? "nothing" : text;
}

bool isAllowed(const InstanceState& state, const std::string& value) {
  if (state.is(STATE_NO_LIMITS)) return false;
  if (!state.is(STATE_LIMITED)) return true;
  if (std::ranges::find(state.texts, value) != state.texts.end()) return true;
  const std::optional<int32_t> number = wholeNumber(value);
  if (value.empty() || !number) return false;
  return std::ranges::any_of(state.spans, [&](const Span& span) {
    return span.first <= *number && *number <= span.second;
  });
}
