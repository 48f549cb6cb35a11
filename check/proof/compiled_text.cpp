#include "check/proof/compiled_text.h"

#include <map>
#include <set>

#include "check/proof/references.h"

namespace {

// The layouts of a record's statements, by keyword, in the order of the text.
using Layouts = std::map<std::string_view, std::vector<const StatementLayout*>>;

std::unordered_map<const ParameterRecord*, Layouts> layoutsOf(const TextLayout& layout) {
  std::unordered_map<const ParameterRecord*, Layouts> layouts;
  for (const DefinitionLayout& definition : layout.definitions) {
    for (const StatementLayout& statement : definition.statements) {
      layouts[definition.record][statement.keyword].push_back(&statement);
    }
  }
  return layouts;
}

// Each name once.
VariableSources moversOf(const Subject& subject) {
  VariableSources movers;
  std::set<std::string_view> seen;
  for (const auto* statements : {&subject.rangeValid, &subject.ctrlValid}) {
    for (const CompiledStatement& statement : *statements) {
      forEachExpression(statement, [&](const CompiledExpression& expression) {
        for (const VariableSource& source : expression.sources) {
          const bool isNew = source.parm != nullptr && seen.insert(source.name).second;
          if (isNew) movers.emplace_back(source);
        }
      });
    }
  }
  return movers;
}

}  // namespace

std::optional<std::string> constantText(const CompiledExpression& expression) {
  if (expression.program.usesVariables()) return std::nullopt;
  const Value constant = expression.program.evaluate({});
  return constant.valid() ? std::optional(constant.asText()) : std::nullopt;
}

CompiledText::CompiledText(const CheckedText& checked) : checked_(checked) {
  const auto layouts = layoutsOf(checked.text.layout);
  std::set<const ParameterRecord*> seen;
  for (const DefinitionLayout& definition : checked.text.layout.definitions) {
    if (!seen.insert(definition.record).second) continue;
    const auto found = layouts.find(definition.record);
    addSubject(definition, [&](std::string_view keyword) {
      if (found == layouts.end()) return std::vector<const StatementLayout*>();
      const auto statements = found->second.find(keyword);
      return statements == found->second.end() ? std::vector<const StatementLayout*>()
                                               : statements->second;
    });
  }
}

void CompiledText::noteUnbuilt(const ParameterRecord& record) {
  forEachReference(record, [this](std::string_view name) { namedByUnbuilt_.insert(name); });
  isWhole_ = false;
}

const Subject* CompiledText::find(std::string_view name) const {
  const auto found = byName_.find(name);
  return found == byName_.end() ? nullptr : found->second;
}

CompiledExpression CompiledText::compile(const Expression& expression) const {
  CompiledExpression compiled{expression, {}, {}};
  static_cast<void>(Program::compile(expression, compiled.variables, compiled.program));
  compiled.sources.resize(compiled.variables.size());
  // The views in a source are those of the text: the names of `variables` move with it.
  for (const Token& token : expression.tokens) {
    if (token.kind != TOKEN_VARIABLE) continue;
    compiled.sources[*compiled.variables.find(token.text)] = database().findSource(token.text);
  }
  return compiled;
}

CompiledItem CompiledText::compileItem(const RangeItem& item) const {
  CompiledItem compiled{item.at, {}, {}, {}};
  if (item.text) {
    compiled.text = std::string(*item.text);
    return compiled;
  }
  compiled.lower = compile(item.lower);
  if (item.upper) compiled.upper = compile(*item.upper);
  return compiled;
}

CompiledStatement CompiledText::compileCondition(const Expression& condition,
                                                 const StatementLayout* layout) const {
  CompiledStatement compiled{layout};
  if (!condition.empty()) compiled.condition = compile(condition);
  return compiled;
}

void CompiledText::addSubject(const DefinitionLayout& definition,
                              const StatementsOf& statementsOf) {
  const ParameterRecord& record = *definition.record;
  if (record.access == ACCESS_NONE) return;
  Subject& subject = subjects_.emplace_back();
  subject.record = &record;
  subject.at = definition.name;
  subject.parm = database().findParm(record.name);
  subject.index = subject.parm == nullptr ? database().findIndexEntry(record.name) : nullptr;
  if (subject.parm == nullptr && subject.index == nullptr) {
    subjects_.pop_back();
    noteUnbuilt(record);
    return;
  }
  byName_.emplace(record.name, &subject);
  const auto layouts = [&](std::string_view keyword) {
    return [all = statementsOf(keyword), next = size_t{0}]() mutable { return all[next++]; };
  };
  const auto addRanges = [&](const StatementList<RangeStatement>& list, auto next,
                             std::vector<CompiledStatement>& out) {
    for (const RangeStatement& statement : list) {
      out.push_back(compileCondition(statement.condition, next()));
      for (const RangeItem& item : statement.items) out.back().items.push_back(compileItem(item));
    }
  };
  const auto addControls = [&](const StatementList<Expression>& list, auto next,
                               std::vector<CompiledStatement>& out) {
    for (const Expression& condition : list) out.push_back(compileCondition(condition, next()));
  };
  addRanges(record.rangeValid, layouts("rangeValid"), subject.rangeValid);
  addRanges(record.rangeDoc, layouts("rangeDoc"), subject.rangeDoc);
  addControls(record.ctrlRO, layouts("ctrlRO"), subject.ctrlRO);
  addControls(record.ctrlValid, layouts("ctrlValid"), subject.ctrlValid);
  auto next = layouts("default");
  for (const DefaultStatement& statement : record.defaults) {
    subject.defaults.push_back(compileCondition(statement.condition, next()));
    const RangeItem value{statement.at, statement.text, statement.value, {}};
    subject.defaults.back().items.push_back(compileItem(value));
  }
  subject.movers = moversOf(subject);
}
