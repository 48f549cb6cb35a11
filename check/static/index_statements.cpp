#include "check/static/static_checks.h"

namespace {

// A kind of statement that an index may have and nobody reads.
struct PassedOver {
  std::string_view keyword;
  const char* why;
};

constexpr PassedOver KINDS[] = {
    {"default", "an index holds no value, so its default is passed over"},
    {"ctrlRO", "an index is never written, so its ctrlRO is passed over"},
    {"rangeDoc", "an index query answers rangeValid, so the rangeDoc of an index is passed over"},
};

size_t countOf(const ParameterRecord& record, std::string_view keyword) {
  if (keyword == "default") return record.defaults.size();
  return keyword == "ctrlRO" ? record.ctrlRO.size() : record.rangeDoc.size();
}

}  // namespace

void checkIndexStatements(StaticContext& context) {
  for (const NamedDefinition& definition : context.definitions()) {
    if (!definition.isIndex()) continue;
    for (const PassedOver& kind : KINDS) {
      if (countOf(*definition.record, kind.keyword) == 0) continue;
      context.add({"indexed-index", definition.keyword(kind.keyword, 0),
                   std::string(kind.why) + "; give it to the parameters that have the index"});
    }
  }
}
