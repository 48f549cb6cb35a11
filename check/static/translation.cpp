#include <set>

#include "check/static/static_bounds.h"
#include "check/static/static_checks.h"
#include "check/static/token_place.h"

namespace {

class TranslationCheck {
 public:
  TranslationCheck(StaticContext& context, const NamedDefinition& definition, const IndexDef& built)
      : context_(context), definition_(definition), built_(built) {}

  void check() {
    for (const Translation& translation : definition_.record->valueChange) {
      const std::string source(translation.source);
      const std::string target(translation.target);
      if (source == target) {
        tellSource(translation, shown(source) + " is replaced by itself; remove the statement");
      } else if (!takes(target)) {
        tellOutside(translation, source, target);
      } else if (chained_.contains(source)) {
        continue;  // an earlier statement has told of both
      } else if (built_.translations().contains(target)) {
        tellChain(translation, source, target);
      } else if (!hasRunTimeRange(built_) && isInside(built_, source)) {
        tellSource(translation, "the range allows " + shown(source) + ", which is replaced by " +
                                    shown(target) +
                                    " whenever it is set; take it out of the range, or remove "
                                    "the statement");
      }
    }
  }

 private:
  static std::string shown(const std::string& value) { return inQuotes(value); }

  // Whether a range may allow the target. The empty text is kept by a range that only conditions
  // narrow.
  [[nodiscard]] bool takes(const std::string& target) const {
    if (hasRunTimeRange(built_)) return true;
    if (target.empty() && built_.baseBounds().count() == 0) return true;
    return !isOutside(built_, target);
  }

  void tellOutside(const Translation& translation, const std::string& source,
                   const std::string& target) {
    std::string text = "no range allows the target " + shown(target);
    const auto next = built_.translations().find(target);
    if (built_.baseBounds().count() == 0) {
      text += ", so that it is corrected";
    } else if (next == built_.translations().end()) {
      text += ", so that " + shown(source) + " is refused";
    } else {
      text += ", so that " + shown(source) + " is refused before it becomes " + shown(next->second);
    }
    tellTarget(translation, text + "; write a value that is allowed");
  }

  void tellChain(const Translation& translation, const std::string& source,
                 const std::string& target) {
    chained_.insert(target);
    std::string last = source;
    built_.translateTwice(last);
    tellTarget(translation, "the target " + shown(target) +
                                " is itself replaced, so that a commit makes " + shown(last) +
                                " of " + shown(source) + "; write the value that is meant");
  }

  void tellSource(const Translation& translation, std::string text) {
    context_.add({"translation", valuePlace(context_.source(), translation.at), std::move(text)});
  }
  void tellTarget(const Translation& translation, std::string text) {
    context_.add({"translation", targetPlace(context_.source(), translation), std::move(text)});
  }

  StaticContext& context_;
  const NamedDefinition& definition_;
  const IndexDef& built_;
  std::set<std::string> chained_;  // targets that are told to be replaced again
};

}  // namespace

void checkTranslations(StaticContext& context) {
  for (const NamedDefinition& definition : context.definitions()) {
    if (context.hasExplainedRange(definition)) continue;
    const IndexDef* const built = context.built(definition);
    if (built != nullptr) TranslationCheck(context, definition, *built).check();
  }
}
