#include "compare/definitions.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "base/nearest_word.h"
#include "play/device.h"
#include "play/known_device.h"
#include "play/session_words.h"

namespace {

using Texts = std::vector<std::string>;

// A definition as far as names, access and indices go.
struct Face {
  uint32_t line = 0;
  std::string access;                                // "index" of an index
  Texts indices = {};                                // of a parameter
  std::optional<std::set<std::string>> values = {};  // of an index, unless these are very many
  std::string statements = {};
};
using Faces = std::map<std::string, Face>;

void addStatements(const DocDefinition& definition, std::string& text) {
  const auto add = [&](const DocStatement& statement) { text += statement.text + "\n"; };
  for (const DocCondition& condition : definition.available) add(condition.statement);
  for (const DocRange& range : definition.ranges) add(range.statement);
  for (const DocReplacement& replacement : definition.replacements) add(replacement.statement);
}

std::optional<std::set<std::string>> constantValues(const DocDefinition& definition) {
  NamedRange values;
  for (const DocRange& range : definition.ranges) {
    for (const DocItem& item : range.items) {
      if (item.span) values.spans.push_back(*item.span);
      if (item.text) values.texts.push_back(*item.text);
    }
  }
  if (countValues(values) > MAX_KNOWN_INSTANCES) return {};
  const Texts all = valuesOf(values);
  return std::set<std::string>(all.begin(), all.end());
}

Faces facesOf(const DocModel& model) {
  Faces faces;
  for (const DocIndex& index : model.indices) {
    Face face = {index.line, "index", {}, constantValues(index)};
    addStatements(index, face.statements);
    faces.emplace(index.name, std::move(face));
  }
  for (const DocParameter& parameter : model.parameters) {
    Face face = {parameter.line, parameter.access, parameter.indices};
    addStatements(parameter, face.statements);
    for (const DocDefault& fallback : parameter.defaults) {
      face.statements += fallback.statement.text + "\n";
    }
    for (const DocCondition& condition : parameter.readOnly) {
      face.statements += condition.statement.text + "\n";
    }
    faces.emplace(parameter.name, std::move(face));
  }
  return faces;
}

std::string bracketed(const Texts& indices) {
  std::string text;
  for (const std::string& index : indices) text += "[" + index + "]";
  return text.empty() ? "no indices" : text;
}

std::string listed(const std::set<std::string>& values) {
  constexpr size_t MOST = 8;
  std::string text;
  size_t count = 0;
  for (const std::string& value : values) {
    if (++count > MOST) return text + ", ...";
    text += (text.empty() ? "" : ", ") + spelledWord(value);
  }
  return text;
}

std::set<std::string> without(const std::set<std::string>& values,
                              const std::set<std::string>& others) {
  std::set<std::string> left;
  std::ranges::set_difference(values, others, std::inserter(left, left.end()));
  return left;
}

// Whether clients of the one access can go on with the other: write, and be told.
bool isAsGood(std::string_view old, std::string_view now) {
  const auto rank = [](std::string_view access) {
    constexpr std::string_view ASCENDING[] = {"rostrict", "ro", "rw", "wo"};
    return std::ranges::find(ASCENDING, access) - ASCENDING;
  };
  return rank(now) >= rank(old);
}

class DefinitionComparison {
 public:
  DefinitionComparison(const DocModel& old, const DocModel& now, Differences& differences)
      : old_(facesOf(old)), now_(facesOf(now)), differences_(differences) {}

  void run() {
    for (const auto& [name, face] : old_) {
      const auto found = now_.find(name);
      if (found == now_.end()) {
        addGone(name, face);
      } else {
        compare(name, face, found->second);
      }
    }
    for (const auto& [name, face] : now_) {
      if (old_.contains(name)) continue;
      const auto before = renamed_.find(name);
      add(false, name, face,
          before == renamed_.end() ? " is new" : " is new; perhaps it was " + before->second);
    }
  }

 private:
  void add(bool isIncompatible, const std::string& name, const Face& face, std::string text) {
    differences_.push_back({isIncompatible, DIFFERENCE_IN_NEW, face.line, name, std::move(text)});
  }

  void addGone(const std::string& name, const Face& face) {
    const std::optional<std::string> other = otherName(name, face);
    if (other) renamed_[*other] = name;
    differences_.push_back({true, DIFFERENCE_IN_OLD, face.line, name,
                            other ? " is gone; perhaps it is " + *other + " now" : " is gone"});
  }

  // A new definition that says the same, or is of the same kind with nearly the same name.
  [[nodiscard]] std::optional<std::string> otherName(const std::string& name,
                                                     const Face& face) const {
    NearestWord nearest(name);
    std::optional<std::string> same;
    for (const auto& [other, candidate] : now_) {
      const bool isKind = candidate.access == face.access && candidate.indices == face.indices;
      if (!isKind || old_.contains(other) || renamed_.contains(other)) continue;
      nearest.offer(other);
      if (!same && !face.statements.empty() && candidate.statements == face.statements) {
        same = other;
      }
    }
    if (nearest.found()) return std::string(*nearest.found());
    return same;
  }

  void compare(const std::string& name, const Face& old, const Face& now) {
    if ((old.access == "index") != (now.access == "index")) {
      return add(true, name, now,
                 now.access == "index" ? " is an index, and was a parameter"
                                       : " is a parameter, and was an index");
    }
    if (old.access == "index") return compareValues(name, old, now);
    if (old.access != now.access) {
      add(!isAsGood(old.access, now.access), name, now,
          " is \"" + now.access + "\", and was \"" + old.access + "\"");
    }
    if (old.indices != now.indices) {
      add(true, name, now,
          " has " + bracketed(now.indices) + ", and had " + bracketed(old.indices));
    }
  }

  void compareValues(const std::string& name, const Face& old, const Face& now) {
    if (!old.values || !now.values) return;
    const std::set<std::string> lost = without(*old.values, *now.values);
    const std::set<std::string> gained = without(*now.values, *old.values);
    if (!lost.empty()) add(true, name, now, " has no longer the values " + listed(lost));
    if (!gained.empty()) add(false, name, now, " has the new values " + listed(gained));
  }

  const Faces old_;
  const Faces now_;
  Differences& differences_;
  std::map<std::string, std::string> renamed_;  // old by new
};

}  // namespace

void compareDefinitions(const DocModel& old, const DocModel& now, Differences& differences) {
  DefinitionComparison(old, now, differences).run();
}
