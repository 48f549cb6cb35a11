#include "doc/device_data.h"

#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/value_limit.h"
#include "base/work.h"
#include "database/plan.h"
#include "deflang/expression/operators.h"
#include "doc/script_json.h"
#include "play/bring_up.h"
#include "play/known_device.h"
#include "srcs/vid_std_figures.h"
#include "vid_std.h"

namespace {

using Json = nlohmann::ordered_json;

// Adds `list` under `name`, unless it is empty.
void addList(Json& object, const char* name, Json list) {
  if (!list.empty()) object[name] = std::move(list);
}

// One number for each thing, in the order in which they come up.
template <typename T>
class Numbers {
 public:
  size_t of(const T& thing) {
    const auto [place, isNew] = numbers_.try_emplace(thing, things_.size());
    if (isNew) things_.push_back(thing);
    return place->second;
  }
  [[nodiscard]] const std::vector<T>& things() const { return things_; }

 private:
  std::map<T, size_t> numbers_;
  std::vector<T> things_;
};

Json stepOf(const Program& program, const Program::Step& step) {
  switch (step.kind) {
    case TOKEN_NUMBER:
      return step.value;
    case TOKEN_STRING:
      return Json::array({charactersOf(program.texts()[static_cast<size_t>(step.value)])});
    case TOKEN_VARIABLE:
      return Json::array({step.value});
    default:
      return operatorText(step.kind);
  }
}

Json dataOf(const Program& program) {
  const std::span<const Program::Step> steps = program.steps();
  if (steps.size() == 1 && steps.front().kind == TOKEN_NUMBER) return steps.front().value;
  Json list = Json::array();
  for (const Program::Step& step : steps) list.push_back(stepOf(program, step));
  return list;
}

Json dataOf(std::span<const Program> programs) {
  Json list = Json::array();
  for (const Program& program : programs) list.push_back(dataOf(program));
  return list;
}

void addCondition(Json& object, const Program& condition) {
  const bool isEver = !condition.usesVariables() && condition.isTrue(SituationView());
  if (!isEver) object["when"] = dataOf(condition);
}

// The text that corrects is the first, whatever the order of the others.
void addBounds(Json& object, const BoundsParm& bounds) {
  Json spans = Json::array();
  for (const auto& [low, high] : bounds.integers().spans()) {
    spans.push_back(low);
    spans.push_back(high);
  }
  addList(object, "spans", std::move(spans));
  const std::string& correction = bounds.strings().correction();
  Json texts = Json::array();
  if (bounds.strings().count() > 0) texts.push_back(charactersOf(correction));
  for (const std::string& text : bounds.strings().texts()) {
    if (text != correction) texts.push_back(charactersOf(text));
  }
  addList(object, "texts", std::move(texts));
}

Json dataOf(const BoundsExpression::Item& item) {
  Json object = Json::object();
  if (item.upper) {
    object["low"] = dataOf(item.lower);
    object["high"] = dataOf(*item.upper);
  } else {
    object[item.quoted ? "quoted" : "value"] = dataOf(item.lower);
  }
  return object;
}

Json dataOf(const ConditionalBounds& range) {
  Json object = Json::object();
  addCondition(object, range.condition);
  if (range.computed == nullptr) {
    addBounds(object, *range.constant);
    return object;
  }
  Json items = Json::array();
  for (const BoundsExpression::Item& item : range.computed->items()) items.push_back(dataOf(item));
  object["items"] = std::move(items);
  return object;
}

Json dataOf(std::span<const ConditionalBounds> ranges) {
  Json list = Json::array();
  for (const ConditionalBounds& range : ranges) list.push_back(dataOf(range));
  return list;
}

Json dataOf(std::span<const ConditionalDefault> defaults) {
  Json list = Json::array();
  for (const ConditionalDefault& candidate : defaults) {
    Json object = Json::object();
    addCondition(object, candidate.condition);
    object["value"] = dataOf(candidate.value);
    list.push_back(std::move(object));
  }
  return list;
}

Json dataOf(const std::map<std::string, std::string>& translations) {
  Json list = Json::array();
  for (const auto& [source, target] : translations) {
    list.push_back({charactersOf(source), charactersOf(target)});
  }
  return list;
}

class DataWriter {
 public:
  explicit DataWriter(Database& database) : database_(database) {}

