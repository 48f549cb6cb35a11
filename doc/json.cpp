#include "doc/json.h"

#include "check/report_json_text.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr int VERSION = 1;

// One object for each element of a list.
template <typename T, typename Write>
Json listOf(const std::vector<T>& list, const Write& write) {
  Json json = Json::array();
  for (const T& element : list) json.push_back(write(element));
  return json;
}

Json jsonOf(const DocStatement& statement) {
  return {{"line", statement.line}, {"statement", statement.text}};
}

// A member that is left out where the sentence is empty.
void addSentence(Json& json, const char* member, const Sentence& sentence) {
  if (!sentence.empty()) json[member] = plainText(sentence);
}

Json itemJson(const DocItem& item) {
  if (item.span) return {{"low", item.span->first}, {"high", item.span->second}};
  if (item.text) return {{"text", *item.text}};
  Json json;
  addSentence(json, item.upper.empty() ? "value" : "from", item.lower);
  addSentence(json, "to", item.upper);
  return json;
}

Json rangeJson(const DocRange& range) {
  Json json = jsonOf(range.statement);
  addSentence(json, "condition", range.condition);
  json["items"] = listOf(range.items, itemJson);
  return json;
}

Json conditionJson(const DocCondition& condition) {
  Json json = jsonOf(condition.statement);
  addSentence(json, "condition", condition.sentence);
  return json;
}

Json defaultJson(const DocDefault& one) {
  Json json = jsonOf(one.statement);
  addSentence(json, "condition", one.condition);
  const bool isConstant = one.value.size() == 1 && one.value.front().kind != PART_OF_NAME;
  if (isConstant) {
    json["constant"] = one.value.front().text;
  } else {
    addSentence(json, "value", one.value);
  }
  return json;
}

Json replacementJson(const DocReplacement& one) {
  Json json = jsonOf(one.statement);
  json["source"] = one.source;
  json["target"] = one.target;
  return json;
}

Json definitionJson(const DocDefinition& definition) {
  Json json = {{"name", definition.name},
               {"line", definition.line},
               {"description", definition.description}};
  if (!definition.section.empty()) json["section"] = definition.section;
  json["available"] = listOf(definition.available, conditionJson);
  json["ranges"] = listOf(definition.ranges, rangeJson);
  json["replacements"] = listOf(definition.replacements, replacementJson);
  json["follows"] = definition.follows;
  json["standards"] = definition.standards;
  return json;
}

Json parameterJson(const DocParameter& parameter) {
  Json json = definitionJson(parameter);
  json["access"] = parameter.access;
  json["level"] = parameter.level;
  json["never"] = parameter.isNever;
  json["indices"] = parameter.indices;
  json["menus"] = listOf(parameter.menus, rangeJson);
  json["defaults"] = listOf(parameter.defaults, defaultJson);
  json["readOnly"] = listOf(parameter.readOnly, conditionJson);
  json["followedBy"] = parameter.followedBy;
  return json;
}

Json indexJson(const DocIndex& index) {
  Json json = definitionJson(index);
  json["parameters"] = index.parameters;
  return json;
}

Json cellJson(const DocStandardCell& cell) {
  if (!cell.exists) return nullptr;
  Json json = {{"default", cell.value}};
  if (!cell.hasRange) return json;
  json["spans"] = listOf(cell.spans, [](const Span& span) {
    return Json::array({span.first, span.second});
  });
  json["texts"] = cell.texts;
  if (cell.isCut) json["cut"] = true;
  return json;
}

Json standardsJson(const DocStandards& standards) {
  const auto row = [](const DocStandardRow& one) {
    return Json{{"parameter", one.parameter},
                {"instances", one.instances},
                {"cells", listOf(one.cells, cellJson)}};
  };
  return {{"selector", standards.selector},
          {"standards", standards.standards},
          {"rows", listOf(standards.rows, row)}};
}

}  // namespace

std::string jsonText(const DocModel& model) {
  const auto constant = [](const DocConstant& one) {
    return Json{{"name", one.name}, {"value", one.value}};
  };
  return jsonText(Json{{"version", VERSION},
                       {"title", model.title},
                       {"file", model.file},
                       {"constants", listOf(model.constants, constant)},
                       {"parameters", listOf(model.parameters, parameterJson)},
                       {"indices", listOf(model.indices, indexJson)},
                       {"standards", listOf(model.standards, standardsJson)}});
}
