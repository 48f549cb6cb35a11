#include "check/finding_codes.h"

#include <algorithm>

namespace {

constexpr FindingCode CODES[] = {
    {"builder", LEVEL_ERROR, "the daemon refuses the text", ""},
    {"syntax", LEVEL_ERROR, "the text is not well formed", ""},
};

}  // namespace

std::span<const FindingCode> findingCodes() { return CODES; }

const FindingCode* findFindingCode(std::string_view name) {
  const auto found = std::ranges::find(CODES, name, &FindingCode::name);
  return found == std::end(CODES) ? nullptr : found;
}
