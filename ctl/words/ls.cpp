// ls: what there is.
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "ctl/service/exit_status.h"
#include "ctl/text/assignment.h"
#include "ctl/text/quoted.h"
#include "ctl/text/range_text.h"
#include "ctl/text/sentences.h"
#include "ctl/text/suggestion.h"
#include "ctl/words/arguments.h"
#include "ctl/words/word.h"

namespace {

struct LsArguments {
  std::string pattern;
  bool isLong = false;
  bool hasInstances = false;
};

// A row of the list: a parameter, an index, or an instance of a parameter.
struct Row {
  ListedParameter parameter;
  std::string shown;                          // its name, or that of the instance
  std::optional<InstanceState> state = {};    // of the instance, or of the first of the parameter
  std::optional<std::string> byDefault = {};  // of that instance
};

Names namesOf(const std::vector<ListedParameter>& listed) {
  Names names;
  for (const ListedParameter& parameter : listed) {
    if (!parameter.isIndex()) names.push_back(parameter.name);
  }
  return names;
}

// The instances that exist, by their parameter. No names would be all of them.
std::multimap<std::string, std::string> instancesOf(Client& client,
                                                    const std::vector<ListedParameter>& listed) {
  std::multimap<std::string, std::string> instances;
  const Names names = namesOf(listed);
  if (names.empty()) return instances;
  for (std::string& name : client.service.instances(COMMITTED, names)) {
    std::string base(baseOf(name));
    instances.emplace(std::move(base), std::move(name));
  }
  return instances;
}

std::vector<Row> rowsOf(const std::vector<ListedParameter>& listed,
                        const std::multimap<std::string, std::string>& instances,
                        const LsArguments& arguments) {
  std::vector<Row> rows;
  for (const ListedParameter& parameter : listed) {
    const auto [begin, end] = instances.equal_range(parameter.name);
    if (!arguments.hasInstances) {
      rows.push_back({.parameter = parameter, .shown = parameter.name});
      if (begin != end) rows.back().state = InstanceState{.name = begin->second};
      continue;
    }
    for (auto each = begin; each != end; ++each) {
      rows.push_back({.parameter = parameter, .shown = each->second});
      rows.back().state = InstanceState{.name = each->second};
    }
  }
  return rows;
}

// Asks for what the indices take.
void completeIndices(Client& client, std::vector<Row>& rows) {
  std::vector<Row*> asked;
  Names names;
  for (Row& row : rows) {
    if (!row.parameter.isIndex()) continue;
    asked.push_back(&row);
    names.push_back(row.parameter.name);
  }
  if (names.empty()) return;
  const OwnTransaction transaction(client.service);
  const auto ranges = client.service.indexRanges(transaction.id(), names);
  for (size_t i = 0; i < asked.size(); ++i) asked[i]->state = ranges[i];
}

// Asks for what a long list tells.
void complete(Client& client, std::vector<Row>& rows) {
  std::vector<Row*> asked;
  Names names;
  for (Row& row : rows) {
    if (!row.state) continue;
    asked.push_back(&row);
    names.push_back(row.state->name);
  }
  if (names.empty()) return;
  const std::vector<InstanceState> states = client.service.states(COMMITTED, names);
  const auto reasons = client.service.explain(COMMITTED, names);
  for (size_t i = 0; i < asked.size(); ++i) {
    asked[i]->state = states[i];
    const std::vector<Reason> defaults = answersTo(reasons[i], "default");
    if (!defaults.empty() && defaults.front().line != 0) {
      asked[i]->byDefault = defaults.front().answer;
    }
  }
}

Json jsonOf(const Row& row, const LsArguments& arguments) {
  Json json = {{"name", row.shown},
               {"access", row.parameter.access},
               {"indices", row.parameter.indices},
               {"line", row.parameter.line},
               {"level", row.parameter.level}};
  if (!arguments.isLong) return json;
  json["range"] = row.state ? rangeJson(*row.state) : Json(false);
  if (row.byDefault) json["default"] = *row.byDefault;
  if (arguments.hasInstances && row.state) {
    json["value"] = row.state->value;
    json["writable"] = row.state->is(STATE_WRITABLE);
  }
  return json;
}

// A control that is greyed out is found by its access: what a client could set, but not now.
std::string accessText(const Row& row, const LsArguments& arguments) {
  const std::string& access = row.parameter.access;
  const bool isLocked = row.parameter.canBeSet() && row.state && !row.state->is(STATE_WRITABLE);
  return arguments.hasInstances && isLocked ? access + " (not now)" : access;
}

std::vector<std::string> cellsOf(const Row& row, const LsArguments& arguments) {
  const std::string shown = arguments.hasInstances ? row.shown : shapeOf(row.parameter);
  std::vector<std::string> cells = {accessText(row, arguments), quotedWord(shown)};
  if (arguments.hasInstances) cells.push_back(row.state ? quotedWord(row.state->value) : "");
  cells.push_back(row.state ? rangeText(*row.state) : "-");
  cells.push_back(row.byDefault ? quotedWord(*row.byDefault) : "-");
  cells.push_back(std::to_string(row.parameter.line));
  return cells;
}

void printTable(const Output& out, const std::vector<Row>& rows, const LsArguments& arguments) {
  std::vector<std::vector<std::string>> cells = {{"ACCESS", "NAME", "RANGE", "DEFAULT", "LINE"}};
  if (arguments.hasInstances) cells.front().insert(cells.front().begin() + 2, "VALUE");
  for (const Row& row : rows) cells.push_back(cellsOf(row, arguments));
  out.table(cells);
}

void print(const Output& out, const std::vector<Row>& rows, const LsArguments& arguments) {
  if (out.isJson()) {
    Json json = Json::array();
    for (const Row& row : rows) json.push_back(jsonOf(row, arguments));
    return out.json(json);
  }
  if (arguments.isLong && out.form() == FORM_TEXT) return printTable(out, rows, arguments);
  for (const Row& row : rows) out.text(row.shown);
}

int ls(Client& client, const LsArguments& arguments) {
  const std::vector<ListedParameter> listed = client.service.list(arguments.pattern);
  if (listed.empty() && !arguments.pattern.empty()) {
    complain(unknownNameText(arguments.pattern, client.service.list("")));
    return STATUS_UNKNOWN;
  }
  std::multimap<std::string, std::string> instances;
  if (arguments.hasInstances || arguments.isLong) instances = instancesOf(client, listed);
  std::vector<Row> rows = rowsOf(listed, instances, arguments);
  if (arguments.isLong) {
    complete(client, rows);
    completeIndices(client, rows);
  }
  print(client.out, rows, arguments);
  return STATUS_DONE;
}

}  // namespace

RunWord defineLs(CLI::App& word) {
  const auto arguments = std::make_shared<LsArguments>();
  addText(word, "PATTERN", arguments->pattern,
          "Only names that fit it, with * ? [...] as in a shell");
  word.add_flag("-l,--long", arguments->isLong, "With access, range, default and line");
  word.add_flag("-i,--instances", arguments->hasInstances, "The instances that exist now");
  return [arguments](Client& client) { return ls(client, *arguments); };
}
