#include "ctl/text/output.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "ctl/text/quoted.h"

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

void Output::json(const Json& value) const {
  line(value.dump(-1, ' ', false, Json::error_handler_t::replace));
}

Json rangeJson(const InstanceState& state) {
  if (state.is(STATE_NO_LIMITS)) return false;
  if (!state.is(STATE_LIMITED)) return nullptr;
  return {{"spans", state.spans}, {"texts", state.texts}};
}
