// deps: what parameters depend on.
#include <memory>
#include <nlohmann/json.hpp>

#include "ctl/service/exit_status.h"
#include "ctl/text/quoted.h"
#include "ctl/text/sentences.h"
#include "ctl/words/arguments.h"
#include "ctl/words/asked.h"
#include "ctl/words/word.h"

namespace {

void print(const Output& out, const Texts& names, const std::vector<std::optional<Names>>& all) {
  if (out.isJson()) {
    Json json = Json::object();
    for (size_t i = 0; i < names.size(); ++i) {
      if (all[i]) json[names[i]] = *all[i];
    }
    return out.json(json);
  }
  const bool isList = names.size() > 1;
  for (size_t i = 0; i < names.size(); ++i) {
    if (!all[i]) continue;
    if (isList && out.form() == FORM_TEXT) {
      std::string line = out.style().name(quotedWord(names[i])) + ":";
      for (const std::string& each : *all[i]) line += " " + quotedWord(each);
      out.line(line);
      continue;
    }
    for (const std::string& each : *all[i]) {
      if (isList) {
        out.assignment(names[i], each);
      } else {
        out.text(each);
      }
    }
  }
}

int deps(Client& client, const Texts& names) {
  const std::vector<std::optional<Names>> all = client.service.dependencies(names);
  print(client.out, names, all);
  Names unknown;
  for (size_t i = 0; i < names.size(); ++i) {
    if (!all[i]) unknown.push_back(names[i]);
  }
  complainOfUnknown(client, unknown);
  return unknown.empty() ? STATUS_DONE : STATUS_UNKNOWN;
}

}  // namespace

RunWord defineDeps(CLI::App& word) {
  const auto names = std::make_shared<Texts>();
  addTexts(word, "NAME", *names, "Instances, or base names");
  return [names](Client& client) { return deps(client, *names); };
}
