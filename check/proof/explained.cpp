#include "check/proof/explained.h"

#include <algorithm>
#include <map>

namespace {

// Finds the parameters whose values are in doubt.
class Doubts {
 public:
  explicit Doubts(const CompiledText& text) : text_(text) {
    for (const Subject& subject : text.subjects()) {
      for (const CompiledStatement& range : subject.rangeValid) {
        forEachExpression(range, [&](const CompiledExpression& expression) {
          for (const VariableSource& source : expression.sources) note(subject, source);
        });
      }
    }
  }

  void add(const Subject& subject) { open_.push_back(subject.parm); }
  // Adds those that use figures of `selector`.
  void addUsersOf(const ParmEntry* selector) {
    const std::vector<const ParmEntry*>& users = figureUsers_[selector];
    open_.insert(open_.end(), users.begin(), users.end());
  }

  // Those that were added, and what follows them.
  std::set<const ParmEntry*> take() {
    std::set<const ParmEntry*> found;
    while (!open_.empty()) {
      const ParmEntry* const parm = open_.back();
      open_.pop_back();
      if (parm == nullptr || !found.insert(parm).second) continue;
      const std::vector<const ParmEntry*>& followers = followers_[parm];
      open_.insert(open_.end(), followers.begin(), followers.end());
    }
    return found;
  }

 private:
  void note(const Subject& subject, const VariableSource& source) {
    if (source.parm == nullptr || source.parm == subject.parm) return;
    followers_[source.parm].push_back(subject.parm);
    if (source.figure == nullptr) return;
    figureUsers_[source.parm].push_back(subject.parm);
    if (text_.find(source.parm->parm.name())->rangeValid.empty()) add(subject);
  }

  const CompiledText& text_;
  std::map<const ParmEntry*, std::vector<const ParmEntry*>> followers_;
  std::map<const ParmEntry*, std::vector<const ParmEntry*>> figureUsers_;
  std::vector<const ParmEntry*> open_;
};

bool isSame(const Token& a, const Token& b) {
  return a.kind == b.kind && a.number == b.number && a.text == b.text;
}

}  // namespace

Explained::Explained(const ExplainedPlaces& explainedPlaces, const CompiledText& text,
                     const Findings& findings)
    : places(explainedPlaces) {
  std::set<std::pair<uint32_t, uint32_t>> misspelt;
  for (const Finding& finding : findings.all()) {
    if (finding.code == "unknown-standard") misspelt.emplace(finding.at.line, finding.at.column);
  }
  Doubts doubts(text);
  for (const Subject& subject : text.subjects()) {
    if (explains(subject.rangeValid) || explainedText(subject) != nullptr) doubts.add(subject);
    for (const CompiledStatement& range : subject.rangeValid) {
      for (const CompiledItem& item : range.items) {
        if (!misspelt.contains({item.at.line, item.at.column})) continue;
        misspelt_.insert(subject.parm);
        doubts.addUsersOf(subject.parm);
      }
    }
  }
  doubtful_ = doubts.take();
}

bool Explained::explains(const CompiledExpression& expression) const {
  return places.explains(expression.expression) ||
         std::ranges::any_of(expression.sources, [this](const VariableSource& source) {
           return doubtful_.contains(source.parm);
         });
}

bool Explained::explains(const CompiledStatement& statement) const {
  bool isExplained = false;
  forEachExpression(statement, [&](const CompiledExpression& expression) {
    isExplained = isExplained || explains(expression);
  });
  return isExplained;
}

bool Explained::explains(const std::vector<CompiledStatement>& statements) const {
  return std::ranges::any_of(
      statements, [this](const CompiledStatement& statement) { return explains(statement); });
}

bool Explained::usesMisspelt(const CompiledExpression& expression) const {
  return std::ranges::any_of(expression.sources, [this](const VariableSource& source) {
    return source.figure != nullptr && misspelt_.contains(source.parm);
  });
}

const CompiledItem* Explained::explainedText(const Subject& subject,
                                             std::optional<std::string_view> text) const {
  for (const CompiledStatement& range : subject.rangeValid) {
    for (const CompiledItem& item : range.items) {
      if (item.text && (!text || item.text == text) && places.contains(item.at)) return &item;
    }
  }
  return nullptr;
}

bool isRepeated(const CompiledStatement& statement,
                const std::vector<CompiledStatement>& statements) {
  if (!statement.condition) return false;
  for (const CompiledStatement& earlier : statements) {
    if (&earlier == &statement) return false;
    if (!earlier.condition) continue;
    if (std::ranges::equal(earlier.condition->expression.tokens,
                           statement.condition->expression.tokens, isSame)) {
      return true;
    }
  }
  return false;
}
