#include "doc/make_model.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/number.h"
#include "check/printable.h"
#include "doc/description.h"
#include "sw/parm/statement_text.h"

namespace {

Sentence shown(Sentence sentence) {
  for (SentencePart& part : sentence) part.text = printable(part.text);
  return sentence;
}

Sentence constantSentence(const std::string& value) {
  const std::optional<int32_t> number = wholeNumber(value);
  const bool isNumber = number && numberText(*number) == value;
  return {{isNumber ? PART_OF_NUMBER : PART_OF_TEXT, printable(value)}};
}

std::vector<DocItem> constantItems(const BoundsParm& bounds) {
  std::vector<DocItem> items;
  for (const Span& span : bounds.integers().spans()) items.push_back({.span = span});
  const BoundsString& strings = bounds.strings();
  if (strings.texts().empty()) return items;
  // What a wrong text becomes is first.
  items.push_back({.text = printable(strings.correction())});
  for (const std::string& text : strings.texts()) {
    if (text != strings.correction()) items.push_back({.text = printable(text)});
  }
  return items;
}

// What one definition of the engine says, statement by statement.
class DefinitionReader {
 public:
  DefinitionReader(const IndexDef& definition, StatementsOfDefinition lines)
      : definition_(definition), variables_(definition.variables()), lines_(std::move(lines)) {}

  void read(DocDefinition& out) const {
    out.name = printable(definition_.name());
    out.line = lines_.definition;
    const std::span<const Program> validity = definition_.validityConditions();
    for (size_t i = 0; i < validity.size(); ++i) {
      out.available.push_back(condition("ctrlValid", lines_.validity[i].line, validity[i]));
    }
    out.ranges = ranges("rangeValid", definition_.conditionalBounds(), lines_.ranges);
    const BoundsParm& base = definition_.baseBounds();
    if (base.count() > 0) {
      out.ranges.push_back(
          {statement(lines_.base.line, baseText(base)), Sentence(), constantItems(base)});
    }
    size_t place = 0;
    for (const auto& [source, target] : definition_.translations()) {
      out.replacements.push_back(
          {statement(lines_.translations[place++].line, translationText(source, target)),
           printable(source), printable(target)});
    }
  }

  void read(const ParmDef& parm, DocParameter& out) const {
    read(out);
    out.isNever = parm.mode() == MODE_NEVER;
    out.menus = ranges("rangeDoc", parm.documentedRanges(), lines_.documented);
    for (size_t i = 0; i < parm.defaults().size(); ++i) {
      const auto& [condition, value] = parm.defaults()[i];
      out.defaults.push_back(
          {statement(lines_.defaults[i].line, defaultText(condition, value, variables_)),
           sentence(condition), shown(valueSentence(value, variables_))});
    }
    if (lines_.fallback.line != 0) {
      const std::string& value = parm.fallbackDefault();
      out.defaults.push_back({statement(lines_.fallback.line, fallbackText(value)), Sentence(),
                              constantSentence(value)});
    }
    // What the access word says already needs no condition.
    if (out.access == "ro" || out.access == "rostrict") return;
    const std::span<const Program> readOnly = parm.readOnlyConditions();
    for (size_t i = 0; i < readOnly.size(); ++i) {
      out.readOnly.push_back(condition("ctrlRO", lines_.readOnly[i].line, readOnly[i]));
    }
  }

 private:
  static DocStatement statement(uint32_t line, const std::string& text) {
    return {line, printable(text)};
  }
  [[nodiscard]] Sentence sentence(const Program& condition) const {
    return shown(conditionSentence(condition, variables_));
  }
  [[nodiscard]] DocCondition condition(std::string_view keyword, uint32_t line,
                                       const Program& condition) const {
    return {statement(line, controlText(keyword, condition, variables_)), sentence(condition)};
  }

  [[nodiscard]] std::vector<DocRange> ranges(std::string_view keyword,
                                             std::span<const ConditionalBounds> list,
                                             const StatementsOfDefinition::List& lines) const {
    std::vector<DocRange> ranges;
    for (size_t i = 0; i < list.size(); ++i) {
      const ConditionalBounds& bounds = list[i];
      ranges.push_back({statement(lines[i].line, rangeText(keyword, bounds, variables_)),
                        sentence(bounds.condition), items(bounds)});
    }
    return ranges;
  }