  Json write() {
    Json parms = Json::array();
    for (const ParmEntry* parm : database_.parmsInNameOrder()) parms.push_back(dataOf(*parm));
    Json indices = Json::array();
    for (const IndexEntry* index : indices_.things()) indices.push_back(dataOf(*index));
    Json data = {{"limits", limits()}};
    addList(data, "constants", constants());
    Json names = Json::array();
    for (const VariableSource* name : names_.things()) names.push_back(dataOf(*name));
    addStandards(data);
    addList(data, "names", std::move(names));
    addList(data, "indices", std::move(indices));
    addList(data, "parms", std::move(parms));
    return data;
  }

 private:
  static Json limits() {
    return {{"value", MAX_VALUE_BYTES},
            {"instances", MAX_PLANNED_INSTANCES},
            {"work", WORK_BUDGET},
            {"known", MAX_KNOWN_INSTANCES},
            {"rounds", BringUp::MOST_ROUNDS}};
  }

  Json constants() {
    Json list = Json::array();
    for (const auto& [name, value] : database_.constants()) {
      constants_.emplace(&value, list.size());
      list.push_back({charactersOf(name), charactersOf(value.text())});
    }
    return list;
  }

  // A row that another row before it hides is selected by no value.
  void addStandards(Json& data) const {
    if (figures_.things().empty()) return;
    Json figures = Json::array();
    for (const vidFigure_t* figure : figures_.things()) figures.push_back(figure->name);
    data["figures"] = std::move(figures);
    Json rows = Json::array();
    const auto add = [&](const char* name) {
      Json row = Json::array({name});
      for (const vidFigure_t* figure : figures_.things()) {
        const std::optional<uint32_t> number = vidStdFigure(name, *figure);
        row.push_back(number ? Json(static_cast<int32_t>(*number)) : Json());
      }
      rows.push_back(std::move(row));
    };
    for (const vidStd_t& standard : vidStds()) {
      if (selectVid(standard.name).standard == &standard) add(standard.name);
    }
    for (const vidFormat_t& format : vidFormats()) {
      if (selectVid(format.name).format == &format) add(format.name);
    }
    data["standards"] = std::move(rows);
  }

  Json dataOf(const VariableSource& source) {
    Json object = Json::object();
    if (source.parm != nullptr) {
      object["parm"] = source.parm->rank;
    } else {
      object["name"] = charactersOf(source.name);
    }
    if (source.constant != nullptr) object["constant"] = constants_.at(source.constant);
    if (source.qualified) {
      Json values = Json::array();
      for (const std::string& value : source.indices) values.push_back(charactersOf(value));
      object["at"] = std::move(values);
    }
    if (source.figure != nullptr) object["figure"] = figures_.of(source.figure);
    return object;
  }

  Json common(const IndexDef& definition, const VariableSources& sources) {
    Json object = {{"name", charactersOf(definition.name())}};
    Json names = Json::array();
    for (const VariableSource& source : sources) names.push_back(names_.of(&source));
    addList(object, "names", std::move(names));
    addList(object, "available", ::dataOf(definition.validityConditions()));
    addBounds(object, definition.baseBounds());
    addList(object, "ranges", ::dataOf(definition.conditionalBounds()));
    addList(object, "changes", ::dataOf(definition.translations()));
    return object;
  }

  Json dataOf(const IndexEntry& entry) {
    Json object = common(*entry.index, entry.sources);
    object["work"] = entry.index->situationWork();
    if (!entry.isShared) object["varied"] = true;
    return object;
  }

  Json dataOf(const ParmEntry& entry) {
    const ParmDef& parm = entry.parm;
    Json object = common(parm, entry.sources);
    object["work"] = workOfInstance(entry);
    object["level"] = entry.level;
    object["mode"] = parm.mode();
    Json indices = Json::array();
    for (const IndexEntry* index : entry.indices->own) indices.push_back(indices_.of(index));
    addList(object, "indices", std::move(indices));
    addList(object, "readOnly", ::dataOf(parm.readOnlyConditions()));
    addList(object, "defaults", ::dataOf(parm.defaults()));
    if (!parm.fallbackDefault().empty()) object["fallback"] = charactersOf(parm.fallbackDefault());
    addList(object, "documented", ::dataOf(parm.documentedRanges()));
    return object;
  }

  Database& database_;
  Numbers<const VariableSource*> names_;
  Numbers<const IndexEntry*> indices_;
  Numbers<const vidFigure_t*> figures_;
  std::map<const ValueText*, size_t> constants_;
};

}  // namespace

Json deviceData(Database& database) { return DataWriter(database).write(); }
