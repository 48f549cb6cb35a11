#include "ctl/text/output.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "ctl/text/quoted.h"
#include "ctl/text/table.h"

void Output::line(const std::string& text) const {
  if (isQuiet_) return;
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fputc('\n', stdout);
}

void Output::record(const std::string& text) const {
  if (isQuiet_) return;
  std::fwrite(text.c_str(), 1, text.size() + 1, stdout);
}

void Output::text(const std::string& text) const {
  if (form_ == FORM_NULL) return record(text);
  line(quotedLine(text));
}

void Output::assignment(const std::string& name, const std::string& value) const {
  if (form_ == FORM_NULL) return record(name + "=" + value);
  line(quotedAssignment(name, value));
}

void Output::table(const std::vector<std::vector<std::string>>& rows) const {
  bool isHeading = true;
  for (const std::string& text : tableLines(rows)) {
    line(isHeading ? style_.heading(text) : text);
    isHeading = false;
  }
}

void Output::json(const Json& value) const {
  line(value.dump(-1, ' ', false, Json::error_handler_t::replace));
}

Json rangeJson(const InstanceState& state) {
  if (state.is(STATE_NO_LIMITS)) return false;
  if (!state.is(STATE_LIMITED)) return nullptr;
  return {{"spans", state.spans}, {"texts", state.texts}};
}