  [[nodiscard]] std::vector<DocItem> items(const ConditionalBounds& bounds) const {
    if (bounds.computed == nullptr) return constantItems(*bounds.constant);
    std::vector<DocItem> items;
    for (const BoundsExpression::Item& item : bounds.computed->items()) {
      items.push_back(computedItem(item));
    }
    return items;
  }

  [[nodiscard]] DocItem computedItem(const BoundsExpression::Item& item) const {
    DocItem result;
    result.lower = shown(valueSentence(item.lower, variables_));
    if (item.upper) result.upper = shown(valueSentence(*item.upper, variables_));
    return result;
  }

  const IndexDef& definition_;
  const Variables& variables_;
  const StatementsOfDefinition lines_;
};

// The parameters that expressions name, and those of them that select a standard.
struct Followed {
  std::set<std::string> names;
  std::set<std::string> standards;

  void add(const VariableSources& sources) {
    for (const VariableSource& source : sources) {
      if (source.parm == nullptr) continue;
      names.insert(printable(source.parm->parm.name()));
      if (source.figure != nullptr) standards.insert(printable(source.parm->parm.name()));
    }
  }
  void writeTo(DocDefinition& definition) const {
    definition.follows.assign(names.begin(), names.end());
    definition.standards.assign(standards.begin(), standards.end());
  }
};

// Goes through the definitions in the order of the text.
class ModelMaker {
 public:
  ModelMaker(const SourceText& source, const ReadText& text, Database& database)
      : database_(database), layout_(text.layout), descriptions_(describe(source, text.layout)) {}

  DocModel make() {
    std::set<const ParameterRecord*> known;
    for (const DefinitionLayout& definition : layout_.definitions) {
      const ParameterRecord& record = *definition.record;
      if (!known.insert(&record).second) continue;
      if (record.access == ACCESS_INDEX) {
        addIndex(record);
      } else if (ParmEntry* const entry = database_.findParm(record.name)) {
        addParameter(record, *entry);
      }
    }
    for (DocParameter& parameter : model_.parameters) {
      for (const std::string& name : parameter.follows) {
        const auto place = model_.places.find(name);
        if (place == model_.places.end()) continue;
        model_.parameters[place->second].followedBy.push_back(parameter.name);
      }
    }
    for (DocParameter& parameter : model_.parameters) std::ranges::sort(parameter.followedBy);
    return std::move(model_);
  }

 private:
  void addDescription(const ParameterRecord& record, DocDefinition& out) const {
    const Description& description = descriptions_.at(&record);
    for (const std::string& paragraph : description.paragraphs) {
      out.description.push_back(printable(paragraph));
    }
    out.section = printable(description.section);
  }

  void addIndex(const ParameterRecord& record) {
    IndexEntry* const entry = database_.findIndexEntry(record.name);
    if (entry == nullptr) return;
    DocIndex index;
    DefinitionReader(*entry->index, database_.statementsOf(*entry)).read(index);
    addDescription(record, index);
    Followed followed;
    followed.add(entry->sources);
    followed.writeTo(index);
    for (const ParmEntry* parm : entry->dependents) {
      index.parameters.push_back(printable(parm->parm.name()));
    }
    model_.indexPlaces.emplace(index.name, model_.indices.size());
    model_.indices.push_back(std::move(index));
  }

  void addParameter(const ParameterRecord& record, const ParmEntry& entry) {
    DocParameter parameter;
    parameter.access = accessText(entry.parm.access());
    DefinitionReader(entry.parm, database_.statementsOf(entry)).read(entry.parm, parameter);
    addDescription(record, parameter);
    parameter.level = entry.level;
    Followed followed;
    followed.add(entry.sources);
    for (const IndexEntry* index : entry.indices->own) {
      parameter.indices.push_back(printable(index->index->name()));
      followed.add(index->sources);
    }
    followed.writeTo(parameter);
    model_.places.emplace(parameter.name, model_.parameters.size());
    model_.parameters.push_back(std::move(parameter));
  }

  Database& database_;
  const TextLayout& layout_;
  const std::map<const ParameterRecord*, Description> descriptions_;
  DocModel model_;
};

}  // namespace

DocModel makeModel(const SourceText& source, const ReadText& text, const Variant& variant,
                   const std::string& title) {
  DocModel model = ModelMaker(source, text, *variant.database).make();
  model.title = printable(title);
  model.file = printable(source.name());
  for (const auto& [name, value] : variant.constants) {
    model.constants.push_back({printable(name), printable(value)});
  }
  return model;
}
